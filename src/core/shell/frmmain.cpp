#include "frmmain.h"

#include "core/platform/appstate.h"
#include "core/ui/controls.h"
#include "core/db/dbcompact.h"
#include "core/ui/guard.h"
#include "core/ui/msgbox.h"
#include "core/ui/frmhelp.h"
#include "core/ui/periphery.h"
#include "cabinet/cabinettools.h"
#include "cabinet/frmcabinet.h"
#include "core/shell/dbupkeep.h"
#include "core/shell/startup.h"
#include "menus/frmmenu.h"
#include "recipes/frmadd2.h"
#include "search/frmsearch.h"
#include "settings/frmmaint.h"
#include "settings/frmsettings.h"
#include "transfer/mealmastercommands.h"
#include "transfer/transfercommands.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QTimer>

namespace {

const QString kExitRefused = QStringLiteral("You cannot exit the Mirepan while Sub-Windows are open.");
const QString kListWarning =
    QStringLiteral("Be careful when making changes to the values in the combo boxes!\n"
                   "Your changes will immediately affect the lists available in the software.");

// Runs a command of the main window inside the boundary that turns a platform error into a
// message box.
template<typename Sender, typename Signal>
void wire(Sender *sender, Signal signal, void (*command)())
{
    QObject::connect(sender, signal, sender, [command] { Guarded(command); });
}

} // namespace

frmMain::frmMain(QWidget *parent) : QMainWindow(parent)
{
    setObjectName(QStringLiteral("frmMain"));
    setWindowTitle(QStringLiteral("Mirepan"));

    auto *central = new QWidget(this);
    auto *grid = new QGridLayout(central);
    grid->setContentsMargins(16, 16, 16, 16);
    grid->setHorizontalSpacing(14);
    grid->setVerticalSpacing(10);

    auto addRow = [&](const char *name, const QString &caption, const QString &text) {
        auto *button = new QPushButton(caption, central);
        button->setObjectName(QLatin1String(name));
        button->setMinimumWidth(110);
        auto *label = new QLabel(text, central);
        label->setBuddy(button);
        const int row = grid->rowCount();
        grid->addWidget(button, row, 0);
        grid->addWidget(label, row, 1);
        return button;
    };
    cmdAddRecipe = addRow("cmdAddRecipe", QStringLiteral("&Add"), QStringLiteral("Add new recipes to the database"));
    cmdSearchRecipe = addRow("cmdSearchRecipe", QStringLiteral("&Search"),
                             QStringLiteral("View, print, and maintain existing recipes"));
    cmdCabinet = addRow("cmdCabinet", QStringLiteral("&Cabinet"), QStringLiteral("Maintain your cabinets"));
    cmdMenu = addRow("cmdMenu", QStringLiteral("&Menu"), QStringLiteral("Plan a menu and/or make a shopping list"));
    cmdExit = addRow("cmdExit", QStringLiteral("&Exit"), QStringLiteral("Exit the Mirepan"));

    cboRecipeType = new QComboBox(central);
    cboRecipeType->setObjectName(QStringLiteral("cboRecipeType"));
    auto *typeLabel = new QLabel(QStringLiteral("Recipe type"), central);
    typeLabel->setBuddy(cboRecipeType);
    const int typeRow = grid->rowCount();
    grid->addWidget(cboRecipeType, typeRow, 0);
    grid->addWidget(typeLabel, typeRow, 1);
    grid->setRowStretch(grid->rowCount(), 1);
    grid->setColumnStretch(1, 1);
    setCentralWidget(central);

    buildMenus();

    wire(cmdAddRecipe, &QPushButton::clicked, [] { OpenNewRecipeEditor(); });
    wire(cmdSearchRecipe, &QPushButton::clicked, [] { ShowSearchWindow(); });
    wire(cmdCabinet, &QPushButton::clicked, [] { ShowCabinetWindow(); });
    wire(cmdMenu, &QPushButton::clicked, [] { ShowMenuWindow(); });
    connect(cmdExit, &QPushButton::clicked, this, [this] { cmdExit_Click(); });
    connect(cboRecipeType, &QComboBox::activated, this, &frmMain::cboRecipeType_Click);
}

