#include "tap/script_learner.h"

#include "protocol/expectation_items.h"
#include "protocol/frame.h"
#include "protocol/message_catalogue.h"
#include "records/script_lines.h"

#include <cmath>

namespace larkspur::tap {

namespace {
bool breaksALine(const QString& text) {
    return text.contains(u'\r') || text.contains(u'\n');
}
} // namespace

ScriptLearner::ScriptLearner(PmsMode mode, Protocol protocol, bool waits,
                             std::function<void(const QString&, int)> write)
    : m_mode(mode), m_waits(waits), m_write(std::move(write)) {
    QString header = scriptHeader(mode, protocol);
    if (!header.isEmpty()) {
        header.chop(2); // the line end is the writer's
        m_write(header, 0);
    }
}

void ScriptLearner::sessionStarted(double seconds) {
    m_lastSeconds = seconds;
}

void ScriptLearner::learn(const QString& line, double seconds) {
    m_write(line, ++m_learned);
    m_lastSeconds = seconds;
}

void ScriptLearner::acknowledged(const QByteArray& frame, double seconds) {
    const QString text = QString::fromLatin1(frame);
    if (m_mode == PmsMode::Vmail) {
        const VmailMessage* message = findVmailMessage(text.mid(1, 1));
        if (message && message->button && checkCharacterRight(frame)) {
            learn(vmailScriptLine(text), seconds);
            return;
        }
    } else {
        const QString body = text.mid(1, text.size() - 2);
        const HotelMessage* message = hotelMessageOfBody(body);
        if (message && message->recorded && !breaksALine(body)) {
            learn(body, seconds);
            return;
        }
    }
    ++m_passedOver;
}

void ScriptLearner::pbxFrame(const QByteArray& frame, double seconds) {
    if (!m_waits)
        return;
    QString room;
    const ExpectationItem* item = expectationMetBy(QString::fromLatin1(frame), &room);
    if (!item || breaksALine(room))
        return;
    // Played back, the wait starts after the line before it; it must last until the message.
    const int digit = qBound(1, int(std::ceil(seconds - m_lastSeconds)), 9);
    learn(expectationScriptLine(false, item->item, room, QString::number(digit)), seconds);
}

} // namespace larkspur::tap
