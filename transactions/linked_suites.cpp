// Linked suites: a pilot and up to four member rooms that the PBX treats as one. Each STE
// button only picks the code; one sender builds and sends the message.
#include "core/operator_interface.h"
#include "transactions/field_validation.h"
#include "transactions/hotel_pattern.h"
#include "transactions/session.h"

#include <vector>

namespace larkspur {

namespace {

// A refused line bid is logged and recorded but not counted; five unanswered frames are.
const HotelMessageRule suiteRule = sendRule(QStringLiteral("STE"));

const QString invalidPilot = QStringLiteral("Invalid link suite pilot number!");

// One field of the message in its sent form, what follows it, and what is logged when invalid.
struct SuiteField {
    Field field;
    QString value;
    QString separator;
    QString invalidLine;
};

// A pilot goes out as it stands, right-justified, untrimmed.
SuiteField pilot(const PressInput& input, Field field, const QString& invalidLine) {
    const QString typed = input.text(field);
    return {field, input.errorMode ? typed : roomForm(typed), QStringLiteral(" "), invalidLine};
}

// A member is blank-trimmed and right-justified, with a blank after it; an empty member is no
// member. In error mode it goes out as typed, with nothing after it.
SuiteField member(const PressInput& input, Field field, int number) {
    const QString typed = input.text(field);
    const QString invalidLine = QStringLiteral("Invalid member number %1!").arg(number);
    if (input.errorMode)
        return {field, typed, QString(), invalidLine};
    const QString form = verify_member(trimBlanks(typed), 5);
    if (form.isEmpty() || form == NotValid)
        return {field, form, QString(), invalidLine};
    return {field, form.chopped(1), form.right(1), invalidLine};
}

} // namespace

void pressLinkedSuite(const QString& word, const PressInput& input, PressSteps& steps) {
    std::vector<SuiteField> fields{pilot(input, Field::txt_ls_pilot, invalidPilot)};
    // STE5 changes the pilot: the new pilot stands in the first member's field, and the other
    // members are not sent. Every other code sends the pilot and up to four members.
    if (word == u"STE5") {
        fields.push_back(pilot(input, Field::txt_suite_1,
                               QStringLiteral("Invalid link suite pilot  number 2!")));
    } else {
        for (int i = 0; i < 4; ++i)
            fields.push_back(member(input, roomFields[i], i + 1));
    }
    if (!input.errorMode) {
        for (const SuiteField& field : fields) {
            if (field.value == NotValid) {
                steps.refuse({field.field, field.invalidLine});
                return;
            }
        }
    }
    // The body is the code and the fields with their separators, less its last character: the
    // blank after the last member or pilot, or in error mode whatever was typed last.
    PressMessage message;
    message.body = word + u' ';
    for (const SuiteField& field : fields) {
        message.body += field.value + field.separator;
        if (!field.value.isEmpty())
            message.fields.append({field.field, field.value});
    }
    message.body.chop(1);
    message.reported = message.body;
    steps.send(message);
}

void Session::send_linked_suite(const QString& word) {
    sendHotelPress(*this, suiteRule, [&word](const PressInput& input, PressSteps& steps) {
        pressLinkedSuite(word, input, steps);
    });
}

void Session::cmd_ste_explain() {
    static const char* const rows[] = {
        "0 Create Linked Suite, Check In, No STS",
        "1 Create Linked Suite, Check In, STS Active",
        "2 Check In Suite(s)",
        "3 Check Out Suite(s)",
        "4 Breakdown Linked Suite, Check Out",
        "5 Change Pilot , No Check Out",
        "6 Add Suite(s), No Check In",
        "7 Delete Suite(s), No Check Out",
        "8 Create Liked Suite, No Check In, No Shared Telephone Service (STS)",
        "A Create Linked Suite, No Check In, STS Active",
        "B Breakdown Linked Suite, No Check Out",
    };
    QString text;
    for (const char* row : rows)
        text += QString::fromLatin1(row) + u'\n';
    m_operator.notify(text);
}

} // namespace larkspur
