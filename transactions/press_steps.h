#pragma once

#include "core/field.h"
#include "core/pms_mode.h"

#include <QList>
#include <QString>

#include <functional>

namespace larkspur {

// What one press of a transaction button reads: the input fields (read afresh at every step, as
// the operator may type meanwhile), error mode, and the protocol voice-mail frames are built for.
struct PressInput {
    std::function<QString(Field)> text;
    bool errorMode = false;
    Protocol protocol = Protocol::Hyatt;
};

// A field as a message carries it: the input field and its text in the message.
struct SentField {
    Field field;
    QString form;
};

// One message a press sends.
struct PressMessage {
    QString body;            // hotel: the frame's text; voice mail: the whole frame
    QString reported;        // hotel: what its failure lines show; voice mail: its log line
    QList<SentField> fields; // the input fields it carries, each in its sent form
};

// A field a press refuses, and what it says: a line in the log, or (voice mail) a notice.
struct FieldRefusal {
    Field field;
    QString text;
    bool notice = false;
};

// The steps of one press, in the order the transaction takes them. The session logs and sends
// them; the script check notes them, so it knows what a script line will do without a link.
class PressSteps {
public:
    virtual ~PressSteps() = default;
    virtual void refuse(const FieldRefusal& refusal) = 0;
    // Sends one message; false when the PBX did not take it, which ends the press.
    virtual bool send(const PressMessage& message) = 0;
    // Voice mail: a field longer than its place is cut to `kept` in its text box first.
    virtual void cut(Field field, const QString& kept) {
        Q_UNUSED(field);
        Q_UNUSED(kept);
    }
};

// Every validation rule of the transactions is applied through these three, by the buttons and by
// the script check alike.
//
// A hotel transaction by its catalogue code ("CHK1", "NAM4", "WKP", "RST" + level): one message
// per usable room field.
void pressHotel(const QString& code, const PressInput& input, PressSteps& steps);
// A linked-suite button by its word, "STE0" .. "STEB": the pilot and the members (STE5: the pilot
// and the new pilot).
void pressLinkedSuite(const QString& word, const PressInput& input, PressSteps& steps);
// A mailbox operation by its function code ("2" .. "D").
void pressVmail(const QString& code, const PressInput& input, PressSteps& steps);

} // namespace larkspur