void frmMain::buildMenus()
{
    auto action = [this](QMenu *menu, const char *name, const QString &caption) {
        QAction *a = menu->addAction(caption);
        a->setObjectName(QLatin1String(name));
        return a;
    };
    QMenu *mnuFile = menuBar()->addMenu(QStringLiteral("&File"));
    mnuFile->setObjectName(QStringLiteral("mnuFile"));
    mnuAdd = action(mnuFile, "mnuAdd", QStringLiteral("&Add Recipes"));
    mnuSearch = action(mnuFile, "mnuSearch", QStringLiteral("&Search"));
    mnuCabinet = action(mnuFile, "mnuCabinet", QStringLiteral("Open &Cabinet"));
    mnuMenu = action(mnuFile, "mnuMenu", QStringLiteral("Create a &Menu"));
    mnuFile->addSeparator();
    mnuExit = action(mnuFile, "mnuExit", QStringLiteral("E&xit"));

    QMenu *mnuTools = menuBar()->addMenu(QStringLiteral("&Tools"));
    mnuTools->setObjectName(QStringLiteral("mnuTools"));
    QMenu *mnuTransfer = mnuTools->addMenu(QStringLiteral("&Transfer Files"));
    mnuTransfer->setObjectName(QStringLiteral("mnuTransfer"));
    mnuResetFile = action(mnuTransfer, "mnuResetFile", QStringLiteral("&Reset File"));
    mnuViewTransferFile = action(mnuTransfer, "mnuViewTransferFile", QStringLiteral("&View File"));
    mnuImport = action(mnuTransfer, "mnuImport", QStringLiteral("I&mport"));
    mnuExport = action(mnuTransfer, "mnuExport", QStringLiteral("E&xport"));
    mnuTransfer->addSeparator();
    mnuImportMealMaster = action(mnuTransfer, "mnuImportMealMaster", QStringLiteral("&Import MealMaster..."));
    mnuExportMealMaster = action(mnuTransfer, "mnuExportMealMaster", QStringLiteral("Ex&port MealMaster..."));
    QMenu *mnuCabinetTools = mnuTools->addMenu(QStringLiteral("&Cabinet Tools"));
    mnuCabinetTools->setObjectName(QStringLiteral("mnuCabinetTools"));
    mnuRepair = action(mnuCabinetTools, "mnuRepair", QStringLiteral("Re&pair"));
    mnuRefresh = action(mnuCabinetTools, "mnuRefresh", QStringLiteral("Re&fresh"));
    mnuDelDup = action(mnuCabinetTools, "mnuDelDup", QStringLiteral("&Clean"));
    QMenu *mnuDatabase = mnuTools->addMenu(QStringLiteral("&Database"));
    mnuDatabase->setObjectName(QStringLiteral("mnuDatabase"));
    mnuBackupDB = action(mnuDatabase, "mnuBackupDB", QStringLiteral("&Backup"));
    mnuRestore = action(mnuDatabase, "mnuRestore", QStringLiteral("&Restore"));
    mnuReset = action(mnuDatabase, "mnuReset", QStringLiteral("Reset Ra&tings"));
    QMenu *mnuSettings1 = mnuTools->addMenu(QStringLiteral("&Settings"));
    mnuSettings1->setObjectName(QStringLiteral("mnuSettings1"));
    mnuSettings = action(mnuSettings1, "mnuSettings", QStringLiteral("Vesk &Settings"));
    mnuList = action(mnuSettings1, "mnuList", QStringLiteral("&Combo Box Maintenance"));

    QMenu *mnuHelp = menuBar()->addMenu(QStringLiteral("&Help"));
    mnuHelp->setObjectName(QStringLiteral("mnuHelp"));
    mnuAbout = action(mnuHelp, "mnuAbout", QStringLiteral("&About Vesk"));
    mnuContact = action(mnuHelp, "mnuContact", QStringLiteral("&Contact Information"));
    mnuUM = action(mnuHelp, "mnuUM", QStringLiteral("&User Manual"));
    mnuWebPage = action(mnuHelp, "mnuWebPage", QStringLiteral("&Web Page"));

    // The File entries press the buttons.
    connect(mnuAdd, &QAction::triggered, cmdAddRecipe, &QPushButton::click);
    connect(mnuSearch, &QAction::triggered, cmdSearchRecipe, &QPushButton::click);
    connect(mnuCabinet, &QAction::triggered, cmdCabinet, &QPushButton::click);
    connect(mnuMenu, &QAction::triggered, cmdMenu, &QPushButton::click);
    connect(mnuExit, &QAction::triggered, this, [this] { cmdExit_Click(); });

    wire(mnuResetFile, &QAction::triggered, ResetTransferFile);
    wire(mnuViewTransferFile, &QAction::triggered, ViewTransferFile);
    wire(mnuImport, &QAction::triggered, ImportTransfer);
    wire(mnuExport, &QAction::triggered, ExportTransfer);
    wire(mnuImportMealMaster, &QAction::triggered, ImportMealMaster);
    wire(mnuExportMealMaster, &QAction::triggered, ExportMealMaster);
    wire(mnuRepair, &QAction::triggered, RepairCabinet);
    wire(mnuRefresh, &QAction::triggered, RefreshCabinet);
    wire(mnuDelDup, &QAction::triggered, CleanCabinet);
    wire(mnuBackupDB, &QAction::triggered, BackupDatabase);
    wire(mnuRestore, &QAction::triggered, RestoreDatabase);
    wire(mnuReset, &QAction::triggered, ResetRatings);
    wire(mnuSettings, &QAction::triggered, [] { ShowSettings(); });
    connect(mnuList, &QAction::triggered, this, &frmMain::mnuList_Click);

    connect(mnuAbout, &QAction::triggered, this, [] { ShowAbout(); });
    connect(mnuContact, &QAction::triggered, this, [] { ShowContact(); });
    connect(mnuUM, &QAction::triggered, this, [] { ShowUserManual(); });
    connect(mnuWebPage, &QAction::triggered, this, [] { OpenWebPage(); });
}

