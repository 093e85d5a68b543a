// The trace's writer: a reader that falls behind costs lines, counted and said, never a wait;
// a reader that goes away ends the writing.
#include "common/qt_printers.h"
#include "core/termination_signals.h"
#include "tap/line_sink.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fcntl.h>
#include <thread>
#include <unistd.h>

using namespace larkspur::tap;

namespace {

QByteArray readAvailable(int fd) {
    ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
    QByteArray all;
    char buffer[65536];
    ssize_t n;
    while ((n = ::read(fd, buffer, sizeof buffer)) > 0)
        all.append(buffer, n);
    return all;
}

struct Pipe {
    int read = -1, write = -1;
    Pipe() {
        int fds[2];
        ::pipe2(fds, O_CLOEXEC);
        read = fds[0];
        write = fds[1];
    }
    ~Pipe() {
        ::close(read);
        ::close(write);
    }
};

TEST(LineSink, AReaderThatFallsBehindCostsLinesNotTime) {
    Pipe pipe;
    LineSink sink(pipe.write, 16 * 1024);
    // Far more than the pipe and the queue hold, with nobody reading.
    for (int i = 0; i < 100'000; ++i)
        sink.post(QStringLiteral("a line of the trace that nobody reads %1").arg(i));
    EXPECT_GT(sink.dropped(), 90'000);
    // The reader catches up with what was queued before the lines were dropped.
    for (int quiet = 0; quiet < 2;) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        quiet = readAvailable(pipe.read).isEmpty() ? quiet + 1 : 0;
    }
    sink.post(QStringLiteral("once the reader is back"));
    EXPECT_FALSE(sink.finish(5000)); // not everything was written
    const QByteArray rest = readAvailable(pipe.read);
    EXPECT_TRUE(rest.contains(" trace lines were dropped here: their reader fell behind\n"
                              "once the reader is back\n"))
        << rest.right(200).toStdString();
}

TEST(LineSink, AReaderThatIsGoneEndsTheWriting) {
    larkspur::ignoreBrokenPipes();
    Pipe pipe;
    ::close(pipe.read);
    pipe.read = -1;
    LineSink sink(pipe.write);
    sink.post(QStringLiteral("into nothing"));
    EXPECT_FALSE(sink.finish(5000));
    EXPECT_EQ(sink.error(), "Broken pipe");
}

} // namespace
