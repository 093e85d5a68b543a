#pragma once

#include "protocol/wire_units.h"

#include <QObject>

namespace larkspur {

class EventPump;

// Cuts what one side sends into wire units as the bytes arrive, and gives up on a frame whose
// end never comes once the line has been silent for the frame gap: that frame is then handed
// over as it stands, unfinished.
class WireReader : public QObject {
    Q_OBJECT
public:
    WireReader(EventPump& pump, bool checkCharacter, int frameGapMs, QObject* parent = nullptr);

    void setCheckCharacter(bool checkCharacter) { m_scanner.setCheckCharacter(checkCharacter); }
    void setFrameGapMs(int milliseconds) { m_frameGapMs = qMax(1, milliseconds); }
    int frameGapMs() const { return m_frameGapMs; }

    // The units that `bytes` completes, in order; a frame they leave unfinished is watched.
    QList<WireUnit> feed(QByteArrayView bytes);
    // The frame held, as it stands: no more is coming.
    std::optional<WireUnit> flush() { return m_scanner.flush(); }
    // Forgets the frame held: the link was closed.
    void clear() { m_scanner.clear(); }
    bool holding() const { return m_scanner.holding(); }

Q_SIGNALS:
    // The line fell silent for the frame gap inside a frame.
    void gapPassed(const larkspur::WireUnit& unfinished);

private:
    void watchTheGap();
    void onGapTimer();

    EventPump& m_pump;
    WireScanner m_scanner;
    int m_frameGapMs;
    double m_lastArrival = 0;
    bool m_timerArmed = false;
};

} // namespace larkspur
