#pragma once

#include <QHostAddress>
#include <QString>

#include <optional>

namespace larkspur {

// A TCP end point as the command lines write it: "HOST:PORT", with an IPv6 address in brackets
// ("[::1]:15374"). The host is kept as written, without the brackets.
struct HostPort {
    QString host;
    quint16 port = 0;
};

// Reads "HOST:PORT"; a port of 0 only `withPortZero` (a listener's "any free port"). Nothing and
// a reason in `error` otherwise.
std::optional<HostPort> parseHostPort(const QString& text, bool withPortZero, QString* error);

// The address a listener binds for `host`: an IP address as written, "localhost" for the loopback
// address; a null address for any other name.
QHostAddress listenAddress(const QString& host);

// "127.0.0.1:15374", "[::1]:15374": the form parseHostPort reads.
QString formatHostPort(const QString& host, const QString& port);

} // namespace larkspur
