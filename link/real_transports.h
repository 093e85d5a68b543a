#pragma once

// The transports a program reaches a real PBX through. POSIX descriptors answer fastest;
// where they are absent, or with LARKSPUR_PORTABLE, Qt's own socket and serial port
// classes stand in with the same behaviour.
#ifdef LARKSPUR_PORTABLE
#include "link/qt_serial_transport.h"
#include "link/qt_tcp_transport.h"
#else
#include "link/serial_transport.h"
#include "link/tcp_transport.h"
#endif

namespace larkspur {

#ifdef LARKSPUR_PORTABLE
using RealTcpTransport = QtTcpTransport;
using RealSerialTransport = QtSerialTransport;
#else
using RealTcpTransport = TcpTransport;
using RealSerialTransport = SerialTransport;
#endif

} // namespace larkspur
