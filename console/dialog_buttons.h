#pragma once

#include <functional>

class QDialog;
class QDialogButtonBox;

namespace larkspur {

// The OK and Cancel buttons of the connection dialogs ("cmdOK", "cmdCancel"): OK runs `ok`,
// Cancel rejects the dialog.
QDialogButtonBox* okCancelButtons(QDialog* dialog, std::function<void()> ok);

} // namespace larkspur
