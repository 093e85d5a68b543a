#include "core/host_port.h"

namespace larkspur {

std::optional<HostPort> parseHostPort(const QString& text, bool withPortZero, QString* error) {
    const auto fail = [&](const QString& why) -> std::optional<HostPort> {
        if (error)
            *error = QStringLiteral("\"%1\" is not HOST:PORT: %2").arg(text, why);
        return std::nullopt;
    };
    const qsizetype colon = text.lastIndexOf(u':');
    if (colon < 0)
        return fail(QStringLiteral("no port"));
    QString host = text.left(colon);
    if (host.startsWith(u'[') && host.endsWith(u']'))
        host = host.mid(1, host.size() - 2);
    else if (host.contains(u':'))
        return fail(QStringLiteral("an IPv6 address goes in brackets, as [::1]:15374"));
    if (host.isEmpty())
        return fail(QStringLiteral("no host"));
    bool ok = false;
    const uint port = text.mid(colon + 1).toUInt(&ok);
    if (!ok || port > 65535 || (port == 0 && !withPortZero))
        return fail(withPortZero ? QStringLiteral("the port is not 0 to 65535")
                                 : QStringLiteral("the port is not 1 to 65535"));
    return HostPort{host, quint16(port)};
}

QHostAddress listenAddress(const QString& host) {
    return host == u"localhost" ? QHostAddress(QHostAddress::LocalHost) : QHostAddress(host);
}

QString formatHostPort(const QString& host, const QString& port) {
    return (host.contains(u':') ? u'[' + host + u']' : host) + u':' + port;
}

} // namespace larkspur
