#include "protocol/frame.h"

namespace larkspur {

QString start_of_text() {
    return QString(QChar(ctl::STX));
}

QString end_of_text() {
    return QString(QChar(ctl::ETX));
}

QString carriage_return() {
    return QStringLiteral("\r\n");
}

QString Time_of_error(const QDateTime& now) {
    return now.toString(QStringLiteral("yyyy-MM-dd")) + QLatin1Char(' ') +
           now.toString(QStringLiteral("HH:mm:ss"));
}

char blockCheck(QByteArrayView bytes) {
    char bcc = 0;
    for (const char byte : bytes)
        bcc ^= byte;
    return bcc;
}

QString CRC(const QString& text) {
    // Each character takes part with the low byte of its code.
    QByteArray low(text.size(), Qt::Uninitialized);
    for (qsizetype i = 0; i < text.size(); ++i)
        low[i] = char(text.at(i).unicode() & 0xFF);
    return QString(QChar(char16_t(quint8(blockCheck(low)))));
}

bool checkCharacterRight(QByteArrayView frame) {
    return frame.size() >= 3 && frame.at(frame.size() - 2) == char(ctl::ETX) &&
           blockCheck(frame.sliced(1, frame.size() - 2)) == frame.back();
}

QString pad_field(QString& text, qint16 width) {
    if (text.size() < width)
        text += QString(width - text.size(), QLatin1Char(' '));
    return text;
}

QString trimBlanks(const QString& text) {
    qsizetype begin = 0, end = text.size();
    while (begin < end && text.at(begin) == QLatin1Char(' '))
        ++begin;
    while (end > begin && text.at(end - 1) == QLatin1Char(' '))
        --end;
    return text.mid(begin, end - begin);
}

QStringList splitLines(const QString& text) {
    QStringList lines;
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c != QLatin1Char('\r') && c != QLatin1Char('\n'))
            continue;
        lines.append(text.mid(start, i - start));
        if (c == QLatin1Char('\r') && i + 1 < text.size() && text.at(i + 1) == QLatin1Char('\n'))
            ++i;
        start = i + 1;
    }
    if (start < text.size())
        lines.append(text.mid(start));
    return lines;
}

QString plain_frame(const QString& text) {
    return start_of_text() + text + end_of_text();
}

const QString& rqinzFrame() {
    static const QString frame = plain_frame(QStringLiteral("RQINZ     "));
    return frame;
}

} // namespace larkspur
