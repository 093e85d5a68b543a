#pragma once

#include "core/pms_mode.h"
#include "protocol/wire_units.h"
#include "records/side.h"

#include <QDateTime>
#include <QObject>

#include <optional>

namespace larkspur {

class EventPump;

// An ENQ bid or a frame that one side sent for the other to answer, and how it ended.
struct Exchange {
    enum class Outcome { Acknowledged, Refused, TimedOut };

    Side from = Side::Pms;
    QByteArray bytes;
    bool enq = false;
    QString description; // "check-in room 101", "the ENQ bid"
    QString type;        // its statistics row: "check-in", "PBX STS2", "ENQ"
    int attempt = 1;     // 2 and up: the same bid or frame again after no ACK
    QDateTime time;
    double seconds = 0; // on the pump's clock

    // How it ended.
    Outcome outcome = Outcome::TimedOut;
    qint64 ms = 0;   // from the bid or frame to its answer, or to the end of waiting
    QString note;    // how an unanswered one ended: "no answer within 5 s to check-in room 101"
    QDateTime ended; // when it ended
    double endedSeconds = 0;

    bool answered() const { return outcome != Outcome::TimedOut; }
};

// Pairs each ENQ bid and frame one side sends with the other side's answer: an ACK or a NAK, or
// none within answerMs. A bid or frame that repeats one the other side did not acknowledge is a
// retry. Says for every unit what it is in the conversation.
//
// Through the console's own link or a relay an answer always comes after what it answers. A
// passive monitor hears each side on a port of its own, and the port of the answer may hand it
// over first (the two reads of one wake-up, or two USB adapters, each on its own timer): there an
// answer that finds nothing waiting waits itself, for earlyAnswerMs, for what it answers.
class ExchangePairing : public QObject {
    Q_OBJECT
public:
    static constexpr int answerMs = 5000;

    // `earlyAnswerMs` is 0 but on a passive monitor.
    ExchangePairing(EventPump& pump, PmsMode mode, int earlyAnswerMs, QObject* parent = nullptr);

    void setMode(PmsMode mode) { m_mode = mode; }

    // `unit` came from `from` at `time` (`seconds` on the pump's clock).
    void track(Side from, const WireUnit& unit, const QDateTime& time, double seconds);
    // Nothing more comes in this session: whatever waits for an answer gets none, for `why`.
    void endSession(const QString& why, const QDateTime& time, double seconds);

Q_SIGNALS:
    // What a unit is in the conversation: "check-in room 101, retry 2", "ACK to the ENQ bid after
    // 2 ms". Said as each unit comes, but for an early answer once its meaning is known.
    void shown(larkspur::Side from, const QByteArray& bytes, const QDateTime& time,
               const QString& description);
    // `exchange` now waits for its answer.
    void opened(const larkspur::Exchange& exchange);
    // `exchange` was answered, refused, or not answered.
    void ended(const larkspur::Exchange& exchange);

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
    void bidOrFrame(Side from, const WireUnit& unit, const QDateTime& time, double seconds);
    void open(Exchange exchange);
    // One timer a side at a time, however fast bids and frames come: when it fires it looks at
    // what waits then.
    void watchTheAnswer(Side from);
    void onAnswerTimer(Side from);
    void close(Side from, Exchange::Outcome outcome, const QDateTime& time, double seconds,
               const QString& note);
    // Shows the early answer to `side` as one that answered nothing.
    void letTheEarlyAnswerGo(Side side);

    EventPump& m_pump;
    PmsMode m_mode;
    int m_earlyAnswerMs;
    SideState m_sides[2];
};

} // namespace larkspur
