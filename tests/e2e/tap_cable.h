#pragma once

#include <QByteArray>
#include <QString>

#include <condition_variable>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

namespace larkspur::test {

// Wires for the tap's serial tests, driven by a thread of their own: pseudo-terminals whose
// masters the cable holds, joined as a null-modem cable joins two ports, and branches that copy
// one direction onto further ports as a Y-cable does. A program opens an end's path as its
// serial port.
class TapCable {
public:
    TapCable();
    ~TapCable();
    TapCable(const TapCable&) = delete;
    TapCable& operator=(const TapCable&) = delete;

    // A new end: a pseudo-terminal whose slave's path a program opens.
    int addPty();
    // An end another program offers, such as the simulator's pseudo-terminal, opened here.
    int addDevice(const QString& path);
    QString path(int end) const;

    // What the cable reads from `from`, it writes to `to`. Route before start().
    void route(int from, int to);
    void start();

    // Writes `bytes` into an end, as if the program at the other side of it had sent them.
    void send(int end, const QByteArray& bytes);
    // Pulls the cable out of an end: the program on it sees its line hang up.
    void hangUp(int end);
    // Everything read from an end so far: what the program on it sent.
    QByteArray heard(int end) const;

private:
    struct End {
        int fd = -1;
        int heldSlave = -1; // keeps a pty's master from reading end-of-file while nobody is on it
        QString path;
        QByteArray heard;
    };
    void run();
    void closeEnd(End& end);

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<End> m_ends;
    std::multimap<int, int> m_routes;
    std::vector<int> m_hangUps; // asked for, not yet done
    bool m_stopping = false;
    int m_wake[2] = {-1, -1};
    std::thread m_thread;
};

} // namespace larkspur::test
