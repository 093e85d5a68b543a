// Systems without POSIX pseudo-terminals: the simulator serves consoles over TCP only.
#include "sim/pseudo_terminal.h"

namespace larkspur::sim {

std::unique_ptr<PseudoTerminal> openPseudoTerminal(const QString&, QString* error) {
    if (error)
        *error = QStringLiteral("this system has no pseudo-terminals; use --listen and connect "
                                "the console over TCP");
    return nullptr;
}

} // namespace larkspur::sim
