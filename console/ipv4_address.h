#pragma once

#include <QString>
#include <QStringList>
#include <QtGlobal>

namespace larkspur {

// The address value of the four-field IPv4 control: four bytes, most significant first.
quint32 packAddress(quint8 b1, quint8 b2, quint8 b3, quint8 b4);
quint8 addressByte(quint32 address, int field);
// "10.0.0.1": decimal, never padded.
QString formatAddress(quint32 address);

// Writing an address text: a text without "." is ignored; otherwise its first four "."-separated
// parts must each be a whole number 0 ... 255 (parts after the fourth are not looked at).
struct AddressText {
    enum class Outcome { Set, Ignored, Invalid };
    Outcome outcome = Outcome::Ignored;
    quint32 address = 0;
    QString error; // why an Invalid text was refused
};
AddressText parseAddressText(const QString& text);

// A dotted text pasted into the field `firstField` (0 ... 3): each part fills one field from
// there on. Taken only whole: every part a whole number 0 ... 255 and no more parts than fields
// left; otherwise `error` says why and nothing is to change.
struct PastedAddress {
    QStringList fields; // the texts of the fields from `firstField` on
    QString error;
};
PastedAddress splitPastedAddress(const QString& text, int firstField);

// The limits of one field.
struct FieldRange {
    int low = 0;
    int high = 255;
    bool operator==(const FieldRange&) const = default;
};

// The console packs a field range as high * 65536 + low. The control reads the low limit from
// the lowest byte and the high limit from the second byte, which that packing leaves zero, so a
// range set this way comes out as low ... 0.
quint32 packFieldRange(int low, int high);
FieldRange decodeFieldRange(quint32 packed);

// What the control makes of a finished field entry: below the low limit it becomes the low
// limit, otherwise above the high limit it becomes the high limit.
int constrainToRange(int value, FieldRange range);

} // namespace larkspur
