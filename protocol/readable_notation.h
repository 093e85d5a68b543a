#pragma once

#include <QByteArray>
#include <QString>

namespace larkspur {

// A readable way to write wire bytes, used by the simulator's options, its standard input and
// its trace:
//   <STX> <ETX> <ENQ> <ACK> <NAK>  the control bytes 2, 3, 5, 6, 21
//   <BCC>                          the voice-mail check character: XOR of every byte after the
//                                  last STX (or from the start when there is none) up to here
//   \xHH                           any byte, two hex digits
//   \\                             a backslash
//   any other character            its own byte (up to U+00FF)
// A '<' always opens a tag, so a literal '<' is written \x3C.

// The bytes `text` stands for, with `error` cleared; or an empty array and a reason in `error`.
QByteArray parseReadable(const QString& text, QString* error);

// A message to send: `text` as parseReadable reads it, framed as STX + text + ETX unless it
// frames itself (holds an STX) or is nothing but bare ENQ/ACK/NAK bytes.
QByteArray parseMessage(const QString& text, QString* error);

// The notation of `bytes`: control bytes as tags; other bytes outside 32..126, '\' and '<' as
// \xHH. parseReadable(toReadable(b)) == b for every b.
QString toReadable(const QByteArray& bytes);

} // namespace larkspur
