// The messages of the PMS interface as the console knows them. The transactions, the script
// runner, the recorder and the wire trace all read this one table.
#include "protocol/message_catalogue.h"

#include <QtGlobal>

namespace larkspur {

namespace {
using F = Field;

QStringList wordsWithDigits(const QString& head, const QString& digits) {
    QStringList words;
    for (const QChar digit : digits)
        words << head + digit;
    return words;
}
} // namespace

// Built on first use, so the transactions' own tables can be built from it at start-up.
const QList<HotelMessage>& hotelMessages() {
    const QString nack = QStringLiteral("-> PBX DID NOT ACKnowkledge the ");
    // Hotel script lines hold the frame body: the code, a blank, then the fields.
    const QList<FieldColumn> roomColumns = {{6, 5, F::txt_suite_1}};
    const QList<FieldColumn> nameColumns = {{6, 21, F::Text1}, {27, 5, F::txt_suite_1}};
    const QList<FieldColumn> departmentColumns = {{6, 10, F::txt_department},
                                                  {16, 5, F::txt_suite_1}};
    const QList<FieldColumn> locationColumns = {{6, 10, F::txt_location}, {16, 5, F::txt_suite_1}};
    static const QList<HotelMessage> messages = {
        {.code = "CHK1",
         .name = "check-in",
         .button = Control::cmd_chk_in,
         .logPrefix = "Sending     -->",
         .failureSentence = nack + "Check in message:",
         .ackNeedsPoll = true,
         .scriptWords = {"CHK1"},
         .columns = roomColumns},
        {.code = "CHK0",
         .name = "check-out",
         .button = Control::cmd_chk_out,
         .logPrefix = "Sending   -->",
         .failureSentence = nack + "Check out message:",
         .scriptWords = {"CHK0"},
         .columns = roomColumns},
        {.code = "NAM1",
         .name = "add name",
         .button = Control::cmd_name_1,
         .logPrefix = "Sending  -->",
         .failureSentence = nack + "Add name message:",
         .scriptWords = {"NAM1"},
         .columns = nameColumns},
        {.code = "NAM2",
         .name = "replace name",
         .button = Control::cmd_replace_name,
         .logPrefix = "Sending   -->",
         .failureSentence = nack + "replace name message:",
         .scriptWords = {"NAM2"},
         .columns = nameColumns},
        {.code = "NAM3",
         .name = "delete name",
         .button = Control::Command6,
         .logPrefix = "Sending   -->",
         .failureSentence = nack + "delete message:",
         .scriptWords = {"NAM3"},
         .columns = nameColumns},
        {.code = "NAM4",
         .name = "transfer name",
         .button = Control::cmd_xfer_name,
         .logPrefix = "Sending   -->",
         .failureSentence = nack + "transfer name message:",
         .scriptWords = {"NAM4"},
         .columns = {{6, 21, F::Text1}, {27, 5, F::txt_suite_1}, {32, 5, F::txt_suite_2}}},
        {.code = "MW 1",
         .name = "message waiting on",
         .button = Control::cmd_msg_wait,
         .logPrefix = "Sending  -->",
         .failureSentence = nack + "message waiting on message:",
         .scriptWords = {"MW 1"},
         .columns = roomColumns},
        {.code = "MW 0",
         .name = "message waiting off",
         .button = Control::cmd_message_waiting_0,
         .logPrefix = "Sending  -->",
         .failureSentence = nack + "message waiting off message:",
         .scriptWords = {"MW 0"},
         .columns = roomColumns},
        {.code = "LMT1",
         .name = "credit limit",
         .button = Control::cmd_set_credit,
         .logPrefix = "Sending  -->",
         .failureSentence = nack + "credit limit msg:",
         .scriptWords = {"LMT1"},
         .columns = {{6, 5, F::txt_suite_1}, {12, 5, F::txt_credit}}},
        // The time's first digit completes the script word.
        {.code = "WKP",
         .name = "wake-up",
         .button = Control::cmd_wakeup,
         .logPrefix = "Sending  -->",
         .failureSentence = nack + "wakeup message:",
         .scriptWords = wordsWithDigits("WKP", "012"),
         .columns = {{4, 4, F::txt_time}, {8, 5, F::txt_suite_1}}},
        // The level completes the code and the script word.
        {.code = "RST",
         .name = "restriction",
         .button = Control::cmb_restrict,
         .logPrefix = "Send     -->",
         .failureSentence = nack + "Station Restriction Message:",
         .enqFailureCounts = false,
         .enqFailureLogTimed = false,
         .scriptWords = wordsWithDigits("RST", "012345"),
         .columns = roomColumns},
        {.code = "DPT1",
         .name = "add department",
         .button = Control::cmd_dept,
         .logPrefix = "Sending  -->",
         .failureSentence = nack + "add department message:",
         .scriptWords = {"DPT1"},
         .columns = departmentColumns},
        {.code = "DPT2",
         .name = "replace department",
         .button = Control::cmd_department_2,
         .logPrefix = "Sending   -->",
         .failureSentence = nack + "replace department message:",
         .scriptWords = {"DPT2"},
         .columns = departmentColumns},
        {.code = "DPT3",
         .name = "delete department",
         .button = Control::cmd_department_3,
         .logPrefix = "Sending   -->",
         .failureSentence = nack + "delete department message:",
         .scriptWords = {"DPT3"},
         .columns = departmentColumns},
        {.code = "LOC1",
         .name = "add location",
         .button = Control::cmd_loc,
         .logPrefix = "Sending  -->",
         .failureSentence = nack + "add location message:",
         .scriptWords = {"LOC1"},
         .columns = locationColumns},
        {.code = "LOC2",
         .name = "replace location",
         .button = Control::cmd_location_2,
         .logPrefix = "Sending  -->",
         .failureSentence = nack + "replace location message:",
         .scriptWords = {"LOC2"},
         .columns = locationColumns},
        {.code = "LOC3",
         .name = "delete location",
         .button = Control::cmd_location_3,
         .logPrefix = "Sending  -->",
         .failureSentence = nack + "delete location message:",
         .scriptWords = {"LOC3"},
         .columns = locationColumns},
        // Sent by eleven buttons; the runner reads its lines by their own layout.
        {.code = "STE",
         .name = "linked suite",
         .button = Control::cmd_ste0,
         .logPrefix = "Sending    -->",
         .failureSentence = nack + "link suite message:",
         .enqFailureCounts = false},
        // The manual link messages.
        {.code = "AREYUTHERE",
         .name = "are you there",
         .button = Control::cmd_ayt,
         .logPrefix = {},
         .failureSentence = {},
         .recorded = false},
        {.code = "GRS",
         .name = "GRS",
         .button = Control::cmd_grs,
         .logPrefix = {},
         .failureSentence = {},
         .recorded = false},
        {.code = "END",
         .name = "END",
         .button = Control::cmd_end,
         .logPrefix = {},
         .failureSentence = {},
         .recorded = false},
    };
    return messages;
}

const QList<VmailMessage>& vmailMessages() {
    static const QList<VmailMessage> messages = {
        {.code = "1",
         .name = "voice mail 1 resynchronize",
         .button = std::nullopt,
         .label = {},
         .hasMailbox = false},
        {.code = "2",
         .name = "voice mail 2 check-in",
         .button = Control::cmd_chk_in,
         .label = "CHECK IN: "},
        {.code = "3",
         .name = "voice mail 3 check-out",
         .button = Control::cmd_chk_out,
         .label = "CHECK OUT: "},
        {.code = "6",
         .name = "voice mail 6 MW status",
         .button = Control::cmd_name_1,
         .label = "QUERY MW STATUS: "},
        {.code = "7",
         .name = "voice mail 7 move mailbox",
         .button = Control::Command6,
         .label = "MOVE MAILBOX: ",
         .extra = F::txt_suite_2,
         .extraWidth = 6,
         .extraLabel = " TO: ",
         .extraMissing = mailboxMissingNotice()},
        {.code = "8",
         .name = "voice mail 8 FCOS",
         .button = Control::cmd_department_3,
         .label = "MODIFY FCOS: ",
         .extra = F::txt_suite_4,
         .extraWidth = 2,
         .extraLabel = " FCOS: ",
         .extraMissing = "Please enter a Number for new FCOS"},
        {.code = "9",
         .name = "voice mail 9 text MW",
         .button = Control::cmd_replace_name,
         .label = "TEXT MESSAGE MW: ",
         .extra = F::txt_department,
         .extraWidth = 2,
         .extraLabel = " Unread: ",
         .extraMissing = "Please enter a Number for 'Unread'"},
        {.code = "A",
         .name = "voice mail A check-in with passcode",
         .button = Control::cmd_xfer_name,
         .label = "CHECK IN (Passwd): ",
         .extra = F::txt_suite_1,
         .extraWidth = 6,
         .extraLabel = " PASSCODE: ",
         .extraMissing = "Please enter a Number for the PASCODE"},
        {.code = "B",
         .name = "voice mail B passcode",
         .button = Control::cmd_dept,
         .label = "CHANGE PASSCODE: ",
         .extra = F::txt_suite_1,
         .extraWidth = 6,
         .extraLabel = " PASSCODE: ",
         .extraMissing = "Please enter a Number for the PASSCODE"},
        {.code = "D",
         .name = "voice mail D ID",
         .button = Control::cmd_department_2,
         .label = "CHANGE ID: ",
         .extra = F::txt_suite_3,
         .extraWidth = 6,
         .extraLabel = " ID: ",
         .extraMissing = "Please enter a Number for new ID"},
    };
    return messages;
}

QString mailboxMissingNotice() {
    return QStringLiteral("Please enter a Mailbox Number");
}

const HotelMessage& hotelMessage(const QString& code) {
    for (const HotelMessage& message : hotelMessages())
        if (message.code == code)
            return message;
    qFatal("no hotel message %s in the catalogue", qPrintable(code));
}

const VmailMessage* findVmailMessage(const QString& code) {
    for (const VmailMessage& message : vmailMessages())
        if (message.code == code)
            return &message;
    return nullptr;
}

const HotelMessage* hotelMessageOfBody(const QString& body) {
    for (const HotelMessage& message : hotelMessages())
        if (body.startsWith(message.code))
            return &message;
    return nullptr;
}

} // namespace larkspur
