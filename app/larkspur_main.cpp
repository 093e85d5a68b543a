// larkspur: the operator console.

#include "assembly/assembly.h"
#include "console/main_window.h"
#include "console/widget_operator.h"

#include <QApplication>
#include <QSettings>

using namespace larkspur;

int main(int argc, char** argv) {
    larkspur::useLeanEventDispatcher();
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Larkspur"));
    QApplication::setApplicationName(QStringLiteral("Larkspur"));
    QApplication::setApplicationVersion(QStringLiteral(LARKSPUR_VERSION));

    WidgetOperator operatorInterface;
    ProgramAssembly console(operatorInterface, 100'000);
    QSettings settings;

    MainWindow window(console, settings);
    operatorInterface.setWindow(&window);
    window.show();
    return app.exec();
}
