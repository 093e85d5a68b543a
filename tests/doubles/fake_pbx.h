#pragma once

#include <QByteArray>
#include <QList>

namespace larkspur {

class FakeTransport;

// A scripted PBX behind a FakeTransport: answers each ENQ and each frame it receives after a
// short virtual delay, as told.
class FakePbx {
public:
    enum class Answer { Ack, Nak, Silent };

    explicit FakePbx(FakeTransport& transport);

    Answer onEnq = Answer::Ack;
    Answer onFrame = Answer::Ack;
    // Answers used first, one per frame (then onFrame); same for ENQs.
    QList<Answer> nextFrameAnswers;
    QList<Answer> nextEnqAnswers;
    qint64 replyDelayMs = 20;

    int enqCount = 0;
    int frameCount = 0;

private:
    void answer(Answer a);

    FakeTransport& m_transport;
};

} // namespace larkspur
