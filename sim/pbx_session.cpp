#include "sim/pbx_session.h"

#include "core/event_pump.h"
#include "protocol/frame.h"
#include "protocol/readable_notation.h"
#include "sim/peer.h"
#include "sim/tracer.h"

#include <cmath>

namespace larkspur::sim {

PbxSession::PbxSession(Peer& peer, const SimOptions& options, Tracer& tracer, EventPump& pump,
                       QObject* parent)
    : QObject(parent), m_peer(peer), m_options(options), m_tracer(tracer), m_pump(pump),
      m_writer(peer, pump, options.pacing), m_scanner(options.mode == Mode::Vmail) {
    connect(&m_peer, &Peer::received, this, &PbxSession::onReceived);
    connect(&m_writer, &PacedWriter::pieceSent, this,
            [this](const QByteArray& piece) { m_tracer.sent(piece); });
}

void PbxSession::begin(bool offerEcho) {
    if (offerEcho)
        send(QByteArray("\xFF\xFB\x01", 3)); // IAC WILL ECHO
    for (const TimedMessage& message : m_options.at)
        sendLater(message.seconds, message.bytes);
}

void PbxSession::send(const QByteArray& bytes) {
    m_writer.send(bytes);
}

void PbxSession::onReceived(const QByteArray& bytes) {
    m_tracer.received(bytes);
    for (const WireUnit& unit : m_scanner.feed(bytes))
        handle(unit);
}

void PbxSession::handle(const WireUnit& unit) {
    switch (unit.kind) {
    case WireUnit::Kind::Enq:
        answer(m_options.firstEnqAnswers, m_options.onEnq, m_enqsAnswered);
        break;
    case WireUnit::Kind::Ack:
    case WireUnit::Kind::Nak:
        break; // the console's answer to something we sent; the trace shows it
    case WireUnit::Kind::UnfinishedFrame:
    case WireUnit::Kind::Stray:
        break; // not the console's business with us
    case WireUnit::Kind::Frame:
        if (unit.check == WireUnit::Check::Wrong)
            m_tracer.status(QStringLiteral("BCC wrong: got %1, expected %2")
                                .arg(toReadable(unit.bytes.right(1)),
                                     toReadable(QByteArray(1, blockCheck(unit.bytes.sliced(
                                                                  1, unit.bytes.size() - 2))))));
        else if (unit.check == WireUnit::Check::Right)
            m_tracer.status(QStringLiteral("BCC ok"));
        answer(m_options.firstFrameAnswers, m_options.onFrame, m_framesAnswered);
        // Follow-ups count from the answer, so they never overtake it.
        for (const FollowUp& followUp : m_options.after) {
            if (unit.text().startsWith(followUp.match))
                sendLater(m_options.answerDelaySeconds + followUp.seconds, followUp.bytes);
        }
        break;
    }
}

void PbxSession::answer(const QList<Answer>& first, Answer then, int& answered) {
    const Answer how = answered < first.size() ? first.at(answered++) : then;
    if (how == Answer::Silent)
        return;
    const QByteArray bytes(1, char(how == Answer::Ack ? ctl::ACK : ctl::NAK));
    // Without a delay the answer goes out while the read is handled, ahead of anything the
    // event loop has waiting.
    if (m_options.answerDelaySeconds == 0)
        send(bytes);
    else
        sendLater(m_options.answerDelaySeconds, bytes);
}

void PbxSession::sendLater(double seconds, const QByteArray& bytes) {
    // The session is the task's context, so a console that leaves cancels it.
    m_pump.schedule(std::lround(seconds * 1000), this, [this, bytes] { send(bytes); });
}

} // namespace larkspur::sim
