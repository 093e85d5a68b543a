#pragma once

#include <QDialog>

class QComboBox;
class QFormLayout;

namespace larkspur {

class Session;

// "Comm Port Options": the serial port and its line settings. OK also chooses the serial link
// for the next connect; nothing is checked here, the connect reports what the port refuses.
class CommPortDialog : public QDialog {
    Q_OBJECT
public:
    explicit CommPortDialog(Session& session, QWidget* parent = nullptr);

    // Shows the stored settings (when a port is stored).
    void load();

private:
    void ok();
    QComboBox* addList(const char* name, const QString& label, const QStringList& entries);

    Session& m_session;
    QFormLayout* m_form;
    QComboBox* m_port;
    QComboBox* m_parity;
    QComboBox* m_speed;
    QComboBox* m_dataBits;
    QComboBox* m_stopBits;
    QComboBox* m_handShake;
};

} // namespace larkspur
