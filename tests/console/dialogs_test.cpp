#include "common/fake_session.h"
#include "console/comm_port_dialog.h"
#include "console/ip_control.h"
#include "console/log_commands.h"
#include "console/telnet_dialog.h"
#include "console/widget_operator.h"
#include "script/script_engine.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

using namespace larkspur;
using namespace larkspur::test;

namespace {

class ConnectionDialogs : public ::testing::Test, protected FakeSession {
protected:
    LinkSettings& settings = session.link().settings();
    template <typename T> T* in(QWidget& dialog, const char* name) {
        T* w = dialog.findChild<T*>(QLatin1String(name));
        EXPECT_TRUE(w) << name;
        return w;
    }
    void click(QWidget& dialog, const char* button) { in<QPushButton>(dialog, button)->click(); }
};

TEST_F(ConnectionDialogs, CommPortOffersTheSerialChoicesAndOnlyOkChoosesTheSerialLink) {
    CommPortDialog dialog(session);
    dialog.load();
    auto* port = in<QComboBox>(dialog, "cmb_port");
    EXPECT_EQ(port->itemText(1), "2");
    EXPECT_TRUE(port->isEditable());
    EXPECT_EQ(in<QComboBox>(dialog, "cmb_handshake")->itemText(3), "comRTSXOnXOff");
    EXPECT_EQ(in<QComboBox>(dialog, "cmb_speed")->currentText(), "1200");
    EXPECT_EQ(in<QComboBox>(dialog, "cmb_stopbit")->currentText(), "2");
    port->setCurrentText("/dev/pts/3");
    click(dialog, "cmdCancel");
    EXPECT_TRUE(settings.useTcp);
    EXPECT_EQ(settings.commPortNumber, "1");
    dialog.load();
    click(dialog, "cmdOK");
    EXPECT_FALSE(settings.useTcp) << "OK chooses the serial link even with nothing changed";
    dialog.load();
    port->setCurrentText("/dev/pts/3");
    in<QComboBox>(dialog, "cmb_speed")->setCurrentText("9600");
    in<QComboBox>(dialog, "cmb_handshake")->setCurrentText("comRTS");
    click(dialog, "cmdOK");
    EXPECT_EQ(settings.commPortNumber, "/dev/pts/3") << "a typed device path is taken";
    EXPECT_EQ(settings.speed, "9600");
    EXPECT_EQ(settings.handShake, "comRTS");
    EXPECT_EQ(settings.parity, "N");
}

TEST_F(ConnectionDialogs, TelnetShowsTheStoredAddressOrBlankWhenItCannotTakeIt) {
    const struct {
        const char *port, *address, *shownPort, *shownAddress;
        bool reported;
    } cases[] = {{"2001", "10.1.2.3", "2001", "10.1.2.3", false},
                 {"0", "10.1.2.3", "15374", "0.0.0.0", false},
                 {"", "10.1.2.3", "15374", "0.0.0.0", false},
                 {"15374", "10.1.300.4", "15374", "0.0.0.0", true},
                 {"15374", "pbx", "15374", "0.0.0.0", false},
                 {"2000", "1.2.3.4.5", "2000", "1.2.3.4", false}};
    TelnetDialog dialog(session);
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.port) + " " + c.address);
        op.notices.clear();
        settings.telnetPort = c.port;
        settings.ipAddress = c.address;
        dialog.load();
        EXPECT_EQ(in<QLineEdit>(dialog, "Port")->text(), c.shownPort);
        EXPECT_EQ(in<IPControl>(dialog, "IPControl1")->Address(), c.shownAddress);
        EXPECT_EQ(op.notices.size(), c.reported ? 1 : 0);
    }
}

TEST_F(ConnectionDialogs, TelnetCancelChangesNothingAndOkChoosesTcp) {
    settings.useTcp = false;
    TelnetDialog dialog(session);
    for (const char* button : {"cmdCancel", "cmdOK"}) {
        EXPECT_FALSE(settings.useTcp) << "before " << button;
        EXPECT_EQ(settings.ipAddress, "127.0.0.1") << "before " << button;
        dialog.load();
        in<IPControl>(dialog, "IPControl1")->setAddress("192.168.5.9");
        in<QLineEdit>(dialog, "Port")->setText("15375");
        click(dialog, button);
    }
    EXPECT_TRUE(settings.useTcp);
    EXPECT_EQ(settings.ipAddress, "192.168.5.9");
    EXPECT_EQ(settings.telnetPort, "15375");
    EXPECT_TRUE(op.notices.isEmpty());
}

// The file dialogs of End Rec. Script, Save log file, the wire trace's save and the opens.
TEST(FileDialogs, ANameWithoutExtensionGetsTheFiltersAndTheNextDialogOpensInItsFolder) {
    QTemporaryDir dir;
    WidgetOperator op;
    // Types `name` into the next file dialog and presses Enter; notes the folder it opened in.
    QString openedIn;
    const auto typeIntoNextDialog = [&openedIn](const QString& name) {
        QTimer::singleShot(0, [&openedIn, name] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            ASSERT_TRUE(dialog);
            openedIn = dialog->directory().absolutePath();
            auto* edit = dialog->findChild<QLineEdit*>("fileNameEdit");
            ASSERT_TRUE(edit);
            edit->setText(name);
            QTest::keyClick(edit, Qt::Key_Return);
        });
    };
    typeIntoNextDialog(dir.filePath("session1"));
    EXPECT_EQ(op.chooseFileToSave(logFileFilter), dir.filePath("session1.log"));
    const struct {
        QString filter;
        const char* typed;
        const char* saved;
    } saves[] = {
        {scriptFileFilter(), "rec1", "rec1.txt"},
        {scriptFileFilter(), "rec2.scr", "rec2.scr"},
        {QStringLiteral("Text files (*.txt);;All files (*)"), "trace.old", "trace.old"},
    };
    for (const auto& c : saves) {
        typeIntoNextDialog(c.typed);
        EXPECT_EQ(op.chooseFileToSave(c.filter), dir.filePath(c.saved)) << c.typed;
        EXPECT_EQ(openedIn, dir.path()) << "where the last file was saved";
    }
    // An open dialog starts where the last file was saved, and the next save where that was
    // opened.
    ASSERT_TRUE(QDir(dir.path()).mkdir("older"));
    QFile older(dir.filePath("older/rec0.txt"));
    ASSERT_TRUE(older.open(QIODevice::WriteOnly));
    older.close();
    typeIntoNextDialog("older/rec0.txt");
    EXPECT_EQ(op.chooseFileToOpen(scriptFileFilter()), dir.filePath("older/rec0.txt"));
    EXPECT_EQ(openedIn, dir.path());
    typeIntoNextDialog("rec3");
    EXPECT_EQ(op.chooseFileToSave(scriptFileFilter()), dir.filePath("older/rec3.txt"));
}

} // namespace
