#pragma once

#include "sim/peer.h"

#include <QString>

#include <memory>

namespace larkspur::sim {

// A pseudo-terminal for a console on a serial port: the simulator holds one end, the console
// opens the other by its path like any serial device.
class PseudoTerminal : public Peer {
    Q_OBJECT
public:
    using Peer::Peer;

    // The device path the console opens.
    virtual QString slavePath() const = 0;
};

// Opens a pseudo-terminal and, with a non-empty `link`, makes `link` a symlink to its slave
// (replacing an older symlink, never any other file). Nothing, with a reason in `error`, when it
// cannot, or where the system has none.
std::unique_ptr<PseudoTerminal> openPseudoTerminal(const QString& link, QString* error);

} // namespace larkspur::sim
