#include "console/log_commands.h"

#include "core/operator_interface.h"
#include "records/log_files.h"
#include "transactions/session.h"

namespace larkspur {

QString cmd_save_log(Session& session) {
    if (session.link().waitingForAck())
        return QString();
    const QString path = session.operatorInterface().chooseFileToSave(logFileFilter);
    QString error;
    if (path.isEmpty() || saveLogFile(path, session.log().viewerList(), &error))
        return QString();
    return QStringLiteral("The log file %1 could not be written: %2").arg(path, error);
}

bool cmd_open_logfile(Session& session) {
    if (session.link().waitingForAck())
        return false;
    const QString path = session.operatorInterface().chooseFileToOpen(logFileFilter);
    return !path.isEmpty() && appendLogFile(path, session.log().viewerList());
}

void cmd_new_error_file(Session& session) {
    session.errors().clearReport();
    session.log().viewerList().clear();
}

} // namespace larkspur
