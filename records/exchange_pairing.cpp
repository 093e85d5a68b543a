#include "records/exchange_pairing.h"

#include "core/event_pump.h"
#include "protocol/frame.h"
#include "records/message_names.h"

#include <cmath>

namespace larkspur {

namespace {
qint64 msBetween(double from, double to) {
    return std::llround((to - from) * 1000.0);
}

QString answerWord(const QByteArray& answer) {
    return answer == QByteArray(1, char(ctl::ACK)) ? QStringLiteral("ACK") : QStringLiteral("NAK");
}

Exchange::Outcome outcomeOf(const QByteArray& answer) {
    return answer == QByteArray(1, char(ctl::ACK)) ? Exchange::Outcome::Acknowledged
                                                   : Exchange::Outcome::Refused;
}
} // namespace

ExchangePairing::ExchangePairing(EventPump& pump, PmsMode mode, int earlyAnswerMs, QObject* parent)
    : QObject(parent), m_pump(pump), m_mode(mode), m_earlyAnswerMs(earlyAnswerMs) {}

void ExchangePairing::track(Side from, const WireUnit& unit, const QDateTime& time,
                            double seconds) {
    switch (unit.kind) {
    case WireUnit::Kind::Stray:
        Q_EMIT shown(from, unit.bytes, time, QStringLiteral("stray bytes"));
        return;
    case WireUnit::Kind::UnfinishedFrame:
        Q_EMIT shown(from, unit.bytes, time, QStringLiteral("unfinished frame"));
        return;
    case WireUnit::Kind::Ack:
    case WireUnit::Kind::Nak:
        answer(from, Answer{unit.bytes, time, seconds});
        return;
    case WireUnit::Kind::Enq:
    case WireUnit::Kind::Frame:
        bidOrFrame(from, unit, time, seconds);
        return;
    }
}

void ExchangePairing::answer(Side from, const Answer& answer) {
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

void ExchangePairing::letTheEarlyAnswerGo(Side side) {
    SideState& state = m_sides[int(side)];
    if (!state.early)
        return;
    const Answer early = *std::exchange(state.early, std::nullopt);
    Q_EMIT shown(otherSide(side), early.bytes, early.time,
                 answerWord(early.bytes) + QStringLiteral(", answering nothing waiting"));
}

void ExchangePairing::bidOrFrame(Side from, const WireUnit& unit, const QDateTime& time,
                                 double seconds) {
    Exchange exchange;
    exchange.from = from;
    exchange.bytes = unit.bytes;
    exchange.time = time;
    exchange.seconds = seconds;
    exchange.enq = unit.kind == WireUnit::Kind::Enq;
    QString verdict;
    if (exchange.enq) {
        exchange.description = QStringLiteral("the ENQ bid");
        exchange.type = enqType(from);
    } else {
        const MessageName name = frameName(unit.bytes, from, m_mode);
        exchange.description = name.description;
        exchange.type = name.type;
        if (unit.check != WireUnit::Check::None)
            verdict = unit.check == WireUnit::Check::Right
                          ? QStringLiteral(", check character right")
                          : QStringLiteral(", check character wrong");
    }
    // A new bid or frame while the last still waits: the last is not going to be answered.
    SideState& state = m_sides[int(from)];
    if (state.waiting)
        close(from, Exchange::Outcome::TimedOut, time, seconds,
              QStringLiteral("no answer to %1 before the next %2")
                  .arg(state.pending.description,
                       exchange.enq ? QStringLiteral("ENQ") : QStringLiteral("frame")));
    const Exchange& unacked = exchange.enq ? state.unackedEnq : state.unackedFrame;
    if (unacked.bytes == exchange.bytes)
        exchange.attempt = unacked.attempt + 1;
    QString text = exchange.enq ? QStringLiteral("ENQ bid") : exchange.description;
    if (exchange.attempt > 1)
        text += QStringLiteral(", retry %1").arg(exchange.attempt);
    Q_EMIT shown(from, unit.bytes, time, text + verdict);
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

void ExchangePairing::open(Exchange exchange) {
    SideState& state = m_sides[int(exchange.from)];
    state.pending = std::move(exchange);
    state.waiting = true;
    Q_EMIT opened(state.pending);
    watchTheAnswer(state.pending.from);
}

void ExchangePairing::watchTheAnswer(Side from) {
    SideState& state = m_sides[int(from)];
    if (state.timerArmed)
        return;
    state.timerArmed = true;
    const double deadline = state.pending.seconds + answerMs / 1000.0;
    m_pump.schedule(qMax<qint64>(0, msBetween(m_pump.monotonicSeconds(), deadline)), this,
                    [this, from] { onAnswerTimer(from); });
}

void ExchangePairing::onAnswerTimer(Side from) {
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
    close(from, Exchange::Outcome::TimedOut, state.pending.time.addMSecs(answerMs), deadline,
          QStringLiteral("no answer within %1 s to %2")
              .arg(answerMs / 1000)
              .arg(state.pending.description));
}

void ExchangePairing::close(Side from, Exchange::Outcome outcome, const QDateTime& time,
                            double seconds, const QString& note) {
    SideState& state = m_sides[int(from)];
    state.waiting = false;
    Exchange& unacked = state.pending.enq ? state.unackedEnq : state.unackedFrame;
    unacked = outcome == Exchange::Outcome::Acknowledged ? Exchange{} : state.pending;
    Exchange ended = state.pending;
    ended.outcome = outcome;
    ended.ms = qMax<qint64>(0, msBetween(ended.seconds, seconds));
    ended.note = note;
    ended.ended = time;
    ended.endedSeconds = seconds;
    Q_EMIT this->ended(ended);
}

void ExchangePairing::endSession(const QString& why, const QDateTime& time, double seconds) {
    for (const Side side : {Side::Pms, Side::Pbx}) {
        letTheEarlyAnswerGo(side);
        SideState& state = m_sides[int(side)];
        if (state.waiting)
            close(side, Exchange::Outcome::TimedOut, time, seconds,
                  QStringLiteral("no answer to %1: %2").arg(state.pending.description, why));
        state.unackedEnq = Exchange{};
        state.unackedFrame = Exchange{};
    }
}

} // namespace larkspur
