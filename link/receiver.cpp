// The two receive handlers. Each read is one message (the receive assembly has joined the pieces
// of a frame): it is logged, kept under the name the waits compare (`lastControl`), and a few PBX
// messages are acknowledged at once. The serial and TCP handlers differ on purpose in the details
// noted below.
#include "link/link.h"
#include "protocol/frame.h"
#include "records/traffic_log.h"

namespace larkspur {

namespace {
const QString receivedHead = QStringLiteral("Received--> ");

// Compared as views: the receiver runs before the PBX gets its answer, so it allocates nothing.
bool isOne(const QString& text, char16_t c) {
    return text.size() == 1 && text.at(0).unicode() == c;
}

// The PBX's own data messages that it expects acknowledged.
bool needsAck(const QString& text) {
    static const QString heads[] = {QStringLiteral("\x02MR 0001"),
                                    QStringLiteral("\x02"
                                                   "ALT1"),
                                    QStringLiteral("\x02STS"), QStringLiteral("\x02MW")};
    for (const QString& head : heads)
        if (text.startsWith(head))
            return true;
    return false;
}

} // namespace

void Link::onSerialCarrierDetect() {
    m_log.logLine(QStringLiteral(" Comm Event Fired 5"));
    m_received.add(QStringLiteral("Comm Event Fired "));
}

void Link::onSerialData(const QByteArray& bytes) {
    Q_EMIT bytesReceived(bytes);
    receive(QString::fromLatin1(bytes), Receiver::Serial);
}

void Link::onTcpData(const QByteArray& bytes) {
    Q_EMIT bytesReceived(bytes);
    const QString text = trimBlanks(QString::fromLatin1(bytes));
    if (text == QString::fromLatin1("\xFF\xFB\x01")) {
        // The server offers to echo: the connection is still being set up. It still wakes the
        // waits, with the last message's name unchanged.
        m_log.logLine(QStringLiteral("Connecting..."));
        m_received.add(m_received.lastControl());
        return;
    }
    receive(text, Receiver::Tcp);
}

void Link::logVmailStatus(const QString& text, Receiver receiver) {
    const QString code = text.mid(1, 1);
    if (code == u"1") {
        m_log.logLine(QStringLiteral("PBX REQUESTS RESYNCHRONIZE"));
    } else if (code == u"5") {
        // The mailbox stands between the code and ETX + check character; a text too short to
        // hold one is left to the table below.
        if (text.size() >= 5 || receiver == Receiver::Serial)
            m_log.logLine(QStringLiteral("BAD MAILBOX ADDRESS: ") +
                          text.mid(2, qMax<qsizetype>(0, text.size() - 5)));
    } else if (code == u"4") {
        m_log.logLine(QStringLiteral("MESSAGE WAITING STATUS: ") + text.mid(2, 6) +
                      QStringLiteral("NEW: ") + text.mid(8, 2) + QStringLiteral(" URGENT: ") +
                      text.mid(10, 2));
    }
}

void Link::receive(QString text, Receiver receiver) {
    // The answer leaves before anything is logged, so the PBX never waits on the log; the log
    // still shows it after the received line.
    const bool answered = (receiver == Receiver::Tcp && isOne(text, ctl::ENQ)) || needsAck(text);
    if (answered)
        send_text(QString(QChar(ctl::ACK)));
    const auto logAnswer = [this] { m_log.logLine(QStringLiteral("Sending -->    ACK")); };

    if (m_pmsMode != PmsMode::Hotel)
        logVmailStatus(text, receiver);

    // Every read is a message for the waits, named as they compare it.
    QString lastControl;
    if (isOne(text, ctl::ACK)) {
        m_log.logLine(m_pmsMode == PmsMode::Hotel ? receivedHead + QStringLiteral("ACK")
                                                  : QStringLiteral("PBX ACKed"));
        lastControl = QStringLiteral("ACK");
    } else if (isOne(text, ctl::ENQ)) {
        m_log.logLine(receivedHead + QStringLiteral("ENQ"));
        lastControl = QStringLiteral("ENQ");
        // Over TCP the PBX's line bid is granted at once; over serial it is only logged.
        if (answered)
            logAnswer();
    } else if (isOne(text, ctl::NAK)) {
        m_log.logLine(receivedHead + QStringLiteral("NAK"));
        lastControl = QStringLiteral("NAK");
    } else if (text == rqinzFrame()) {
        m_log.logLine(receivedHead + QStringLiteral("RQINZ     "));
        lastControl = receiver == Receiver::Serial ? QStringLiteral("RTI") : QStringLiteral("rti");
    } else if (receiver == Receiver::Tcp && text.isEmpty()) {
        // Nothing but blanks arrived over TCP: not logged, the last name kept.
        lastControl = m_received.lastControl();
    } else {
        m_log.logLine(receivedHead + text);
        lastControl = text;
        if (answered)
            logAnswer();
    }
    m_received.add(lastControl);
}

qsizetype find_position_of_next_message(qsizetype start, const QString& text) {
    for (qsizetype pos = qMax<qsizetype>(0, start); pos < text.size(); ++pos) {
        if (text.at(pos) == QLatin1Char('\r') && pos + 1 < text.size() &&
            text.at(pos + 1) == QLatin1Char('\n'))
            return pos + 2;
        if (text.at(pos) == QChar(ctl::ETX))
            return pos;
    }
    return text.size();
}

} // namespace larkspur
