#pragma once

#include "core/pms_mode.h"

#include <QByteArray>
#include <QString>

#include <functional>

namespace larkspur::tap {

// Writes what the PMS did as the script the window's recorder would have written had it been
// the PMS: the header of the mode, then one line per transaction the PBX acknowledged, exactly
// as the recorder writes it; with waits, a WAIT line for each PBX message a wait can expect,
// its digit the seconds it came after the line before it (rounded up, 1 to 9), so that the
// wait, played back, is long enough.
class ScriptLearner {
public:
    // `write` takes each line without its line end, and how many commands were learned with it
    // (none with the header).
    ScriptLearner(PmsMode mode, Protocol protocol, bool waits,
                  std::function<void(const QString& line, int learned)> write);

    // A session began `seconds` in (on the pump's clock): the first wait counts from here.
    void sessionStarted(double seconds);
    // The PBX acknowledged `frame`, which the PMS sent, `seconds` in.
    void acknowledged(const QByteArray& frame, double seconds);
    // The PBX sent `frame` `seconds` in.
    void pbxFrame(const QByteArray& frame, double seconds);

    int learned() const { return m_learned; }
    // Acknowledged frames the recorder writes no line for (manual link messages, messages this
    // console does not send, voice-mail frames with a wrong check character).
    int passedOver() const { return m_passedOver; }

private:
    void learn(const QString& line, double seconds);

    PmsMode m_mode;
    bool m_waits;
    std::function<void(const QString&, int)> m_write;
    double m_lastSeconds = 0;
    int m_learned = 0;
    int m_passedOver = 0;
};

} // namespace larkspur::tap
