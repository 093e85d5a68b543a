#include "assembly/dry_run.h"

#include <QCoreApplication>

namespace larkspur {

namespace {
// A serial line carries no Telnet offer.
sim::SimOptions withoutEchoOffer(sim::SimOptions options) {
    options.echoOffer = false;
    return options;
}
} // namespace

void DryRunPump::processEvents() {
    QCoreApplication::processEvents();
    VirtualEventPump::processEvents();
}

bool DryRunPump::waitForEvent(int milliseconds) {
    QCoreApplication::processEvents();
    return VirtualEventPump::waitForEvent(milliseconds);
}

DryRunAssembly::DryRunAssembly(OperatorInterface& op, qsizetype traceCapacity,
                               const sim::SimOptions& pbxOptions)
    : Assembly(DryRunLinks::pump, op, tcp, serial, traceCapacity),
      m_tcpPbx(DryRunLinks::pump, tcp, pbxOptions),
      m_serialPbx(DryRunLinks::pump, serial, withoutEchoOffer(pbxOptions)) {}

void DryRunAssembly::setPbxMode(sim::Mode mode) {
    m_tcpPbx.setMode(mode);
    m_serialPbx.setMode(mode);
}

} // namespace larkspur
