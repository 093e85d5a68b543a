#include "console/ipv4_address.h"

#include <QStringList>

namespace larkspur {

quint32 packAddress(quint8 b1, quint8 b2, quint8 b3, quint8 b4) {
    return quint32(b1) << 24 | quint32(b2) << 16 | quint32(b3) << 8 | quint32(b4);
}

quint8 addressByte(quint32 address, int field) {
    return quint8(address >> (8 * (3 - field)));
}

QString formatAddress(quint32 address) {
    return QStringLiteral("%1.%2.%3.%4")
        .arg(addressByte(address, 0))
        .arg(addressByte(address, 1))
        .arg(addressByte(address, 2))
        .arg(addressByte(address, 3));
}

namespace {

// One "."-separated part as a byte value, or -1 when it is not a whole number 0 ... 255.
int byteValue(const QString& part) {
    const QString digits = part.trimmed();
    bool digitsOnly = !digits.isEmpty();
    for (QChar c : digits)
        digitsOnly = digitsOnly && c >= u'0' && c <= u'9';
    bool fits = false;
    const int value = digitsOnly ? digits.toInt(&fits) : -1;
    return fits && value <= 255 ? value : -1;
}

QString notAByte(const QString& text, int part, const QString& partText) {
    return QStringLiteral("part %1 of \"%2\" (\"%3\") is not a whole number from 0 to 255")
        .arg(part)
        .arg(text, partText);
}

} // namespace

AddressText parseAddressText(const QString& text) {
    AddressText result;
    if (!text.contains(u'.'))
        return result;
    const QStringList parts = text.split(u'.');
    result.outcome = AddressText::Outcome::Invalid;
    if (parts.size() < 4) {
        result.error = QStringLiteral("\"%1\" has fewer than four parts").arg(text);
        return result;
    }
    quint8 bytes[4];
    for (int i = 0; i < 4; ++i) {
        const int value = byteValue(parts[i]);
        if (value < 0) {
            result.error = notAByte(text, i + 1, parts[i]);
            return result;
        }
        bytes[i] = quint8(value);
    }
    result.outcome = AddressText::Outcome::Set;
    result.address = packAddress(bytes[0], bytes[1], bytes[2], bytes[3]);
    return result;
}

PastedAddress splitPastedAddress(const QString& text, int firstField) {
    PastedAddress result;
    const QString trimmed = text.trimmed();
    const QStringList parts = trimmed.split(u'.');
    if (parts.size() > 4 - firstField) {
        result.error = QStringLiteral("\"%1\" has %2 parts, more than the %3 field(s) from here")
                           .arg(trimmed)
                           .arg(parts.size())
                           .arg(4 - firstField);
        return result;
    }
    for (int i = 0; i < int(parts.size()); ++i) {
        const int value = byteValue(parts[i]);
        if (value < 0) {
            result.error = notAByte(trimmed, i + 1, parts[i]);
            result.fields.clear();
            return result;
        }
        result.fields << QString::number(value);
    }
    return result;
}

quint32 packFieldRange(int low, int high) {
    return quint32(qint64(high) * 65536 + low);
}

FieldRange decodeFieldRange(quint32 packed) {
    return FieldRange{int(packed & 0xFF), int((packed >> 8) & 0xFF)};
}

int constrainToRange(int value, FieldRange range) {
    if (value < range.low)
        return range.low;
    if (value > range.high)
        return range.high;
    return value;
}

} // namespace larkspur
