#pragma once

#include <QDialog>

class QLineEdit;

namespace larkspur {

class IPControl;
class Session;

// "Telnet": the PBX's address and TCP port. OK also chooses the TCP link for the next connect.
class TelnetDialog : public QDialog {
    Q_OBJECT
public:
    explicit TelnetDialog(Session& session, QWidget* parent = nullptr);

    // Shows the stored address and port, when a port is stored; a stored address the field
    // cannot hold is reported and left out.
    void load();

private:
    void ok();

    Session& m_session;
    IPControl* m_address;
    QLineEdit* m_port;
};

} // namespace larkspur
