#include "link/serial_line.h"

#include <QStringList>

#include <cmath>
#include <optional>

namespace larkspur {

namespace {
template <typename T> struct Named {
    const char16_t* name;
    T value;
};
const Named<QSerialPort::Parity> parities[] = {
    {u"N", QSerialPort::NoParity},    {u"E", QSerialPort::EvenParity},
    {u"O", QSerialPort::OddParity},   {u"M", QSerialPort::MarkParity},
    {u"S", QSerialPort::SpaceParity},
};
const Named<QSerialPort::StopBits> stopBits[] = {
    {u"1", QSerialPort::OneStop},
    {u"1.5", QSerialPort::OneAndHalfStop},
    {u"2", QSerialPort::TwoStop},
};

template <typename T, size_t n>
std::optional<T> find(const Named<T> (&table)[n], const QString& name) {
    for (const Named<T>& entry : table)
        if (name == entry.name)
            return entry.value;
    return std::nullopt;
}
} // namespace

bool parseSerialLine(const QString& text, SerialLine& line, QString& error) {
    QStringList parts = text.split(QLatin1Char(','));
    // Stop bits "1.5" are offered with the locale's decimal separator, which may be a comma.
    if (parts.size() == 5 && parts[3].trimmed() == u"1" && parts[4].trimmed() == u"5")
        parts = {parts[0], parts[1], parts[2], QStringLiteral("1.5")};
    if (parts.size() != 4) {
        error = QStringLiteral("line settings \"%1\" are not speed,parity,data bits,stop bits")
                    .arg(text);
        return false;
    }
    bool ok = false;
    const int baud = parts[0].trimmed().toInt(&ok);
    if (!ok || baud <= 0) {
        error = QStringLiteral("speed \"%1\" is not a number of bits per second").arg(parts[0]);
        return false;
    }
    SerialLine result;
    result.baudRate = baud;
    const auto parity = find(parities, parts[1].trimmed().toUpper());
    if (!parity) {
        error = QStringLiteral("parity \"%1\" is not one of E, M, N, O, S").arg(parts[1]);
        return false;
    }
    result.parity = *parity;
    const int data = parts[2].trimmed().toInt(&ok);
    if (!ok || data < 4 || data > 8) {
        error = QStringLiteral("data bits \"%1\" are not 4 to 8").arg(parts[2]);
        return false;
    }
    result.dataBits = data;
    const auto stop = find(stopBits, parts[3].trimmed());
    if (!stop) {
        error = QStringLiteral("stop bits \"%1\" are not 1, 1.5 or 2").arg(parts[3]);
        return false;
    }
    result.stopBits = *stop;
    line = result;
    return true;
}

int frameGapMs(int givenMs, bool tcp, const QString& lineSettings) {
    constexpr int floorMs = 100;
    constexpr int characters = 20;
    if (givenMs > 0)
        return givenMs;
    SerialLine line;
    QString error;
    if (tcp || !parseSerialLine(lineSettings, line, error) || line.baudRate <= 0)
        return floorMs;
    // A character is a start bit, the data bits, the parity bit and the stop bits.
    const double stop = line.stopBits == QSerialPort::OneStop          ? 1.0
                        : line.stopBits == QSerialPort::OneAndHalfStop ? 1.5
                                                                       : 2.0;
    const double bits = 1.0 + line.dataBits + (line.parity == QSerialPort::NoParity ? 0 : 1) + stop;
    return qMax(floorMs, int(std::ceil(characters * bits * 1000.0 / double(line.baudRate))));
}

QString SerialSettings::take(const SerialOptions& given) {
    QString error;
    if (!parseSerialLine(given.lineSettings, line, error))
        return error;
    options = given;
    return QString();
}

Option frameGapOption(int& frameGapMs) {
    return {"--frame-gap",
            {"MS"},
            "how long the line must be silent before a frame whose end never came is\n"
            "taken as it stands (default: the longer of 100 ms and 20 character times\n"
            "at the line's speed)",
            takeWhole(frameGapMs, 1, 60'000)};
}

Option lineOption(QString& line, const QString& help) {
    return {"--line", {"SPEED,PARITY,DATA,STOP"}, help, takeSerialLine(line)};
}

TakeValues takeSerialLine(QString& into) {
    return [&into](const QStringList& values) {
        SerialLine line;
        QString why;
        if (values.at(0).split(u',').size() != 4 || !parseSerialLine(values.at(0), line, why))
            return QStringLiteral("wants SPEED,PARITY,DATA,STOP, not \"%1\"%2")
                .arg(values.at(0), why.isEmpty() ? QString() : QStringLiteral(": ") + why);
        into = values.at(0);
        return QString();
    };
}

QString serialDeviceName(const QString& commPortNumber) {
    const QString text = commPortNumber.trimmed();
    bool numeric = false;
    const int n = text.toInt(&numeric);
    if (!numeric || n < 1)
        return text;
#ifdef Q_OS_WIN
    return QStringLiteral("COM%1").arg(n);
#else
    return QStringLiteral("/dev/ttyS%1").arg(n - 1);
#endif
}

} // namespace larkspur
