#pragma once

#include "common/fake_session.h"
#include "common/link_fixture.h"
#include "protocol/frame.h"
#include "transactions/session.h"

#include <utility>

namespace larkspur::test {

using FieldTexts = QList<std::pair<Field, QString>>;
using Action = Control;

// A session in virtual time with a simulated PBX behind its TCP link, open, in HOTEL mode and
// recording.
class SessionFixture : public ::testing::Test, protected FakeSession {
protected:
    SimulatedPbx pbx{pump, tcp};

    void SetUp() override {
        tcp.connectToHost(QStringLiteral("127.0.0.1"), 15374);
        pump.processEvents();
        tcp.written.clear();
        session.recorder().start(QString());
    }

    // A fresh start for the next case of a table: link open, fields empty, nothing logged, sent
    // or recorded.
    void restart() {
        SetUp();
        for (int f = 0; f < fieldCount; ++f)
            session.fields().setText(Field(f), QString());
        session.log() = TrafficLog();
        session.errors().clearReport();
        session.errors().resetErrors();
        op.notices.clear();
    }

    void type(const FieldTexts& texts) {
        for (const auto& [field, text] : texts)
            session.fields().setText(field, text);
    }
    // The restriction list's choice, sent when cmb_restrict is clicked.
    QString chosenRestriction = QStringLiteral("long distant call");
    void press(Action action) {
        if (action == Control::cmb_restrict)
            session.cmb_restrict_Click(chosenRestriction);
        else
            session.press(action);
    }
    void click(const FieldTexts& texts, Action action) {
        type(texts);
        press(action);
    }

    QStringList lines() {
        QStringList l = session.log().logText().split(QStringLiteral("\r\n"));
        if (!l.isEmpty() && l.last().isEmpty())
            l.removeLast();
        return l;
    }
    QString stamp() { return Time_of_error(pump.currentDateTime()); }
};

// The log of one line bid that the PBX grants.
inline QStringList grantedBid() {
    return {"Sending -->    ENQ", "Received--> ACK"};
}

} // namespace larkspur::test
