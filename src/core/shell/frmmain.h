#pragma once
// The main window: opens the working windows and holds the current recipe type.

#include <QMainWindow>

class QAction;
class QComboBox;
class QLabel;
class QPushButton;

class frmMain : public QMainWindow
{
    Q_OBJECT
public:
    explicit frmMain(QWidget *parent = nullptr);

    QPushButton *cmdAddRecipe;
    QPushButton *cmdSearchRecipe;
    QPushButton *cmdCabinet;
    QPushButton *cmdMenu;
    QPushButton *cmdExit;
    QComboBox *cboRecipeType;

    QAction *mnuAdd, *mnuSearch, *mnuCabinet, *mnuMenu, *mnuExit;
    QAction *mnuResetFile, *mnuViewTransferFile, *mnuImport, *mnuExport, *mnuImportMealMaster, *mnuExportMealMaster;
    QAction *mnuRepair, *mnuRefresh, *mnuDelDup;
    QAction *mnuBackupDB, *mnuRestore, *mnuReset;
    QAction *mnuSettings, *mnuList;
    QAction *mnuAbout, *mnuContact, *mnuUM, *mnuWebPage;

public Q_SLOTS:
    void Form_Load();
    void Form_Activate();
    void cboRecipeType_Click();
    void cmdAddRecipe_Click();
    void cmdSearchRecipe_Click();
    void cmdCabinet_Click();
    void cmdMenu_Click();
    // The exit procedure: refuses while working windows are open. True when the program ends.
    bool cmdExit_Click();
    void mnuList_Click();

protected:
    bool event(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void buildMenus();
    bool m_loaded = false;
};

// Ends the program: every window closes and the event loop stops.
void EndProgram();
