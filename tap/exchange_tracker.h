#pragma once

#include "core/pms_mode.h"
#include "records/wire_trace.h"
#include "tap/message_cutter.h"
#include "tap/side.h"

#include <QDateTime>
#include <QObject>

#include <optional>

namespace larkspur {
class EventPump;
}

namespace larkspur::tap {

// An ENQ bid or a frame that one side sent and the other is to answer.
struct Exchange {
    Side from = Side::Pms;
    QByteArray bytes;
    bool enq = false;
    QString description; // "check-in room 101", "ENQ bid"
    QString type;        // its statistics row
    int attempt = 1;     // 2 and up: the same bid or frame again after no ACK
    QDateTime time;
    double seconds = 0; // on the pump's clock
};

// How an exchange ended.
struct ExchangeEnd {
    ExchangeEvent::Outcome outcome = ExchangeEvent::Outcome::TimedOut;
    qint64 ms = 0;  // from the bid or frame to its answer, or to the end of waiting
    QString note;   // how an unanswered one ended, for the trace
    QDateTime time; // when it ended
    double seconds = 0;
};

// Follows both sides' ENQ bids and frames and pairs each with the other side's answer: an ACK
// or a NAK, or none within answerMs. A bid or frame that repeats one the other side did not
// acknowledge is a retry. Says for every message what the trace shows after it.
//
// Through a relay an answer always comes after what it answers. A passive monitor hears each
// side on a port of its own, and the port of the answer may hand it over first (the two reads
// of one wake-up, or two USB adapters, each on its own timer): there an answer that finds
// nothing waiting waits itself, for earlyAnswerMs, for what it answers.
class ExchangeTracker : public QObject {
    Q_OBJECT
public:
    static constexpr int answerMs = 5000;

    // `earlyAnswerMs` is 0 through a relay.
    ExchangeTracker(EventPump& pump, PmsMode mode, int earlyAnswerMs, QObject* parent = nullptr);

    // `message` came from `from` at `time` (`seconds` on the pump's clock).
    void track(Side from, const MessageCutter::Message& message, const QDateTime& time,
               double seconds);
    // Nothing more comes in this session: whatever waits for an answer gets none, for `why`.
    void endSession(const QString& why, const QDateTime& time, double seconds);

Q_SIGNALS:
    // What the trace says of a message: "check-in room 101, retry 2", "ACK to the ENQ bid after
    // 2 ms". Said as each message comes, but for an early answer once its meaning is known.
    void shown(larkspur::tap::Side from, const QByteArray& bytes, const QDateTime& time,
               const QString& description);
    // `exchange` was answered, refused, or not answered.
    void ended(const larkspur::tap::Exchange& exchange, const larkspur::tap::ExchangeEnd& end);

private:
    // An ACK or NAK that came while nothing of the other side waited.
    struct Answer {
        QByteArray bytes;
        QDateTime time;
        double seconds = 0;
    };
    struct SideState {
        Exchange pending;
        bool waiting = false;
        bool timerArmed = false;
        // The last bid and the last frame that got no ACK, for knowing a retry.
        Exchange unackedEnq;
        Exchange unackedFrame;
        // An answer to this side heard before anything of this side waited for it.
        std::optional<Answer> early;
        int earlyId = 0;
    };

    void answer(Side from, const Answer& answer);
    void bidOrFrame(Side from, const MessageCutter::Message& message, const QDateTime& time,
                    double seconds);
    void open(Exchange exchange);
    // One timer a side at a time, however fast bids and frames come: when it fires it looks at
    // what waits then.
    void watchTheAnswer(Side from);
    void onAnswerTimer(Side from);
    void close(Side from, ExchangeEvent::Outcome outcome, const QDateTime& time, double seconds,
               const QString& note);
    // Shows the early answer to `side` as one that answered nothing.
    void letTheEarlyAnswerGo(Side side);

    EventPump& m_pump;
    PmsMode m_mode;
    int m_earlyAnswerMs;
    SideState m_sides[2];
};

} // namespace larkspur::tap
