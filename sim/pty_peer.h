#pragma once

#include "core/descriptor_watch.h"
#include "sim/pseudo_terminal.h"

#include <QString>

#include <memory>

namespace larkspur::sim {

// The POSIX pseudo-terminal. The simulator holds the master; the console opens the slave's
// path like any serial device.
class PtyPeer : public PseudoTerminal {
    Q_OBJECT
public:
    explicit PtyPeer(QObject* parent = nullptr);
    ~PtyPeer() override;

    // Opens the pseudo-terminal and, with a non-empty `link`, makes `link` a symlink to the slave
    // (replacing an older symlink, never any other file). False with a reason in `error`.
    bool open(const QString& link, QString* error);

    QString slavePath() const override { return m_slavePath; }

    bool write(const QByteArray& bytes) override;

private:
    void readMaster();
    void writePending();

    int m_master = -1;
    // Kept open so that the master never reads end-of-file or EIO while no console has the
    // slave open, and the raw settings survive the console closing it.
    int m_slave = -1;
    QString m_slavePath;
    QString m_link;
    QByteArray m_pending; // what the console has not taken yet
    DescriptorWatch m_watch;
};

} // namespace larkspur::sim
