#pragma once

#include "core/descriptor_watch.h"
#include "link/transport.h"

#include <memory>

namespace larkspur {

// A transport over an open, non-blocking file descriptor (a connected socket or a tty). A
// readiness wake-up reads everything pending and announces it as one message, so an answer
// written from the receiver leaves within that wake-up. Writes go straight to the descriptor;
// whatever it does not take at once waits, in order, for the descriptor to become writable.
class FdTransport : public Transport {
    Q_OBJECT
public:
    ~FdTransport() override;

    bool isOpen() const override { return m_fd >= 0; }
    void write(const QByteArray& bytes) override;
    QByteArray readAll() override;
    // Closes the descriptor; a close asked for by the console is not a loss of the link.
    void close() override;

    // Bytes written that the descriptor has not taken yet.
    qsizetype unsentBytes() const { return m_unsent.size() - m_unsentFrom; }
    // While paused nothing is read: what the peer sends waits in the kernel, which in time slows
    // the peer down, so a relay whose far side is slow holds no more than it can pass on.
    void pauseReading(bool paused);

Q_SIGNALS:
    // The descriptor has taken everything written to it.
    void drained();

protected:
    enum class Kind { Socket, Tty };
    explicit FdTransport(QObject* parent);

    // Takes over `fd`, which must be non-blocking, as the open link.
    void attach(int fd, Kind kind);
    int descriptor() const { return m_fd; }
    // What linkLost says when the peer or device went away: `error` is an errno value, or 0 at
    // the end of the file.
    virtual QString lossReason(int error) const = 0;

private:
    void readPending();
    void writePending();
    // Writes what the descriptor takes now; -1 on an error other than "try again".
    qsizetype writeSome(const char* data, qsizetype size);
    void lose(int error);

    int m_fd = -1;
    Kind m_kind = Kind::Socket;
    DescriptorWatch m_watch;
    QByteArray m_received;
    // Bytes the descriptor has not taken yet; those before m_unsentFrom have left.
    QByteArray m_unsent;
    qsizetype m_unsentFrom = 0;
};

} // namespace larkspur
