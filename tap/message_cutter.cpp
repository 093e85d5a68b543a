#include "tap/message_cutter.h"

#include "protocol/frame.h"
#include "protocol/frame_scanner.h"

namespace larkspur::tap {

namespace {
bool isControl(char byte) {
    return byte == char(ctl::ENQ) || byte == char(ctl::ACK) || byte == char(ctl::NAK);
}
} // namespace

MessageCutter::MessageCutter(EventPump& pump, bool checkCharacter, int frameGapMs,
                             std::function<void(const Message&)> out, QObject* parent)
    : QObject(parent), m_assembly(pump), m_checkCharacter(checkCharacter), m_out(std::move(out)) {
    m_assembly.setCheckCharacter(checkCharacter);
    m_assembly.setFrameGapMs(frameGapMs);
    connect(&m_assembly, &ReceiveAssembly::message, this, &MessageCutter::cut);
}

void MessageCutter::take(const QByteArray& bytes) {
    m_assembly.take(bytes);
}

void MessageCutter::flush() {
    m_assembly.flush();
}

void MessageCutter::emitPieces(Kind kind, QByteArray& bytes) {
    for (qsizetype from = 0; from < bytes.size(); from += pieceBytes)
        m_out({kind, bytes.mid(from, pieceBytes)});
    bytes.clear();
}

void MessageCutter::cut(const QByteArray& read) {
    // Each read the assembly hands over begins outside a frame.
    FrameScanner scanner(m_checkCharacter);
    QByteArray stray;
    QByteArray frame;
    for (const char byte : read) {
        const bool inside = scanner.insideFrame();
        switch (scanner.feed(byte)) {
        case FrameScanner::Role::Outside:
            if (isControl(byte)) {
                emitPieces(Kind::Stray, stray);
                m_out({Kind::Control, QByteArray(1, byte)});
            } else {
                stray += byte;
            }
            break;
        case FrameScanner::Role::Start:
            // An STX inside a frame starts it over: the frame so far never ended.
            if (inside)
                emitPieces(Kind::UnfinishedFrame, frame);
            emitPieces(Kind::Stray, stray);
            frame = QByteArray(1, byte);
            break;
        case FrameScanner::Role::Text:
        case FrameScanner::Role::Etx:
            frame += byte;
            break;
        case FrameScanner::Role::End:
            frame += byte;
            m_out({Kind::Frame, frame});
            frame.clear();
            break;
        }
    }
    emitPieces(Kind::Stray, stray);
    // The assembly gave up waiting for the rest of this frame.
    emitPieces(Kind::UnfinishedFrame, frame);
}

} // namespace larkspur::tap
