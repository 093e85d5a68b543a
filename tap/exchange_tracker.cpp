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
} // namespace

ExchangeTracker::ExchangeTracker(EventPump& pump, PmsMode mode, QObject* parent)
    : QObject(parent), m_pump(pump), m_mode(mode) {}

QString ExchangeTracker::track(Side from, const MessageCutter::Message& message,
                               const QDateTime& time, double seconds) {
    using Kind = MessageCutter::Kind;
    switch (message.kind) {
    case Kind::Stray:
        return QStringLiteral("stray bytes");
    case Kind::UnfinishedFrame:
        return QStringLiteral("unfinished frame");
    case Kind::Frame:
    case Kind::Control:
        break;
    }
    const char byte = message.bytes.at(0);
    if (message.kind == Kind::Control && byte != char(ctl::ENQ)) {
        const bool ack = byte == char(ctl::ACK);
        const QString word = ack ? QStringLiteral("ACK") : QStringLiteral("NAK");
        SideState& answered = m_sides[int(otherSide(from))];
        if (!answered.waiting)
            return word + QStringLiteral(", answering nothing waiting");
        const QString text = QStringLiteral("%1 to %2 after %3 ms")
                                 .arg(word, answered.pending.description)
                                 .arg(msBetween(answered.pending.seconds, seconds));
        close(otherSide(from),
              ack ? ExchangeEvent::Outcome::Acknowledged : ExchangeEvent::Outcome::Refused, time,
              seconds, QString());
        return text;
    }

    Exchange exchange;
    exchange.from = from;
    exchange.bytes = message.bytes;
    exchange.time = time;
    exchange.seconds = seconds;
    exchange.enq = message.kind == Kind::Control;
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
    open(std::move(exchange));
    return text + verdict;
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
    Q_EMIT ended(state.pending, ExchangeEnd{outcome, msBetween(state.pending.seconds, seconds),
                                            note, time, seconds});
}

void ExchangeTracker::endSession(const QString& why, const QDateTime& time, double seconds) {
    for (const Side side : {Side::Pms, Side::Pbx}) {
        SideState& state = m_sides[int(side)];
        if (state.waiting)
            close(side, ExchangeEvent::Outcome::TimedOut, time, seconds,
                  QStringLiteral("no answer to %1: %2").arg(state.pending.description, why));
        state.unackedEnq = Exchange{};
        state.unackedFrame = Exchange{};
    }
}

} // namespace larkspur::tap
