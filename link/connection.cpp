// Opening, testing and closing the link, and the wiring of the receivers.
#include "core/event_pump.h"
#include "core/operator_interface.h"
#include "core/pause.h"
#include "link/exchange.h"
#include "link/link.h"
#include "link/serial_line.h"
#include "records/traffic_log.h"

namespace larkspur {

namespace {
// The connection test bids for the line this many times before it gives up.
constexpr qint16 connectEnqAttempts = 10;
} // namespace

Link::Link(EventPump& pump, TrafficLog& log, OperatorInterface& op, Transport& tcp,
           Transport& serial)
    : m_pump(pump), m_log(log), m_operator(op), m_tcp(tcp), m_serial(serial) {
    listen(m_tcp, m_tcpReads);
    listen(m_serial, m_serialReads);
    connect(&m_tcpReads, &ReceiveAssembly::message, this, &Link::onTcpData);
    connect(&m_serialReads, &ReceiveAssembly::message, this, &Link::onSerialData);
    connect(&m_serial, &Transport::carrierDetectChanged, this, &Link::onSerialCarrierDetect);
}

void Link::listen(Transport& transport, ReceiveAssembly& assembly) {
    connect(&transport, &Transport::dataReceived, this, [this, &transport, &assembly] {
        assembly.setCheckCharacter(m_pmsMode != PmsMode::Hotel);
        assembly.take(transport.readAll());
    });
    connect(&transport, &Transport::linkLost, this, [this, &assembly](const QString& reason) {
        // A frame cut off by the loss is still what the PBX sent.
        assembly.flush();
        m_lost = true;
        Q_EMIT linkLost(reason);
    });
    connect(&transport, &Transport::warning, this, &Link::linkWarning);
}

void Link::setMode(PmsMode pmsMode, Protocol protocolType) {
    m_pmsMode = pmsMode;
    m_protocolType = protocolType;
}

void Link::send_text(const QString& text) {
    Transport& transport = activeTransport();
    if (!transport.isOpen()) {
        Q_EMIT linkWarning(QStringLiteral("Nothing was sent: the link is down"));
        return;
    }
    const QByteArray bytes = text.toLatin1();
    transport.write(bytes);
    Q_EMIT bytesSent(bytes);
}

bool Link::interrupted() const {
    return m_lost || m_pump.stopRequested();
}

bool Link::isOpen() const {
    return m_settings.useTcp ? m_tcp.isOpen() : m_serial.isOpen();
}

bool Link::openTcp(double connectLimitSeconds) {
    bool portOk = false;
    const uint port = m_settings.telnetPort.trimmed().toUInt(&portOk);
    if (!portOk || port == 0 || port > 65535) {
        m_operator.notify(QStringLiteral("TCP port \"%1\" is not a port number from 1 to 65535")
                              .arg(m_settings.telnetPort));
        return false;
    }
    m_tcp.close();
    m_tcp.connectToHost(m_settings.ipAddress.trimmed(), quint16(port));

    // No limit in the window: the loop waits for the PBX until Disconnect is pressed. A PBX
    // that refused is asked again each second, so starting it later still connects.
    m_connectAborted = false;
    const double started = m_pump.monotonicSeconds();
    // Busy while it tries: what the operator presses meanwhile must not wait inside the loop.
    const WaitGuard busy(*this);
    while (!m_tcp.isOpen()) {
        m_pump.processEvents();
        if (m_tcp.isOpen())
            break;
        const double waited = m_pump.monotonicSeconds() - started;
        if (m_connectAborted || m_pump.stopRequested() ||
            (connectLimitSeconds > 0 && waited >= connectLimitSeconds)) {
            m_tcp.close();
            return false;
        }
        // A limit under a second ends the loop at the limit, not at the next whole second.
        pause_seconds(m_pump, connectLimitSeconds > 0
                                  ? float(qMin(1.0, connectLimitSeconds - waited))
                                  : 1.0f);
        if (!m_tcp.isOpen() && !m_connectAborted)
            m_tcp.connectToHost(m_settings.ipAddress.trimmed(), quint16(port));
    }
    return true;
}

bool Link::openSerial() {
    if (m_settings.commPortNumber.isEmpty()) {
        m_operator.notify(QStringLiteral("specify port"));
        return false;
    }
    SerialOptions options;
    options.lineSettings = m_settings.lineSettings();
    options.dtr = m_settings.dtrEnabled;
    options.rts = m_settings.rtsEnabled;
    options.nullDiscard = m_settings.nullDiscard;

    const QString device = serialDeviceName(m_settings.commPortNumber);
    QString error = m_serial.applySerialOptions(options);
    if (error.isEmpty() && !m_serial.isOpen())
        error = m_serial.openPort(device);
    if (!error.isEmpty()) {
        m_serial.close();
        m_operator.notify(QStringLiteral("Cannot open serial port %1: %2").arg(device, error));
        return false;
    }
    m_log.logLine(QStringLiteral("Connecting..."));
    Q_EMIT recordingStopped();
    return true;
}

bool Link::testLink() {
    if (m_pmsMode == PmsMode::Vmail) {
        const QString frame = build_vmail_message(QStringLiteral("1"), QString(), QString());
        if (m_settings.useTcp)
            m_log.logLine(QStringLiteral("Connecting..."));
        send_text(frame);
        m_log.logLine(frame);
        return poll_for_ack(*this, false);
    }
    qint16 attempts = connectEnqAttempts;
    return send_enq_counted(*this, attempts);
}

Link::ConnectResult Link::cmd_connect(double connectLimitSeconds) {
    // A connect inside a wait would hold that wait up for as long as it tries.
    if (waitingForAck())
        return ConnectResult::Busy;
    Q_EMIT connecting();
    m_lost = false;
    for (ReceiveAssembly* reads : {&m_tcpReads, &m_serialReads}) {
        reads->clear();
        reads->setFrameGapMs(
            frameGapMs(m_settings.frameGapMs, m_settings.useTcp, m_settings.lineSettings()));
        reads->setSplitJoined(m_settings.splitJoinedMessages);
    }
    const bool opened = m_settings.useTcp ? openTcp(connectLimitSeconds) : openSerial();
    if (!opened)
        return ConnectResult::NotOpened;
    if (!testLink()) {
        if (m_lost)
            return ConnectResult::Lost;
        m_log.logLine(QStringLiteral("No response from PBX"));
        return ConnectResult::NoResponse;
    }
    m_log.logLine(QStringLiteral("Connected..."));
    Q_EMIT connected();
    Q_EMIT recordingStopped();
    return ConnectResult::Connected;
}

void Link::cmd_disconnect() {
    m_connectAborted = true;
    if (m_settings.useTcp)
        m_tcp.close();
    else if (m_serial.isOpen())
        m_serial.close();
    m_tcpReads.clear();
    m_serialReads.clear();
    m_log.logLine(QStringLiteral("Disconnected..."));
    Q_EMIT disconnected();
}

} // namespace larkspur
