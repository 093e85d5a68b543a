// larkspur: the operator console.

#include "console/main_window.h"
#include "console/widget_operator.h"
#include "core/qt_event_pump.h"
#include "link/serial_transport.h"
#include "link/tcp_transport.h"
#include "script/script_engine.h"
#include "transactions/session.h"

#include <QApplication>
#include <QSettings>

using namespace larkspur;

int main(int argc, char** argv) {
    larkspur::useLeanEventDispatcher();
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Larkspur"));
    QApplication::setApplicationName(QStringLiteral("Larkspur"));
    QApplication::setApplicationVersion(QStringLiteral(LARKSPUR_VERSION));

    QtEventPump pump;
    WidgetOperator operatorInterface;
    TcpTransport tcp;
    SerialTransport serial;
    Session session(pump, operatorInterface, tcp, serial);
    ScriptEngine engine(session);
    QSettings settings;

    MainWindow window(session, engine, settings);
    operatorInterface.setWindow(&window);
    window.show();
    return app.exec();
}
