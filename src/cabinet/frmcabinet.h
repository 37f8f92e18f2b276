#pragma once
// The cabinet window: the pantry of one recipe type, each item ticked when it is at home.

#include "core/platform/appstate.h"

#include <QWidget>

class QComboBox;
class QPushButton;
class QTreeWidget;

class frmCabinet : public QWidget
{
    Q_OBJECT
public:
    explicit frmCabinet(QWidget *parent = nullptr);

    QTreeWidget *lvwCabinet;
    QComboBox *cboRecipeType;
    QPushButton *cmdAdd;
    QPushButton *cmdDelete;
    QPushButton *cmdAll;
    QPushButton *cmdNone;
    QPushButton *cmdSelected;
    QPushButton *cmdClearSelected;
    QPushButton *cmdToggle;
    QPushButton *cmdSave;
    QPushButton *cmdPrint;
    QPushButton *cmdClean;
    QPushButton *cmdDensity;
    QPushButton *cmdClose;

    // Unsaved ticks or items.
    bool changed() const { return m_changed; }

public Q_SLOTS:
    void Form_Load();
    void LoadList();
    void cboRecipeType_Click();
    void cmdAdd_Click();
    void cmdDelete_Click();
    void cmdAll_Click();
    void cmdNone_Click();
    void cmdSelected_Click();
    void cmdClearSelected_Click();
    void cmdToggle_Click();
    void cmdSave_Click();
    void cmdPrint_Click();
    void cmdClean_Click();
    // The weight of a cup of the selected item, which lets its cups and grams convert.
    void cmdDensity_Click();
    void cmdClose_Click();

protected:
    bool event(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void buildLayout();
    // Ticks (or unticks, or inverts) the items, all or the selected ones.
    enum class Tick { On, Off, Invert };
    void tick(Tick how, bool selectedOnly);
    // The code of the type this window shows ("F", "D", "O"): its own from open to close, not
    // whatever the main window switches to meanwhile.
    QString typeCode() const { return m_type.left(1); }

    QString m_type = QStringLiteral("Food");
    SubWindowCount m_life;
    bool m_changed = false;
};

// Shows the cabinet window (one at a time), for the current recipe type.
void ShowCabinetWindow();