void frmMain::Form_Load()
{
    if (m_loaded)
        return;
    m_loaded = true;
    FillRecipeTypes(cboRecipeType);
    cboRecipeType->setCurrentIndex(0);
    Guarded(LoadSettings);
}

bool frmMain::event(QEvent *event)
{
    if (event->type() == QEvent::Show)
        Form_Load();
    else if (event->type() == QEvent::WindowActivate)
        Form_Activate();
    return QMainWindow::event(event);
}

void frmMain::Form_Activate()
{
    // A type changed in another window shows here again.
    cboRecipeType->setCurrentText(gRecipeType);
}

void frmMain::cboRecipeType_Click()
{
    gRecipeType = cboRecipeType->currentText();
}

void frmMain::cmdAddRecipe_Click()
{
    cmdAddRecipe->click();
}

void frmMain::cmdSearchRecipe_Click()
{
    cmdSearchRecipe->click();
}

void frmMain::cmdCabinet_Click()
{
    cmdCabinet->click();
}

void frmMain::cmdMenu_Click()
{
    cmdMenu->click();
}

bool frmMain::cmdExit_Click()
{
    if (gSubWindows >= 1) {
        MsgBox(kExitRefused, Msg::Critical, QStringLiteral("Error"));
        return false;
    }
    EndProgram();
    return true;
}

void frmMain::mnuList_Click()
{
    MsgBox(kListWarning, Msg::Critical, QStringLiteral("Warning"));
    Guarded(ShowListMaintenance);
}

void frmMain::closeEvent(QCloseEvent *event)
{
    // Closing the main window by its frame ends the whole program, without the guard.
    event->accept();
    QTimer::singleShot(0, qApp, [] { EndProgram(); });
}

void EndProgram()
{
    QApplication::closeAllWindows();
    // Saved a recipe at a time, the file's pages interleave; left in order, the next start's
    // first search reads it straight through.
    CompactDatabaseIfScattered();
    RecordCheckedDatabase();
    QCoreApplication::quit();
}
