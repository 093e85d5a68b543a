#pragma once

#include <QByteArray>
#include <QObject>

#include <memory>

class QSocketNotifier;

namespace larkspur::sim {

// Lines typed on a file descriptor (standard input), as they complete. End of input only stops
// the reading: the simulator goes on serving the console.
class StdinLines : public QObject {
    Q_OBJECT
public:
    explicit StdinLines(int fd, QObject* parent = nullptr);
    ~StdinLines() override;

Q_SIGNALS:
    // One line without its line end.
    void line(const QString& text);

private:
    void readSome();

    int m_fd;
    QByteArray m_partial;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace larkspur::sim
