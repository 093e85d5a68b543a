#include "doubles/fake_pbx.h"

#include "doubles/fake_transport.h"
#include "protocol/frame.h"

namespace larkspur {

FakePbx::FakePbx(FakeTransport& transport) : m_transport(transport) {
    m_transport.onWrite = [this](const QByteArray& bytes) {
        if (bytes == QByteArray(1, char(ctl::ENQ))) {
            ++enqCount;
            answer(nextEnqAnswers.isEmpty() ? onEnq : nextEnqAnswers.takeFirst());
        } else if (bytes.startsWith(char(ctl::STX))) {
            ++frameCount;
            answer(nextFrameAnswers.isEmpty() ? onFrame : nextFrameAnswers.takeFirst());
        }
    };
}

void FakePbx::answer(Answer a) {
    if (a == Answer::Ack)
        m_transport.deliver(QByteArray(1, char(ctl::ACK)), replyDelayMs);
    else if (a == Answer::Nak)
        m_transport.deliver(QByteArray(1, char(ctl::NAK)), replyDelayMs);
}

} // namespace larkspur
