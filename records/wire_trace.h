#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QObject>
#include <QString>

namespace larkspur {

// One transport write or read, or a note about the exchange.
struct WireRow {
    enum class Kind { Sent, Received, Note };
    QDateTime time;
    Kind kind = Kind::Note;
    QByteArray bytes;
    QString note; // "ENQ answered in 3 ms", "frame ACKed in 4 ms", "check character right", ...
};

// How one ENQ or frame fared, for the run statistics.
struct ExchangeEvent {
    enum class Outcome { Acknowledged, Refused, TimedOut };
    QString type; // "ENQ", "check-in", "voice mail 2 check-in", ...
    Outcome outcome = Outcome::TimedOut;
    qint64 answerMs = -1; // -1 when it timed out
};

// Every byte sent and received, beside the traffic log (which hides control characters and has
// no time stamps). Keeps the newest rows in a ring so a long run costs bounded memory; rows are
// also announced as they come, for a file or a panel.
class WireTrace : public QObject {
    Q_OBJECT
public:
    // `capacity` 0 keeps no rows: they are only announced.
    explicit WireTrace(qsizetype capacity = 100'000);

    void sent(const QByteArray& bytes, const QDateTime& time, bool vmail);
    void received(const QByteArray& bytes, const QDateTime& time, bool vmail);
    // Ends the run: what is still unanswered timed out.
    void finish(const QDateTime& time);
    // A note of its own, not about an exchange: the link came up, was closed, was lost.
    void note(const QString& text, const QDateTime& time);

    qsizetype size() const { return m_rows.size(); }
    const WireRow& row(qsizetype index) const;
    qsizetype dropped() const { return m_dropped; }
    void clear();

    // "12:00:00.123 TX <STX>CHK1   101<ETX>   02 43 48 4B 31 ... 03   frame ACKed in 4 ms"
    static QString format(const WireRow& row);
    // What kind of message a frame body is: "check-in", "add name", "voice mail 2 check-in".
    static QString messageType(const QByteArray& frame, bool vmail);

Q_SIGNALS:
    void rowAdded(const larkspur::WireRow& row);
    void exchangeEnded(const larkspur::ExchangeEvent& event);

private:
    struct Pending {
        QString type;
        QDateTime since;
        bool active = false;
    };
    void add(WireRow row);
    void endPending(ExchangeEvent::Outcome outcome, const QDateTime& time, QString* note);

    QList<WireRow> m_rows;
    qsizetype m_first = 0; // index of the oldest row once the ring is full
    qsizetype m_capacity;
    qsizetype m_dropped = 0;
    Pending m_pending;
};

} // namespace larkspur
