#pragma once
// List maintenance: the per-type lists of categories, measures and amounts, and the ratings,
// as "Order=Display Value" entries of the settings file.

#include <QDialog>

#include <array>

class QComboBox;
class QLineEdit;
class QPushButton;
class QTreeWidget;

class frmMaint : public QDialog
{
    Q_OBJECT
public:
    explicit frmMaint(QWidget *parent = nullptr);

    QComboBox *cboSection;
    QTreeWidget *lvwEntries;
    std::array<QLineEdit *, 2> txtData; // 0 the order, 1 the display value
    QPushButton *cmdAdd;
    QPushButton *cmdDelete;
    QPushButton *cmdClose;

public Q_SLOTS:
    void cboSection_Click();
    void lvwEntries_Click();
    void cmdAdd_Click();
    void cmdDelete_Click();
};

// Shows the list maintenance window (one at a time).
void ShowListMaintenance();
