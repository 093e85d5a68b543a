#include "link/settings_store.h"

#include "link/link.h"

#include <QSettings>

namespace larkspur {

namespace {
const QString group = QStringLiteral("Startup");
const QString frameGapKey = QStringLiteral("Link/FrameGapMs");
const QString splitJoinedKey = QStringLiteral("Link/SplitJoinedMessages");
constexpr int maxFrameGapMs = 60'000;

// The frame gap stored, 0 when there is none; an unusable one is named in `problem`.
int storedFrameGap(const QSettings& store, QString& problem) {
    if (!store.contains(frameGapKey))
        return 0;
    const QString text = store.value(frameGapKey).toString();
    bool ok = false;
    const int ms = text.trimmed().toInt(&ok);
    if (ok && ms >= 1 && ms <= maxFrameGapMs)
        return ms;
    problem = QStringLiteral("setting %1 \"%2\" is not a number of milliseconds from 1 to %3; "
                             "the frame gap follows the line speed")
                  .arg(frameGapKey, text)
                  .arg(maxFrameGapMs);
    return 0;
}
} // namespace

QString loadLinkSettings(QSettings& store, Link& link) {
    const LinkSettings defaults;
    LinkSettings& s = link.settings();
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
    link.setMode(link.pmsMode(), text("ProtocolType", QStringLiteral("HYATT")) == u"HYATT"
                                     ? Protocol::Hyatt
                                     : Protocol::His);
    link.setMode(text("PMSMode", QStringLiteral("HOTEL")) == u"HOTEL" ? PmsMode::Hotel
                                                                      : PmsMode::Vmail,
                 link.protocolType());
    store.endGroup();
    QString problem;
    s.frameGapMs = storedFrameGap(store, problem);
    // Set by hand for a serial-to-TCP converter that joins messages; "true" or "false".
    const QString split = store.value(splitJoinedKey, QStringLiteral("false")).toString();
    s.splitJoinedMessages = split.trimmed().compare(u"true", Qt::CaseInsensitive) == 0;
    if (!s.splitJoinedMessages && split.trimmed().compare(u"false", Qt::CaseInsensitive) != 0 &&
        problem.isEmpty())
        problem = QStringLiteral("setting %1 \"%2\" is neither true nor false; joined messages "
                                 "stay one")
                      .arg(splitJoinedKey, split);
    return problem;
}

QString saveLinkSettings(QSettings& store, const Link& link) {
    const LinkSettings& s = link.settings();
    store.beginGroup(group);
    store.setValue(QStringLiteral("IP_Address"), s.ipAddress);
    store.setValue(QStringLiteral("TelnetPort"), s.telnetPort);
    store.setValue(QStringLiteral("CommPortNumber"), s.commPortNumber);
    store.setValue(QStringLiteral("Speed"), s.speed);
    store.setValue(QStringLiteral("Parity"), s.parity);
    store.setValue(QStringLiteral("Databit"), s.dataBits);
    store.setValue(QStringLiteral("StopBit"), s.stopBits);
    store.setValue(QStringLiteral("HandShake"), s.handShake);
    store.setValue(QStringLiteral("ProtocolType"), protocolName(link.protocolType()));
    store.setValue(QStringLiteral("PMSMode"), pmsModeName(link.pmsMode()));
    store.setValue(QStringLiteral("ConnectionType"),
                   s.useTcp ? QStringLiteral("Telnet") : QStringLiteral("CommPort"));
    store.endGroup();
    store.sync();
    switch (store.status()) {
    case QSettings::NoError:
        return QString();
    case QSettings::AccessError:
        return QStringLiteral("The settings could not be saved to %1: it may not be written.")
            .arg(store.fileName());
    case QSettings::FormatError:
        break;
    }
    return QStringLiteral("The settings could not be saved to %1: its contents are not a "
                          "settings file.")
        .arg(store.fileName());
}

} // namespace larkspur
