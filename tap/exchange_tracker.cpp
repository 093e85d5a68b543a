#include "tap/exchange_tracker.h"

#include "core/event_pump.h"
#include "protocol/frame.h"
#include "tap/message_names.h"

#include <cmath>

namespace larkspur::tap {

namespace {
qint64 msBetween(double from, double to) {
    return std::llround((to - from) * 1000.0);
}

QString answerWord(const QByteArray& answer) {
    return answer == QByteArray(1, char(ctl::ACK)) ? QStringLiteral("ACK") : QStringLiteral("NAK");
}

ExchangeEvent::Outcome outcomeOf(const QByteArray& answer) {
    return answer == QByteArray(1, char(ctl::ACK)) ? ExchangeEvent::Outcome::Acknowledged
                                                   : ExchangeEvent::Outcome::Refused;
}
} // namespace

ExchangeTracker::ExchangeTracker(EventPump& pump, PmsMode mode, int earlyAnswerMs, QObject* parent)
    : QObject(parent), m_pump(pump), m_mode(mode), m_earlyAnswerMs(earlyAnswerMs) {}

void ExchangeTracker::track(Side from, const MessageCutter::Message& message, const QDateTime& time,
                            double seconds) {
    using Kind = MessageCutter::Kind;
    switch (message.kind) {
    case Kind::Stray:
        Q_EMIT shown(from, message.bytes, time, QStringLiteral("stray bytes"));
        return;
    case Kind::UnfinishedFrame:
        Q_EMIT shown(from, message.bytes, time, QStringLiteral("unfinished frame"));
        return;
    case Kind::Frame:
    case Kind::Control:
        break;
    }
    if (message.kind == Kind::Control && message.bytes.at(0) != char(ctl::ENQ))
        answer(from, Answer{message.bytes, time, seconds});
    else
        bidOrFrame(from, message, time, seconds);
}

void ExchangeTracker::answer(Side from, const Answer& answer) {
    const Side answered = otherSide(from);
    SideState& state = m_sides[int(answered)];
    if (state.waiting) {
        Q_EMIT shown(from, answer.bytes, answer.time,
                     QStringLiteral("%1 to %2 after %3 ms")
                         .arg(answerWord(answer.bytes), state.pending.description)
                         .arg(msBetween(state.pending.seconds, answer.seconds)));
        close(answered, outcomeOf(answer.bytes), answer.time, answer.seconds, QString());
        return;
    }
    if (m_earlyAnswerMs <= 0) {
        Q_EMIT shown(from, answer.bytes, answer.time,
                     answerWord(answer.bytes) + QStringLiteral(", answering nothing waiting"));
        return;
    }
    letTheEarlyAnswerGo(answered);
    state.early = answer;
    m_pump.schedule(m_earlyAnswerMs, this, [this, answered, id = ++state.earlyId] {
        if (m_sides[int(answered)].earlyId == id)
            letTheEarlyAnswerGo(answered);
    });
}

void ExchangeTracker::letTheEarlyAnswerGo(Side side) {
    SideState& state = m_sides[int(side)];
    if (!state.early)
        return;
    const Answer early = *std::exchange(state.early, std::nullopt);
    Q_EMIT shown(otherSide(side), early.bytes, early.time,
                 answerWord(early.bytes) + QStringLiteral(", answering nothing waiting"));
}

void ExchangeTracker::bidOrFrame(Side from, const MessageCutter::Message& message,
                                 const QDateTime& time, double seconds) {
    Exchange exchange;
    exchange.from = from;
    exchange.bytes = message.bytes;
    exchange.time = time;
    exchange.seconds = seconds;
    exchange.enq = message.kind == MessageCutter::Kind::Control;
    QString verdict;
    if (exchange.enq) {
        exchange.description = QStringLiteral("the ENQ bid");
        exchange.type = enqType(from);
    } else {
        const MessageName name = frameName(message.bytes, from, m_mode);
        exchange.description = name.description;
        exchange.type = name.type;
        if (m_mode == PmsMode::Vmail)
            verdict = checkCharacterRight(message.bytes)
                          ? QStringLiteral(", check character right")
                          : QStringLiteral(", check character wrong");
    }
    // A new bid or frame while the last still waits: the last is not going to be answered.
    SideState& state = m_sides[int(from)];
    if (state.waiting)
        close(from, ExchangeEvent::Outcome::TimedOut, time, seconds,
              QStringLiteral("no answer to %1 before the next %2")
                  .arg(state.pending.description,
                       exchange.enq ? QStringLiteral("ENQ") : QStringLiteral("frame")));
    const Exchange& unacked = exchange.enq ? state.unackedEnq : state.unackedFrame;
    if (unacked.bytes == exchange.bytes)
        exchange.attempt = unacked.attempt + 1;
    QString text = exchange.enq ? QStringLiteral("ENQ bid") : exchange.description;
    if (exchange.attempt > 1)
        text += QStringLiteral(", retry %1").arg(exchange.attempt);
    Q_EMIT shown(from, message.bytes, time, text + verdict);
    open(std::move(exchange));

    // The answer to this was heard first, on the other side's port.
    if (!state.early)
        return;
    const Answer early = *std::exchange(state.early, std::nullopt);
    Q_EMIT shown(otherSide(from), early.bytes, early.time,
                 QStringLiteral("%1 to %2, heard %3 ms before it")
                     .arg(answerWord(early.bytes), state.pending.description)
                     .arg(msBetween(early.seconds, seconds)));
    close(from, outcomeOf(early.bytes), time, seconds, QString());
}

void ExchangeTracker::open(Exchange exchange) {
    SideState& state = m_sides[int(exchange.from)];
    state.pending = std::move(exchange);
    state.waiting = true;
    watchTheAnswer(state.pending.from);
}

void ExchangeTracker::watchTheAnswer(Side from) {
    SideState& state = m_sides[int(from)];
    if (state.timerArmed)
        return;
    state.timerArmed = true;
    const double deadline = state.pending.seconds + answerMs / 1000.0;
    m_pump.schedule(qMax<qint64>(0, msBetween(m_pump.monotonicSeconds(), deadline)), this,
                    [this, from] { onAnswerTimer(from); });
}

void ExchangeTracker::onAnswerTimer(Side from) {
    SideState& state = m_sides[int(from)];
    state.timerArmed = false;
    if (!state.waiting)
        return;
    const double deadline = state.pending.seconds + answerMs / 1000.0;
    if (m_pump.monotonicSeconds() + 0.0005 < deadline) {
        // A later bid or frame than the one the timer was set for.
        watchTheAnswer(from);
        return;
    }
    close(from, ExchangeEvent::Outcome::TimedOut, state.pending.time.addMSecs(answerMs), deadline,
          QStringLiteral("no answer within %1 s to %2")
              .arg(answerMs / 1000)
              .arg(state.pending.description));
}

void ExchangeTracker::close(Side from, ExchangeEvent::Outcome outcome, const QDateTime& time,
                            double seconds, const QString& note) {
    SideState& state = m_sides[int(from)];
    state.waiting = false;
    Exchange& unacked = state.pending.enq ? state.unackedEnq : state.unackedFrame;
    unacked = outcome == ExchangeEvent::Outcome::Acknowledged ? Exchange{} : state.pending;
    Q_EMIT ended(state.pending,
                 ExchangeEnd{outcome, qMax<qint64>(0, msBetween(state.pending.seconds, seconds)),
                             note, time, seconds});
}

void ExchangeTracker::endSession(const QString& why, const QDateTime& time, double seconds) {
    for (const Side side : {Side::Pms, Side::Pbx}) {
        letTheEarlyAnswerGo(side);
        SideState& state = m_sides[int(side)];
        if (state.waiting)
            close(side, ExchangeEvent::Outcome::TimedOut, time, seconds,
                  QStringLiteral("no answer to %1: %2").arg(state.pending.description, why));
        state.unackedEnq = Exchange{};
        state.unackedFrame = Exchange{};
    }
}

} // namespace larkspur::tap
