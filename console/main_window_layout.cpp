// The window's layout: the controls in groups on the left, the traffic log taking the rest of
// the room on the right, the two optional frames below it; the operator moves the line between
// them, and the window remembers where.
#include "console/main_window.h"

#include "console/report_saver.h"
#include "console/traffic_view.h"
#include "script/script_engine.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QScrollArea>
#include <QSettings>
#include <QSplitter>
#include <QVBoxLayout>

namespace larkspur {

namespace {

QGroupBox* group(const QString& title, QWidget* parent) {
    return new QGroupBox(title, parent);
}

// Buttons of one grid share a width, so relabelling for the other mode does not shift them.
void addButtons(QGridLayout* grid, int row, const QList<QWidget*>& buttons) {
    for (int column = 0; column < buttons.size(); ++column) {
        if (buttons[column])
            grid->addWidget(buttons[column], row, column);
    }
}

void equalColumns(QGridLayout* grid) {
    for (int column = 0; column < grid->columnCount(); ++column)
        grid->setColumnStretch(column, 1);
}

// Where the line between the controls and the log stands.
const QString splitKey = QStringLiteral("Window/ControlSplitter");

} // namespace

void MainWindow::buildMenus() {
    QMenuBar* bar = menuBar();
    QMenu* file = menu("mnuFile", bar);
    bar->addMenu(file);
    QAction* check = file->addAction(tr("Check Script..."), this, [this] { checkScript(); });
    check->setObjectName(QStringLiteral("mnuCheckScript"));
    QAction* report = file->addAction(tr("Save Report..."), m_reportSaver, &ReportSaver::save);
    report->setObjectName(QStringLiteral("mnuSaveReport"));
    file->addSeparator();
    menuEntry("mnuExit", file, false);

    QMenu* options = menu("mnuOptions", bar);
    bar->addMenu(options);
    QMenu* mode = menu("mnuPMS", options);
    options->addMenu(mode);
    menuEntry("mnuHotel", mode, true);
    menuEntry("mnuVoiceMail", mode, true);
    QMenu* protocol = menu("mnu_protocal", options);
    options->addMenu(protocol);
    menuEntry("mnu_HIS", protocol, true);
    menuEntry("mnu_Hyatt", protocol, true);
    QMenu* connection = menu("mnuConnection", options);
    options->addMenu(connection);
    menuEntry("mnuCommport", connection, true);
    menuEntry("mnuTelnet", connection, true);

    buildViewMenu();

    QMenu* help = menu("mnuHelp", bar);
    bar->addMenu(help);
    menuEntry("mnuAbout", help, false);
}

QWidget* MainWindow::buildControlPanel() {
    auto* controls = new QWidget(this);
    auto* buttons = new QVBoxLayout;
    buttons->addWidget(buildTransactionGroup());
    buttons->addWidget(buildRoomFeatureGroup());
    buttons->addWidget(buildOptionGroup());
    buttons->addStretch();

    auto* left = new QGridLayout(controls);
    left->addWidget(buildLinkGroup(), 0, 0, 1, 2);
    left->addWidget(buildFieldGroup(), 1, 0);
    left->addLayout(buttons, 1, 1);
    left->addWidget(buildScriptFrame(), 2, 0, 1, 2);
    left->addWidget(buildLogGroup(), 3, 0, 1, 2);
    left->setRowStretch(4, 1);

    // Narrowed below their width, the controls scroll rather than squeeze.
    auto* scroll = new QScrollArea(this);
    scroll->setObjectName(QStringLiteral("controlScroll"));
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setWidget(controls);

    auto* logSide = new QWidget(this);
    auto* right = new QVBoxLayout(logSide);
    // Between the controls and the log the splitter's handle stands in for the margins.
    QMargins margins = left->contentsMargins();
    left->setContentsMargins(margins.left(), margins.top(), 0, margins.bottom());
    right->setContentsMargins(0, margins.top(), margins.right(), margins.bottom());
    right->addWidget(m_traffic, 1);
    right->addWidget(buildLinkedSuiteFrame());
    right->addWidget(buildManualModeFrame());

    // The operator shares the width between the controls and the log.
    m_split = new QSplitter(Qt::Horizontal, this);
    m_split->setObjectName(QStringLiteral("controlSplitter"));
    m_split->setChildrenCollapsible(false);
    m_split->addWidget(scroll);
    m_split->addWidget(logSide);
    m_split->setStretchFactor(1, 1);
    return m_split;
}

void MainWindow::restoreSplit() {
    if (m_split->restoreState(m_settings.value(splitKey).toByteArray()))
        return;
    // At first the controls take their own width and the log the rest.
    const auto* scroll = static_cast<QScrollArea*>(m_split->widget(0));
    const int controls = scroll->widget()->sizeHint().width();
    m_split->setSizes({controls, qMax(1, width() - controls)});
}

void MainWindow::saveSplit() {
    m_settings.setValue(splitKey, m_split->saveState());
}

QWidget* MainWindow::buildLinkGroup() {
    QGroupBox* box = group(tr("Link"), this);
    auto* row = new QHBoxLayout(box);
    row->addWidget(button("cmd_connect"));
    row->addWidget(button("cmd_disconnect"));
    row->addSpacing(16);
    row->addWidget(checkBox("chk_DTREnabled"));
    row->addWidget(checkBox("chk_RTSEnabled"));
    row->addWidget(checkBox("chk_NullDiscard"));
    row->addStretch();
    return box;
}

QWidget* MainWindow::buildFieldGroup() {
    const struct {
        const char* label;
        Field field;
        int maxLength;
        int widthInCharacters;
    } rows[] = {
        {"Label4", Field::txt_ls_pilot, 0, 8},
        {"Label5", Field::txt_suite_1, 0, 8},
        {"Label6", Field::txt_suite_2, 0, 8},
        {"Label7", Field::txt_suite_3, 0, 8},
        {"Label8", Field::txt_suite_4, 0, 8},
        {"Label10", Field::Text1, 25, 25},
        {"Label9", Field::txt_department, 10, 12},
        {"lbl_department(0)", Field::txt_location, 10, 12},
        {"Label_time", Field::txt_time, 0, 8},
        {"Credit_label", Field::txt_credit, 0, 8},
    };
    QGroupBox* box = group(tr("Fields"), this);
    auto* grid = new QGridLayout(box);
    const int charWidth = fontMetrics().horizontalAdvance(QLatin1Char('0'));
    QWidget* previous = nullptr;
    for (int i = 0; i < int(std::size(rows)); ++i) {
        QLabel* caption = label(rows[i].label);
        grid->addWidget(caption, i, 0);
        QLineEdit* edit = field(rows[i].field, rows[i].maxLength);
        // The label names the field, for assistive technology too, in either mode.
        caption->setBuddy(edit);
        edit->setMinimumWidth(rows[i].widthInCharacters * charWidth + 12);
        grid->addWidget(edit, i, 1);
        // The pilot first, then the suite fields in order, then the rest as they stand.
        if (previous)
            setTabOrder(previous, edit);
        previous = edit;
    }
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(int(std::size(rows)), 1);
    return box;
}

QWidget* MainWindow::buildTransactionGroup() {
    QGroupBox* box = group(tr("Transactions"), this);
    auto* grid = new QGridLayout(box);
    addButtons(grid, 0, {button("cmd_chk_in"), button("cmd_chk_out"), button("cmd_xfer_name")});
    addButtons(grid, 1, {button("cmd_name_1"), button("cmd_replace_name"), button("Command6")});
    addButtons(grid, 2,
               {button("cmd_dept"), button("cmd_department_2"), button("cmd_department_3")});
    grid->addWidget(label("lbl_department(1)"), 3, 0);
    addButtons(grid, 4, {button("cmd_loc"), button("cmd_location_2"), button("cmd_location_3")});
    equalColumns(grid);
    return box;
}

QWidget* MainWindow::buildRoomFeatureGroup() {
    QGroupBox* box = group(tr("Room features"), this);
    m_groups.append(box);
    auto* grid = new QGridLayout(box);
    addButtons(grid, 0,
               {button("cmd_msg_wait"), button("cmd_message_waiting_0"), button("cmd_wakeup")});
    addButtons(grid, 1, {button("cmd_set_credit")});
    auto* restrict = new QHBoxLayout;
    QLabel* caption = label("Label11");
    QComboBox* levels = list("cmb_restrict", {"internal call", "local call", "long distant call",
                                              "option 1", "option 2", "option 3"});
    caption->setBuddy(levels);
    restrict->addWidget(caption);
    restrict->addWidget(levels, 1);
    grid->addLayout(restrict, 1, 1, 1, 2);
    equalColumns(grid);
    return box;
}

QWidget* MainWindow::buildOptionGroup() {
    QGroupBox* box = group(tr("Options"), this);
    auto* row = new QHBoxLayout(box);
    row->addWidget(checkBox("chk_error"));
    row->addWidget(checkBox("chk_linked_suite"));
    row->addWidget(checkBox("chk_manual"));
    row->addStretch();
    return box;
}

QWidget* MainWindow::buildLogGroup() {
    QGroupBox* box = group(tr("Log"), this);
    auto* grid = new QGridLayout(box);
    addButtons(grid, 0,
               {button("cmd_view_log"), button("cmd_save_log"), button("cmd_open_logfile"),
                button("cmd_new_error_file"), button("cmd_clear")});
    equalColumns(grid);
    return box;
}

QWidget* MainWindow::buildScriptFrame() {
    QGroupBox* box = frame("Frame1");
    auto* grid = new QGridLayout(box);
    addButtons(grid, 0,
               {button("cmd_start_script"), button("cmd_end_script"), button("Xtest"),
                button("StopScript")});
    addButtons(grid, 1,
               {checkBox("Continuous"), button("cmd_cancel"), button("cmd_recovery"), nullptr});
    const QStringList& items = ScriptEngine::expectationItems();
    auto* expectations = new QHBoxLayout;
    const std::pair<const char*, const char*> lists[] = {{"label_wait(0)", "cmb_notify"},
                                                         {"label_wait(1)", "cmb_wait"}};
    for (const auto& [labelName, listName] : lists) {
        QLabel* caption = label(labelName);
        QComboBox* entries = list(listName, items);
        caption->setBuddy(entries);
        if (expectations->count() > 0)
            expectations->addSpacing(16);
        expectations->addWidget(caption);
        expectations->addWidget(entries, 1);
    }
    grid->addLayout(expectations, 2, 0, 1, 4);
    equalColumns(grid);
    return box;
}

QWidget* MainWindow::buildLinkedSuiteFrame() {
    QGroupBox* box = frame("fr_Linked_suite");
    auto* grid = new QGridLayout(box);
    const char* const names[] = {"cmd_ste0", "cmd_ste1", "cmd_ste2", "cmd_ste3",
                                 "cmd_ste4", "cmd_ste5", "cmd_ste6", "cmd_ste7",
                                 "cmd_ste8", "cmd_steA", "cmd_steB", "cmd_ste_explain"};
    for (int i = 0; i < int(std::size(names)); ++i)
        grid->addWidget(button(names[i]), i / 6, i % 6);
    equalColumns(grid);
    return box;
}

QWidget* MainWindow::buildManualModeFrame() {
    QGroupBox* box = frame("fr_manual_mode");
    auto* row = new QHBoxLayout(box);
    for (const char* name :
         {"cmd_end", "cmd_ayt", "cmd_grs", "cmd_ack", "cmd_nak", "cmd_enquiry_basic"})
        row->addWidget(button(name));
    return box;
}

void MainWindow::hideEmptyGroups() {
    // A group whose every control is hidden in this mode goes too, frame and title.
    for (QGroupBox* box : std::as_const(m_groups)) {
        bool anyShown = false;
        for (QWidget* child : box->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            anyShown = anyShown || !child->isHidden();
        box->setHidden(!anyShown);
    }
}

} // namespace larkspur
