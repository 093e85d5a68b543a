#pragma once

#include "common/session_fixture.h"
#include "script/script_engine.h"
#include "transactions/control_rules.h"

#include <QFile>
#include <QTemporaryDir>

namespace larkspur::test {

// A session with a script engine, playing scripts written to a temporary folder.
class ScriptFixture : public SessionFixture {
protected:
    ScriptEngine engine{session};
    QTemporaryDir dir;
    int files = 0;

    void SetUp() override {
        SessionFixture::SetUp();
        session.recorder().suspend();
        Q_EMIT session.link().connected(); // the controls come alive as after a connect
    }

    QString write(const QByteArray& content) {
        const QString path = dir.filePath(QStringLiteral("script%1.txt").arg(++files));
        QFile f(path);
        f.open(QIODevice::WriteOnly);
        f.write(content);
        return path;
    }
    ScriptEngine::RunOutcome play(const QByteArray& content) {
        return engine.runScriptFile(write(content));
    }
    // The frames the PBX received, as text without STX and ETX; bare control bytes left out.
    QStringList frames() const {
        QStringList out;
        for (const QByteArray& w : tcp.written)
            if (w.startsWith('\x02'))
                out << QString::fromLatin1(w.mid(1, w.indexOf('\x03') - 1));
        return out;
    }
    bool enabled(const char* name) const {
        return controlStates(session.state())[size_t(*controlNamed(name))].enabled;
    }
};

} // namespace larkspur::test
