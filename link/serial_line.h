#pragma once

#include "core/option_table.h"
#include "link/transport.h"

#include <QSerialPort>
#include <QString>

namespace larkspur {

struct SerialLine {
    qint32 baudRate = 9600;
    QSerialPort::Parity parity = QSerialPort::NoParity;
    int dataBits = 8;
    QSerialPort::StopBits stopBits = QSerialPort::OneStop;
};

// Reads "speed,parity,data,stop" (9600,N,8,1; parity E/M/N/O/S; data 4-8; stop 1, 1.5 or 2,
// where 1.5 may also be written with a decimal comma).
// On a bad text returns false and says which part is wrong in `error`.
bool parseSerialLine(const QString& text, SerialLine& line, QString& error);

// How long a line must be silent before a frame whose end never came is taken as it stands:
// `givenMs` when it is set (above 0); otherwise, on a serial line of `lineSettings`, the longer of
// 100 ms and 20 character times, and 100 ms over TCP.
int frameGapMs(int givenMs, bool tcp, const QString& lineSettings);

// The options a serial port was last given, and the line they name.
struct SerialSettings {
    SerialOptions options;
    SerialLine line;
    // Takes `given` when its line settings read; why they do not otherwise.
    QString take(const SerialOptions& given);
};

// --frame-gap MS, into `frameGapMs` (0 while not given).
Option frameGapOption(int& frameGapMs);
// --line SPEED,PARITY,DATA,STOP, as parseSerialLine reads it.
Option lineOption(QString& line, const QString& help);

// Takes an option's "speed,parity,data,stop" whole, as parseSerialLine reads it.
TakeValues takeSerialLine(QString& into);

// A port number N is the platform's Nth port; any other text is a device name or path.
QString serialDeviceName(const QString& commPortNumber);

} // namespace larkspur
