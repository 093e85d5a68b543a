#include "protocol/vmail_frame.h"

#include "protocol/frame.h"

namespace larkspur {

namespace {
// Field widths after the code; 0 means the field is not part of the body.
struct VmailLayout {
    qint16 field1;
    qint16 field2;
};

bool layoutOf(const QString& code, VmailLayout& layout) {
    if (code == u"1")
        layout = {0, 0};
    else if (code == u"2" || code == u"3" || code == u"6")
        layout = {6, 0};
    else if (code == u"7" || code == u"A" || code == u"B" || code == u"D")
        layout = {6, 6};
    else if (code == u"8" || code == u"9")
        layout = {6, 2};
    else
        return false;
    return true;
}
} // namespace

QString build_vmail_message(const QString& code, const QString& field1, const QString& field2,
                            const QString& protocolType, bool& recognized) {
    QString body = code;
    VmailLayout layout{};
    recognized = layoutOf(code, layout);
    if (recognized) {
        if (layout.field1 > 0) {
            QString f1 = trimBlanks(field1);
            body += pad_field(f1, layout.field1);
        }
        if (layout.field2 > 0) {
            QString f2 = field2;
            body += pad_field(f2, layout.field2);
        }
    }
    if (protocolType == u"HYATT")
        pad_field(body, 13);
    return start_of_text() + body + end_of_text() + CRC(body + end_of_text());
}

} // namespace larkspur
