#pragma once

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

// The bits one character takes on the line: start, data, parity and stop bits.
double bitsPerCharacter(const SerialLine& line);

// A port number N is the platform's Nth port; any other text is a device name or path.
QString serialDeviceName(const QString& commPortNumber);

} // namespace larkspur
