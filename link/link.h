#pragma once

#include "core/pms_mode.h"
#include "link/receive_assembly.h"
#include "link/received_messages.h"
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
    // How long the line must be silent before a frame whose end never came is taken as it
    // stands; 0: the longer of 100 ms and 20 character times at the line's speed.
    int frameGapMs = 0;
    // A serial-to-TCP converter joins messages: each whole message of a read is taken on its own.
    bool splitJoinedMessages = false;

    // "9600,N,8,1": speed, parity, data bits and stop bits as the serial port takes them.
    QString lineSettings() const {
        return speed + u',' + parity + u',' + dataBits + u',' + stopBits;
    }
};

// The PBX link: the two transports, opening and testing them, writing, and the receivers, which
// log what the PBX sends, answer what it expects answered and keep every message, named, for
// the waits (link/exchange.h) to judge.
class Link : public QObject {
    Q_OBJECT
public:
    // Lost: the link went away during the connection test. Busy: a wait was running, so the
    // connect was refused and the link is as it was.
    enum class ConnectResult { Connected, NoResponse, NotOpened, Lost, Busy };

    // Marks the link busy for as long as it lives: a second send, a recording button or
    // a guarded manual command does nothing meanwhile. Guards nest: the mark stays until the
    // outermost one ends, so a wait inside another never clears the outer one's mark.
    class WaitGuard {
    public:
        explicit WaitGuard(Link& link) : m_link(link) { ++m_link.m_waitDepth; }
        ~WaitGuard() { --m_link.m_waitDepth; }
        WaitGuard(const WaitGuard&) = delete;
        WaitGuard& operator=(const WaitGuard&) = delete;

    private:
        Link& m_link;
    };

    Link(EventPump& pump, TrafficLog& log, OperatorInterface& op, Transport& tcp,
         Transport& serial);

    PmsMode pmsMode() const { return m_pmsMode; }
    Protocol protocolType() const { return m_protocolType; }
    void setMode(PmsMode pmsMode, Protocol protocolType);
    const LinkSettings& settings() const { return m_settings; }
    LinkSettings& settings() { return m_settings; }

    // A wait or a send sequence is running: `waitingForAck`.
    bool waitingForAck() const { return m_waitDepth > 0; }
    // Everything the PBX sent, as the receivers named it.
    const ReceivedMessages& received() const { return m_received; }

    EventPump& pump() { return m_pump; }
    TrafficLog& log() { return m_log; }

    // Writes `text` (one byte per character) to the active link; drops it while the link is
    // closed.
    void send_text(const QString& text);
    // The voice-mail frame of the link's protocol; an unknown code is logged.
    QString build_vmail_message(const QString& code, const QString& field1, const QString& field2);

    // Every wait ends at once when the link is lost (the PBX hung up, the device vanished) or the
    // console is closing.
    bool interrupted() const;

    // Opens and tests the active link. `connectLimitSeconds` bounds the TCP connect loop
    // (0: no limit, as in the window).
    ConnectResult cmd_connect(double connectLimitSeconds = 0);
    void cmd_disconnect();
    bool isOpen() const;

Q_SIGNALS:
    // A connect was taken and opens the link now.
    void connecting();
    // The connection test passed: the controls come alive and recording stops.
    void connected();
    // Script recording is switched off (connect does so).
    void recordingStopped();
    // Disconnect pressed: controls go dead and a running script stops.
    void disconnected();
    // Every transport write, and every read as the receiver took it, for the wire trace.
    void bytesSent(const QByteArray& bytes);
    void bytesReceived(const QByteArray& bytes);
    // The transport went away; every wait ends and the controls go to the disconnected state.
    void linkLost(const QString& reason);
    // Something the operator should know that does not stop the link: a line signal the device
    // cannot drive, a write dropped while the link is down.
    void linkWarning(const QString& text);

private:
    enum class Receiver { Serial, Tcp };
    Transport& activeTransport() { return m_settings.useTcp ? m_tcp : m_serial; }
    // The receive handlers, one per transport; each takes one read as one message.
    void onSerialData(const QByteArray& bytes);
    void onSerialCarrierDetect();
    void onTcpData(const QByteArray& bytes);
    void receive(QString text, Receiver receiver);
    void logVmailStatus(const QString& text, Receiver receiver);
    void listen(Transport& transport, ReceiveAssembly& assembly);
    bool openTcp(double connectLimitSeconds);
    bool openSerial();
    bool testLink();

    EventPump& m_pump;
    TrafficLog& m_log;
    OperatorInterface& m_operator;
    Transport& m_tcp;
    Transport& m_serial;
    PmsMode m_pmsMode = PmsMode::Hotel;
    Protocol m_protocolType = Protocol::Hyatt;
    LinkSettings m_settings;
    ReceiveAssembly m_tcpReads{m_pump};
    ReceiveAssembly m_serialReads{m_pump};
    ReceivedMessages m_received;
    int m_waitDepth = 0;
    bool m_connectAborted = false;
    bool m_lost = false;
};

// Where the next message starts in `text`, scanning from `start`: just after the first CR LF or
// at the first ETX, whichever comes first; text.size() when there is neither.
qsizetype find_position_of_next_message(qsizetype start, const QString& text);

} // namespace larkspur
