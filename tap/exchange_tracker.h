#pragma once

#include "core/pms_mode.h"
#include "records/wire_trace.h"
#include "tap/message_cutter.h"
#include "tap/side.h"

#include <QDateTime>
#include <QObject>

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
class ExchangeTracker : public QObject {
    Q_OBJECT
public:
    static constexpr int answerMs = 5000;

    ExchangeTracker(EventPump& pump, PmsMode mode, QObject* parent = nullptr);

    // What the trace says of `message`, which `from` sent at `time` (`seconds` on the pump's
    // clock): "check-in room 101, retry 2", "ACK to the ENQ bid after 2 ms".
    QString track(Side from, const MessageCutter::Message& message, const QDateTime& time,
                  double seconds);
    // Nothing more comes in this session: whatever waits for an answer gets none, for `why`.
    void endSession(const QString& why, const QDateTime& time, double seconds);

Q_SIGNALS:
    // `exchange` was answered, refused, or not answered.
    void ended(const larkspur::tap::Exchange& exchange, const larkspur::tap::ExchangeEnd& end);

private:
    struct SideState {
        Exchange pending;
        bool waiting = false;
        bool timerArmed = false;
        // The last bid and the last frame that got no ACK, for knowing a retry.
        Exchange unackedEnq;
        Exchange unackedFrame;
    };

    void open(Exchange exchange);
    // One timer a side at a time, however fast bids and frames come: when it fires it looks at
    // what waits then.
    void watchTheAnswer(Side from);
    void onAnswerTimer(Side from);
    void close(Side from, ExchangeEvent::Outcome outcome, const QDateTime& time, double seconds,
               const QString& note);

    EventPump& m_pump;
    PmsMode m_mode;
    SideState m_sides[2];
};

} // namespace larkspur::tap
