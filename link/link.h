#pragma once

#include "link/transport.h"

#include <QObject>
#include <QString>

namespace larkspur {

class EventPump;
class OperatorInterface;
class TrafficLog;

// Where and how to reach the PBX; loaded from and saved to the settings store by the console.
struct LinkSettings {
    bool useTcp = true;
    QString ipAddress = QStringLiteral("127.0.0.1");
    QString telnetPort = QStringLiteral("15374");
    QString commPortNumber = QStringLiteral("1");
    QString speed = QStringLiteral("1200");
    QString parity = QStringLiteral("N");
    QString dataBits = QStringLiteral("8");
    QString stopBits = QStringLiteral("2");
    QString handShake = QStringLiteral("comXOnXoff");
    bool dtrEnabled = false;
    bool rtsEnabled = false;
    bool nullDiscard = false;
};

// What differs between the hotel transactions in the shared send sequence.
struct HotelMessageRule {
    QString logPrefix;              // "Sending     -->", each with its own blanks
    QString failureSentence;        // "-> PBX DID NOT ACKnowkledge the Check in message:"
    bool ackNeedsPoll = false;      // check-in also polls and judges by the last control
    bool enqFailureCounts = true;   // restriction and linked suites leave errorCount alone
    bool enqFailureLogTimed = true; // restriction logs the ENQ failure without the time
};

// The PBX link: the two transports, the ENQ/ACK exchange, the receivers and the flags they share.
// The flags keep the names the whole console uses for them.
class Link : public QObject {
    Q_OBJECT
public:
    // Lost: the link went away during the connection test.
    enum class ConnectResult { Connected, NoResponse, NotOpened, Lost };
    // AcknowledgedByStaleAck: a check-in whose frame the PBX never answered, counted as
    // acknowledged by the ACK its ENQ left behind. Interrupted: the link was lost or the console
    // is closing; the sequence ended where it stood.
    enum class SendResult { Acknowledged, AcknowledgedByStaleAck, Failed, Interrupted };
    Q_ENUM(SendResult)

    Link(EventPump& pump, TrafficLog& log, OperatorInterface& op, Transport& tcp,
         Transport& serial);

    // Shared state read and written by the senders, the receivers and the waits.
    QString pmsMode = QStringLiteral("HOTEL");
    QString protocolType = QStringLiteral("HYATT");
    LinkSettings settings;
    bool waitingForAck = false;
    bool ackReceived = false;
    QString lastControl;
    bool ackFailed = false;
    bool vmailAcked = false;
    qint16 errorCount = 0;
    QString errorReport;

    EventPump& pump() { return m_pump; }
    TrafficLog& log() { return m_log; }
    OperatorInterface& operatorInterface() { return m_operator; }

    // Writes `text` (one byte per character) to the active link; drops it while the link is
    // closed.
    void send_text(const QString& text);
    QString build_vmail_message(const QString& code, const QString& field1, const QString& field2);

    void wait_for_ack(bool show);
    bool poll_for_ack(bool show);
    void send_enq();
    bool send_enq_counted(qint16& attemptsLeft);

    // The hotel sequence for one message after the caller's guard: ENQ, then the frame until
    // acknowledged. `attempt` is shared by every message of one click. The failure lines show
    // `reportedText`, which is the body but for the wake-up call.
    SendResult sendHotelMessage(const HotelMessageRule& rule, const QString& body, int& attempt);
    SendResult sendHotelMessage(const HotelMessageRule& rule, const QString& body, int& attempt,
                                const QString& reportedText);
    // The voice-mail sequence: send the frame, pause 2 s, report the ACK (Failed: none came).
    SendResult sendVmailFrame(const QString& frame, const QString& logLine, bool logSuccess);
    // Appends a record to errorReport and, when it `counts`, to errorCount.
    void recordError(const QString& record, bool counts);

    // The transport went away since the last connect (the PBX hung up, the device vanished).
    bool lost() const { return m_lost; }
    // Every wait ends at once when the link is lost or the console is closing.
    bool interrupted() const;

    // Opens and tests the active link. `connectLimitSeconds` bounds the TCP connect loop
    // (0: no limit, as in the window).
    ConnectResult cmd_connect(double connectLimitSeconds = 0);
    void cmd_disconnect();
    bool isOpen() const;
    Transport& activeTransport() { return settings.useTcp ? m_tcp : m_serial; }

    // The manual link commands: one control character or link-level message each, no wait.
    // ACK and ENQ have no guard so they can answer the PBX while a sender waits.
    void cmd_ack();
    void cmd_nak();
    void cmd_enquiry_basic();
    void cmd_ayt();
    void cmd_grs();
    void cmd_end();

    // The receive handlers, one per transport.
    void onSerialData();
    void onSerialCarrierDetect();
    void onTcpData();

Q_SIGNALS:
    // The connection test passed: the controls come alive and recording stops.
    void connected();
    // Script recording is switched off (connect does so).
    void recordingStopped();
    // Disconnect pressed: controls go dead and a running script stops.
    void disconnected();
    // Every transport write and read as it crossed the wire, for the wire trace.
    void bytesSent(const QByteArray& bytes);
    void bytesReceived(const QByteArray& bytes);
    // The transport went away; every wait ends and the controls go to the disconnected state.
    void linkLost(const QString& reason);
    // A record was added to errorReport.
    void errorRecorded(const QString& record);
    void linkWarning(const QString& text);

private:
    enum class Receiver { Serial, Tcp };
    void receive(QString text, Receiver receiver);
    void logVmailStatus(const QString& text, Receiver receiver);
    bool openTcp(double connectLimitSeconds);
    bool openSerial();
    bool testLink();

    EventPump& m_pump;
    TrafficLog& m_log;
    OperatorInterface& m_operator;
    Transport& m_tcp;
    Transport& m_serial;
    bool m_connectAborted = false;
    bool m_lost = false;
};

// Where the next message starts in `text`, scanning from `start`: just after the first CR LF or
// at the first ETX, whichever comes first; text.size() when there is neither.
qsizetype find_position_of_next_message(qsizetype start, const QString& text);

} // namespace larkspur
