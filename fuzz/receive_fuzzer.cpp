// The two receive handlers, fed arbitrary reads over the TCP and the serial fake.
//
// Input: one byte of settings, then reads, each as two header bytes and its data:
//   settings: bit 0 VMAIL (else HOTEL), bit 1 serial is the active link (else TCP),
//             bit 2 protocol HIS (else HYATT), bit 3 the clock starts a second before midnight
//   header 1: bit 0 the read comes over the other transport, bit 1 a carrier-detect event
//             instead of data (serial), bits 2-3 what consumes it: 0 plain event processing,
//             1 wait_for_ack, 2 poll_for_ack, 3 a pause
//   header 2: the data's length
#include "core/pause.h"
#include "core/virtual_event_pump.h"
#include "doubles/fake_transport.h"
#include "fuzz/fuzz_support.h"
#include "link/exchange.h"
#include "protocol/frame.h"
#include "transactions/session.h"

using namespace larkspur;
using namespace larkspur::fuzz;

namespace {

QString trimmedBlanks(const QString& text) {
    qsizetype begin = 0, end = text.size();
    while (begin < end && text.at(begin) == u' ')
        ++begin;
    while (end > begin && text.at(end - 1) == u' ')
        --end;
    return text.mid(begin, end - begin);
}

struct Rig {
    explicit Rig(bool nearMidnight)
        : pump(QDateTime(QDate(2026, 1, 5), nearMidnight ? QTime(23, 59, 59) : QTime(10, 0))) {
        tcp.connectToHost(QStringLiteral("127.0.0.1"), 15374);
        serial.openPort(QStringLiteral("/dev/ttyS0"));
        pump.processEvents();
    }

    VirtualEventPump pump;
    CountingOperator op;
    FakeTransport tcp{pump, QStringLiteral("TCP fake")};
    FakeTransport serial{pump, QStringLiteral("serial fake")};
    Session session{pump, op, tcp, serial};
};

void checkLog(const TrafficLog& log) {
    FUZZ_CHECK(isLogText(log.logText()), "the log holds only 32..122 and CR LF pairs");
    qsizetype viewerChars = 0;
    for (qsizetype i = 0; i < log.viewerList().size(); ++i)
        viewerChars += log.viewerList().entry(i).size() + 2;
    FUZZ_CHECK(viewerChars == log.logText().size(),
               "each viewer entry is one logged text without its CR LF");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input in(data, size);
    const uint8_t settings = in.byte();

    Rig rig(settings & 8);
    Link& link = rig.session.link();
    link.setMode(settings & 1 ? PmsMode::Vmail : PmsMode::Hotel, link.protocolType());
    link.settings().useTcp = !(settings & 2);
    link.setMode(link.pmsMode(), settings & 4 ? Protocol::His : Protocol::Hyatt);

    while (!in.atEnd()) {
        const uint8_t how = in.byte();
        const QByteArray bytes = in.bytes(in.byte());
        const bool overTcp = link.settings().useTcp != bool(how & 1);
        const bool carrier = (how & 2) && !overTcp;
        FakeTransport& from = overTcp ? rig.tcp : rig.serial;

        // What the receive assembly hands the receiver, each with what the link had done before
        // it: a read that ends inside a frame hands over what came before the frame at once and
        // the frame once it is whole, so one read may be two messages, or part of one.
        struct Handed {
            QByteArray bytes;
            QString lastControlBefore;
            qsizetype writesBefore;
        };
        QList<Handed> handed;
        const auto writes = [&rig] { return rig.tcp.written.size() + rig.serial.written.size(); };
        const QMetaObject::Connection watching =
            QObject::connect(&link, &Link::bytesReceived, [&](const QByteArray& message) {
                handed.append({message, link.received().lastControl(), writes()});
            });
        const qsizetype tcpWrites = rig.tcp.written.size();
        const qsizetype serialWrites = rig.serial.written.size();
        ReceivedMessages::Reader arrivals = link.received().reader();

        if (carrier)
            rig.pump.schedule(100, [&rig] { Q_EMIT rig.serial.carrierDetectChanged(); });
        else
            from.deliver(bytes, 100);
        switch ((how >> 2) & 3) {
        case 0:
            rig.pump.advance(100);
            rig.pump.processEvents();
            break;
        case 1:
            wait_for_ack(link, true);
            break;
        case 2:
            poll_for_ack(link, true);
            break;
        default:
            pause_seconds(rig.pump, 2.0f);
            break;
        }
        // A poll that an earlier ACK already answers returns before the read comes; a read that
        // ends inside a frame is handed over once the line has been silent for the frame gap
        // (the assembly's 100 ms: the rig never connects, which would set another).
        for (int step = 0; step < 2; ++step) {
            rig.pump.advance(100);
            rig.pump.processEvents();
        }
        QObject::disconnect(watching);
        FUZZ_CHECK(!rig.pump.hasPendingDeliveries(), "every read is handled");
        FUZZ_CHECK(arrivals.next().has_value(), "every read wakes the waits");
        FUZZ_CHECK(!link.waitingForAck(), "no wait is left running");

        // Automatic answers are single ACKs.
        for (const FakeTransport* t : {&rig.tcp, &rig.serial})
            for (qsizetype i = t == &rig.tcp ? tcpWrites : serialWrites; i < t->written.size(); ++i)
                FUZZ_CHECK(t->written.at(i) == QByteArray(1, char(ctl::ACK)),
                           "an automatic answer is one ACK byte");

        if (carrier) {
            FUZZ_CHECK(handed.isEmpty(), "carrier detect hands over no bytes");
            FUZZ_CHECK(link.received().lastControl() == u"Comm Event Fired ",
                       "carrier detect names itself");
            continue;
        }
        QByteArray joined;
        for (const Handed& h : handed)
            joined += h.bytes;
        FUZZ_CHECK(joined == bytes, "the messages handed over are the read, nothing lost or added");

        // Per message: at most one answer, none to a serial ENQ; lastControl names the message,
        // or is the message as received.
        for (qsizetype i = 0; i < handed.size(); ++i) {
            const bool last = i + 1 == handed.size();
            const QString now =
                last ? link.received().lastControl() : handed.at(i + 1).lastControlBefore;
            const qsizetype answers =
                (last ? writes() : handed.at(i + 1).writesBefore) - handed.at(i).writesBefore;
            const QByteArray& message = handed.at(i).bytes;
            FUZZ_CHECK(answers <= 1, "at most one answer per message");
            if (!overTcp && message == QByteArray(1, char(ctl::ENQ)))
                FUZZ_CHECK(answers == 0, "a serial ENQ is only logged");

            const QString text = QString::fromLatin1(message);
            const QString received = overTcp ? trimmedBlanks(text) : text;
            const bool named = now == u"ACK" || now == u"ENQ" || now == u"NAK" ||
                               now == (overTcp ? u"rti" : u"RTI");
            const bool kept =
                overTcp && now == handed.at(i).lastControlBefore &&
                (received.isEmpty() || received == QString::fromLatin1("\xFF\xFB\x01"));
            FUZZ_CHECK(named || kept || now == received,
                       "lastControl is a documented name or the received text");
            if (named && now != received)
                FUZZ_CHECK(received.size() <= 12, "only a control or RQINZ frame is named");
        }
    }
    trace(rig.session.log().logText());
    checkLog(rig.session.log());
    return 0;
}
