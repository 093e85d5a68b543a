#include "link/settings_store.h"

#include "link/link.h"

#include <QSettings>

namespace larkspur {

namespace {
const QString group = QStringLiteral("Startup");
}

void loadLinkSettings(QSettings& store, Link& link) {
    const LinkSettings defaults;
    LinkSettings& s = link.settings;
    store.beginGroup(group);
    const auto text = [&store](const char* key, const QString& fallback) {
        return store.value(QLatin1String(key), fallback).toString();
    };
    s.ipAddress = text("IP_Address", defaults.ipAddress);
    s.telnetPort = text("TelnetPort", defaults.telnetPort);
    s.commPortNumber = text("CommPortNumber", defaults.commPortNumber);
    s.speed = text("Speed", defaults.speed);
    s.parity = text("Parity", defaults.parity);
    s.dataBits = text("Databit", defaults.dataBits);
    s.stopBits = text("StopBit", defaults.stopBits);
    s.handShake = text("HandShake", defaults.handShake);
    s.useTcp = text("ConnectionType", QStringLiteral("Telnet")) == u"Telnet";
    // Anything but the first-run value reads as the other one.
    link.protocolType =
        text("ProtocolType", QStringLiteral("HYATT")) == u"HYATT" ? Protocol::Hyatt : Protocol::His;
    link.pmsMode =
        text("PMSMode", QStringLiteral("HOTEL")) == u"HOTEL" ? PmsMode::Hotel : PmsMode::Vmail;
    store.endGroup();
}

void saveLinkSettings(QSettings& store, const Link& link) {
    const LinkSettings& s = link.settings;
    store.beginGroup(group);
    store.setValue(QStringLiteral("IP_Address"), s.ipAddress);
    store.setValue(QStringLiteral("TelnetPort"), s.telnetPort);
    store.setValue(QStringLiteral("CommPortNumber"), s.commPortNumber);
    store.setValue(QStringLiteral("Speed"), s.speed);
    store.setValue(QStringLiteral("Parity"), s.parity);
    store.setValue(QStringLiteral("Databit"), s.dataBits);
    store.setValue(QStringLiteral("StopBit"), s.stopBits);
    store.setValue(QStringLiteral("HandShake"), s.handShake);
    store.setValue(QStringLiteral("ProtocolType"), protocolName(link.protocolType));
    store.setValue(QStringLiteral("PMSMode"), pmsModeName(link.pmsMode));
    store.setValue(QStringLiteral("ConnectionType"),
                   s.useTcp ? QStringLiteral("Telnet") : QStringLiteral("CommPort"));
    store.endGroup();
    store.sync();
}

} // namespace larkspur
