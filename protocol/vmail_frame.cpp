#include "protocol/vmail_frame.h"

#include "protocol/frame.h"
#include "protocol/message_catalogue.h"

namespace larkspur {

QString build_vmail_message(const QString& code, const QString& field1, const QString& field2,
                            Protocol protocolType, bool& recognized) {
    QString body = code;
    const VmailMessage* layout = findVmailMessage(code);
    recognized = layout != nullptr;
    if (recognized) {
        if (layout->hasMailbox) {
            QString f1 = trimBlanks(field1);
            body += pad_field(f1, mailboxWidth);
        }
        if (layout->extraWidth > 0) {
            QString f2 = field2;
            body += pad_field(f2, layout->extraWidth);
        }
    }
    if (protocolType == Protocol::Hyatt)
        pad_field(body, 13);
    return start_of_text() + body + end_of_text() + CRC(body + end_of_text());
}

} // namespace larkspur
