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

QList<HotelMessage> buildHotelMessages() {
    const QString nack = QStringLiteral("-> PBX DID NOT ACKnowkledge the ");
    // Hotel script lines hold the frame body: the code, a blank, then the fields.
    const QList<FieldColumn> roomColumns = {{6, 5, F::txt_suite_1}};
    const QList<FieldColumn> nameColumns = {{6, 21, F::Text1}, {27, 5, F::txt_suite_1}};
    const QList<FieldColumn> departmentColumns = {{6, 10, F::txt_department},
                                                  {16, 5, F::txt_suite_1}};
    const QList<FieldColumn> locationColumns = {{6, 10, F::txt_location}, {16, 5, F::txt_suite_1}};
    // A message whose script lines start with its own code and hold `columns`.
    const auto own = [&nack](const char* code, const char* name, Control button,
                             const char* logPrefix, const char* failure,
                             const QList<FieldColumn>& columns) {
        return HotelMessage{.code = code,
                            .name = name,
                            .button = button,
                            .logPrefix = logPrefix,
                            .failureSentence = nack + failure,
                            .scriptWords = {code},
                            .columns = columns};
    };
    // A manual link message: never recorded.
    const auto manual = [](const char* code, const char* name, Control button) {
        return HotelMessage{.code = code,
                            .name = name,
                            .button = button,
                            .logPrefix = {},
                            .failureSentence = {},
                            .recorded = false};
    };
    HotelMessage checkIn = own("CHK1", "check-in", Control::cmd_chk_in, "Sending     -->",
                               "Check in message:", roomColumns);
    checkIn.ackNeedsPoll = true;
    // The time's first digit completes the script word.
    HotelMessage wakeUp = own("WKP", "wake-up", Control::cmd_wakeup, "Sending  -->",
                              "wakeup message:", {{4, 4, F::txt_time}, {8, 5, F::txt_suite_1}});
    wakeUp.scriptWords = wordsWithDigits("WKP", "012");
    // The level completes the code and the script word. A refused bid is told without its time
    // and is not counted.
    HotelMessage restriction = own("RST", "restriction", Control::cmb_restrict, "Send     -->",
                                   "Station Restriction Message:", roomColumns);
    restriction.scriptWords = wordsWithDigits("RST", "012345");
    restriction.enqFailureCounts = false;
    restriction.enqFailureLogTimed = false;
    // Sent by eleven buttons; the runner reads its lines by their own layout. A refused bid is
    // not counted.
    HotelMessage suite =
        own("STE", "linked suite", Control::cmd_ste0, "Sending    -->", "link suite message:", {});
    suite.scriptWords.clear();
    suite.enqFailureCounts = false;
    return {
        checkIn,
        own("CHK0", "check-out", Control::cmd_chk_out, "Sending   -->",
            "Check out message:", roomColumns),
        own("NAM1", "add name", Control::cmd_name_1, "Sending  -->",
            "Add name message:", nameColumns),
        own("NAM2", "replace name", Control::cmd_replace_name, "Sending   -->",
            "replace name message:", nameColumns),
        own("NAM3", "delete name", Control::Command6, "Sending   -->",
            "delete message:", nameColumns),
        own("NAM4", "transfer name", Control::cmd_xfer_name, "Sending   -->",
            "transfer name message:",
            {{6, 21, F::Text1}, {27, 5, F::txt_suite_1}, {32, 5, F::txt_suite_2}}),
        own("MW 1", "message waiting on", Control::cmd_msg_wait, "Sending  -->",
            "message waiting on message:", roomColumns),
        own("MW 0", "message waiting off", Control::cmd_message_waiting_0, "Sending  -->",
            "message waiting off message:", roomColumns),
        own("LMT1", "credit limit", Control::cmd_set_credit, "Sending  -->",
            "credit limit msg:", {{6, 5, F::txt_suite_1}, {12, 5, F::txt_credit}}),
        wakeUp,
        restriction,
        own("DPT1", "add department", Control::cmd_dept, "Sending  -->",
            "add department message:", departmentColumns),
        own("DPT2", "replace department", Control::cmd_department_2, "Sending   -->",
            "replace department message:", departmentColumns),
        own("DPT3", "delete department", Control::cmd_department_3, "Sending   -->",
            "delete department message:", departmentColumns),
        own("LOC1", "add location", Control::cmd_loc, "Sending  -->",
            "add location message:", locationColumns),
        own("LOC2", "replace location", Control::cmd_location_2, "Sending  -->",
            "replace location message:", locationColumns),
        own("LOC3", "delete location", Control::cmd_location_3, "Sending  -->",
            "delete location message:", locationColumns),
        suite,
        manual("AREYUTHERE", "are you there", Control::cmd_ayt),
        manual("GRS", "GRS", Control::cmd_grs),
        manual("END", "END", Control::cmd_end),
    };
}
} // namespace

// Built on first use, so the transactions' own tables can be built from it at start-up.
const QList<HotelMessage>& hotelMessages() {
    static const QList<HotelMessage> messages = buildHotelMessages();
    return messages;
}

const QList<VmailMessage>& vmailMessages() {
    // An operation on a mailbox alone, and one with a second field after it.
    const auto mailbox = [](const char* code, const char* name, Control button, const char* label) {
        return VmailMessage{.code = code, .name = name, .button = button, .label = label};
    };
    const auto withField = [](const char* code, const char* name, Control button, const char* label,
                              Field extra, int width, const char* extraLabel,
                              const QString& missing) {
        return VmailMessage{.code = code,
                            .name = name,
                            .button = button,
                            .label = label,
                            .extra = extra,
                            .extraWidth = width,
                            .extraLabel = extraLabel,
                            .extraMissing = missing};
    };
    static const QList<VmailMessage> messages = {
        {.code = "1",
         .name = "voice mail 1 resynchronize",
         .button = std::nullopt,
         .label = {},
         .hasMailbox = false},
        mailbox("2", "voice mail 2 check-in", Control::cmd_chk_in, "CHECK IN: "),
        mailbox("3", "voice mail 3 check-out", Control::cmd_chk_out, "CHECK OUT: "),
        mailbox("6", "voice mail 6 MW status", Control::cmd_name_1, "QUERY MW STATUS: "),
        withField("7", "voice mail 7 move mailbox", Control::Command6,
                  "MOVE MAILBOX: ", F::txt_suite_2, 6, " TO: ", mailboxMissingNotice()),
        withField("8", "voice mail 8 FCOS", Control::cmd_department_3, "MODIFY FCOS: ",
                  F::txt_suite_4, 2, " FCOS: ", "Please enter a Number for new FCOS"),
        withField("9", "voice mail 9 text MW", Control::cmd_replace_name, "TEXT MESSAGE MW: ",
                  F::txt_department, 2, " Unread: ", "Please enter a Number for 'Unread'"),
        withField("A", "voice mail A check-in with passcode", Control::cmd_xfer_name,
                  "CHECK IN (Passwd): ", F::txt_suite_1, 6,
                  " PASSCODE: ", "Please enter a Number for the PASCODE"),
        withField("B", "voice mail B passcode", Control::cmd_dept, "CHANGE PASSCODE: ",
                  F::txt_suite_1, 6, " PASSCODE: ", "Please enter a Number for the PASSCODE"),
        withField("D", "voice mail D ID", Control::cmd_department_2, "CHANGE ID: ", F::txt_suite_3,
                  6, " ID: ", "Please enter a Number for new ID"),
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
