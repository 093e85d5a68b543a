#pragma once

#include <QByteArrayView>
#include <QChar>
#include <QDateTime>
#include <QString>
#include <QStringList>

namespace larkspur {

// Control characters; on the wire each is one byte, never framed.
namespace ctl {
constexpr char16_t STX = 2;
constexpr char16_t ETX = 3;
constexpr char16_t ENQ = 5;
constexpr char16_t ACK = 6;
constexpr char16_t NAK = 21;
} // namespace ctl

QString start_of_text();
QString end_of_text();
QString carriage_return();

// Date first, one blank, then the time: the head of every error record.
QString Time_of_error(const QDateTime& now);

// The voice-mail block check: XOR of the low byte of every character, as one character.
QString CRC(const QString& text);
// The same check over bytes.
char blockCheck(QByteArrayView bytes);
// A voice-mail frame (STX, body, ETX, check character) whose last byte is the check of its body
// and ETX.
bool checkCharacterRight(QByteArrayView frame);

// Appends blanks until `text` is `width` long; never shortens. Returns the result as well.
QString pad_field(QString& text, qint16 width);

// Leading and trailing blanks taken off; other white space is part of the text.
QString trimBlanks(const QString& text);

// The lines of a text file: each ends at CR LF, CR or LF (the end is dropped); a last line
// without an end counts, an empty text has none.
QStringList splitLines(const QString& text);

// STX + text + ETX: the plain frame, sent as it stands.
QString plain_frame(const QString& text);

// The PBX's initialisation request as it arrives: STX, "RQINZ" and five blanks, ETX.
const QString& rqinzFrame();

} // namespace larkspur
