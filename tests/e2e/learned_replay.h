#pragma once

#include "common/player_fixture.h"
#include "tap_process.h"

#include <QRegularExpression>

namespace larkspur::test {

// larkspur-run playing what the tap learned, as a user replays a learned script.
class LearnedReplay : public PlayerFixture {
protected:
    // Plays the script at `learned` against a simulator started with `simArguments`, over TCP
    // or over the simulator's pseudo-terminal, and gives what that PBX heard.
    QByteArray heardReplaying(const QString& learned, const QStringList& simArguments,
                              bool overPty) {
        PbxSimProcess sim(simArguments + (overPty ? QStringList{"--pty"} : QStringList{}));
        EXPECT_TRUE(sim.start()) << sim.diagnostics().toStdString();
        out.clear();
        err.clear();
        start((overPty ? QStringList{"--serial", sim.ptyPath(), "--line", "9600,N,8,1",
                                     "--frame-gap", "1000"}
                       : QStringList{"--tcp", tcp(sim)}) +
              QStringList{learned});
        EXPECT_EQ(finish(), 0) << err.toStdString();
        sim.stop();
        return bytesOf(sim.traceLines(), "RX");
    }

    static QByteArray contents(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    // The learned script up to its closing line, which must be its last line and count
    // `commands`.
    static QByteArray learnedLines(const QString& path, int commands) {
        const QByteArray script = contents(path);
        const qsizetype lineEnd = script.lastIndexOf("\r\n", script.size() - 3);
        const qsizetype closing = lineEnd < 0 ? 0 : lineEnd + 2;
        static const QRegularExpression closingLine(
            "^; learned by larkspur-tap from \\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d to "
            "\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d on the (TCP|serial) link .*: (\\d+) "
            "commands?\r\n$");
        const QRegularExpressionMatch match =
            closingLine.match(QString::fromLatin1(script.mid(closing)));
        EXPECT_TRUE(match.hasMatch()) << script.toStdString();
        EXPECT_EQ(match.captured(2).toInt(), commands);
        return script.left(closing);
    }
};

} // namespace larkspur::test
