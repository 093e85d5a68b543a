#pragma once

#include "assembly/assembly.h"
#include "common/recording_operator.h"
#include "console/main_window.h"
#include "core/virtual_event_pump.h"
#include "doubles/fake_transport.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace larkspur::test {

// The window over a session in virtual time, with fake transports and settings in a file of
// its own. The window opens on the first call of window(), so a test can store settings first.
// Not a FakeSession: the assembly makes its own session, and two sessions on one transport
// would race for its reads.
struct ConsoleRig {
    VirtualEventPump pump;
    RecordingOperator op;
    FakeTransport tcp{pump, QStringLiteral("TCP fake")};
    FakeTransport serial{pump, QStringLiteral("serial fake")};
    Assembly console{pump, op, tcp, serial, 100'000};
    Session& session = console.session;
    QTemporaryDir dir;
    QSettings settings{dir.filePath(QStringLiteral("larkspur.ini")), QSettings::IniFormat};
    MainWindow& window() {
        if (!m_window) {
            m_window = std::make_unique<MainWindow>(console, settings);
            m_window->show();
        }
        return *m_window;
    }
    template <typename T> T* find(const QString& objectName) {
        T* object = window().findChild<T*>(objectName);
        EXPECT_TRUE(object) << objectName.toStdString();
        return object;
    }
    // Clicks the button or triggers the menu entry `name`.
    void press(const QString& name) {
        QObject* o = find<QObject>(name);
        if (auto* action = qobject_cast<QAction*>(o))
            action->trigger();
        else if (auto* button = qobject_cast<QAbstractButton*>(o))
            button->click();
    }
    void type(const QString& field, const QString& text) {
        QTest::keyClicks(find<QWidget>(field), text);
    }
    // The PBX acknowledges everything 10 ms after it is written.
    void pbxAcknowledges() {
        tcp.onWrite = [this](const QByteArray&) { tcp.deliver(QByteArray(1, 6), 10); };
    }
    void connectToPbx() {
        pbxAcknowledges();
        press(QStringLiteral("cmd_connect"));
    }
    // The next window() opens a new window on the same settings.
    void closeWindow() {
        window().close();
        m_window.reset();
    }

private:
    std::unique_ptr<MainWindow> m_window;
};

// Enter, as the operator presses it in `dialog`: on the widget that has the focus once the
// dialog is the active window.
inline void pressEnterIn(QWidget* dialog) {
    QApplication::setActiveWindow(dialog);
    QWidget* focused = QApplication::focusWidget();
    QTest::keyClick(focused && dialog->isAncestorOf(focused) ? focused : dialog, Qt::Key_Return);
}

// Answers the next modal message box with `answer` once it shows.
inline void answerNextQuestion(std::function<void(QMessageBox*)> answer) {
    QTimer::singleShot(0, [answer = std::move(answer)] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_TRUE(box) << "no question was asked";
        answer(box);
    });
}

class ConsoleFixture : public ::testing::Test, protected ConsoleRig {};

} // namespace larkspur::test
