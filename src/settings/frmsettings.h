#pragma once
// The settings dialog. Loading it is also how the program reads its settings into memory.

#include "core/ui/msgbox.h"

#include <QDialog>

#include <array>

class QCheckBox;
class QComboBox;
class QFrame;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QStackedWidget;
class QTabBar;

class frmSettings : public QDialog
{
    Q_OBJECT
public:
    // Constructing the dialog loads it: the controls and the in-memory settings are filled
    // from the settings file.
    explicit frmSettings(QWidget *parent = nullptr);

    QTabBar *tsSettings;
    QFrame *fraPrint;
    QFrame *fraFile;
    QFrame *fraAction;
    QComboBox *cboFontSize;
    QCheckBox *chkNewPage;
    QCheckBox *chkSpaceBetween;
    QCheckBox *chkPageNumbers;
    QComboBox *cboMeasures; // amounts as written, in US or in metric measures
    QCheckBox *chkCombine;
    QLineEdit *txtDatabase;
    QLineEdit *txtTransfer;
    QLineEdit *txtFilename;
    QPushButton *cmdBrowseDatabase;
    QPushButton *cmdBrowseTransfer;
    QPushButton *cmdBrowseFilename;
    QCheckBox *chkSeek;
    QCheckBox *chkSeekAmount;
    std::array<QRadioButton *, 2> optSearch;
    std::array<QRadioButton *, 2> optAdd;
    QCheckBox *chkLimit;
    QPushButton *cmdClose;
    QPushButton *cmdReset;
    QPushButton *cmdCancel;

    // Selects tab 1 (printing), 2 (files) or 3 (actions).
    void SetTab(int tab);

public Q_SLOTS:
    void Form_Load();
    void cmdClose_Click();
    void cmdReset_Click();
    void cmdCancel_Click();
    void tsSettings_Click();

private:
    void buildLayout();
    void browse(QLineEdit *box, const QString &title, const QString &filter, FileUse use);
    QStackedWidget *m_frames;
    void readControls();
};

// Reads every setting into memory, as start-up does: the dialog is loaded and unloaded.
void LoadSettings();
// Shows the settings dialog (modeless, one at a time).
void ShowSettings(int tab = 1);
