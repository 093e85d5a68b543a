#pragma once

#include "transactions/press_steps.h"
#include "transactions/send_sequences.h"

#include <QStringList>

namespace larkspur {

class Session;

// The steps of a press as the session takes them: a refused field is logged (or, in voice mail,
// told in a notice) and signalled; a press that sent nothing because it refused its fields is
// signalled once more when it ends, with everything it said.
class SessionPress : public PressSteps {
public:
    explicit SessionPress(Session& session) : m_session(session) {}

    void refuse(const FieldRefusal& refusal) final;
    bool send(const PressMessage& message) final;
    // After the press.
    void finish();

protected:
    virtual bool deliver(const PressMessage& message) = 0;
    // Tells how one message of the press ended; true when the PBX took it.
    bool report(SendResult result, const QString& message);
    // `lastVmailMessage`.
    void keepVmailMessage(const QString& frame);
    Session& m_session;

private:
    bool m_sent = false;
    QStringList m_said;
};

} // namespace larkspur
