#include "frmmaint.h"

#include "core/ui/controls.h"
#include "core/ui/guard.h"
#include "core/platform/modini.h"
#include "core/ui/msgbox.h"
#include "core/platform/programdir.h"

#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace {

const char *const kSections[] = {"Category_Food", "Category_Drink", "Category_Other", "Measure_Food", "Measure_Drink",
                                 "Measure_Other", "Amount_Food", "Amount_Drink", "Amount_Other", "Rating",
                                 // The household's own units, beyond the lists: "stick = 8 Tbsp".
                                 "Units"};
const QString kDefaultOrder = QStringLiteral("00");
const QString kInvalidData = QStringLiteral("You must have an order entered and a section selected.");
const QString kCannotChange = QStringLiteral(
    "Users are not permitted to change this list item.  \nThis is the default value of the selected list!");
const QString kCannotRemove = QStringLiteral(
    "Users are not permitted to remove this list item.  \nThis is the default value of the selected list!");
const QString kNoOrder = QStringLiteral("You must enter the ID/Order for the item to delete!");
const QString kNotAnOrder = QStringLiteral("The order is a number from 01 to 99: it places the entry in the list.");

// The order as the lists write it, two digits; "" when the text is no such number.
QString listOrder(const QString &typed)
{
    if (typed.isEmpty())
        return {};
    if (typed.size() > 2 || !std::all_of(typed.begin(), typed.end(), [](QChar c) { return c >= u'0' && c <= u'9'; }))
        return typed.size() > 2 && typed.count(u'0') == typed.size() ? kDefaultOrder : QString();
    return typed.rightJustified(2, u'0');
}

} // namespace

frmMaint::frmMaint(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmMaint"));
    setWindowTitle(QStringLiteral("Maintenance"));
    cboSection = Named(new QComboBox(this), "cboSection");
    for (const char *section : kSections)
        cboSection->addItem(QLatin1String(section));
    lvwEntries = Named(new QTreeWidget(this), "lvwEntries");
    lvwEntries->setRootIsDecorated(false);
    lvwEntries->setHeaderLabels({QStringLiteral("Order=Display Value")});
    txtData[0] = Named(new QLineEdit(this), "txtData0");
    txtData[1] = Named(new QLineEdit(this), "txtData1");
    cmdAdd = Named(new QPushButton(QStringLiteral("&Add"), this), "cmdAdd");
    cmdDelete = Named(new QPushButton(QStringLiteral("Delete"), this), "cmdDelete");
    cmdClose = Named(new QPushButton(QStringLiteral("&Close"), this), "cmdClose");
    cmdAdd->setDefault(true);

    auto *fields = new QFormLayout;
    auto *sectionLabel = new QLabel(QStringLiteral("&List:"), this);
    sectionLabel->setBuddy(cboSection);
    fields->addRow(sectionLabel, cboSection);
    auto *orderLabel = new QLabel(QStringLiteral("&Order"), this);
    orderLabel->setBuddy(txtData[0]);
    fields->addRow(orderLabel, txtData[0]);
    auto *valueLabel = new QLabel(QStringLiteral("Display &Value"), this);
    valueLabel->setBuddy(txtData[1]);
    fields->addRow(valueLabel, txtData[1]);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(cmdAdd);
    buttons->addWidget(cmdDelete);
    buttons->addStretch();
    buttons->addWidget(cmdClose);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(fields);
    layout->addWidget(lvwEntries, 1);
    layout->addLayout(buttons);
    FitToScreen(this, 420, 460);

    connect(cboSection, &QComboBox::activated, this, &frmMaint::cboSection_Click);
    connect(lvwEntries, &QTreeWidget::itemClicked, this, &frmMaint::lvwEntries_Click);
    // The arrow keys choose an entry as a click does.
    connect(lvwEntries, &QTreeWidget::currentItemChanged, this, &frmMaint::lvwEntries_Click);
    connect(cmdAdd, &QPushButton::clicked, this, [this] { Guarded([this] { cmdAdd_Click(); }); });
    connect(cmdDelete, &QPushButton::clicked, this, [this] { Guarded([this] { cmdDelete_Click(); }); });
    connect(cmdClose, &QPushButton::clicked, this, &QDialog::close);
    cboSection_Click();
}

void frmMaint::cboSection_Click()
{
    lvwEntries->clear();
    QList<QTreeWidgetItem *> items;
    for (const QString &line : GetIniSection(IniPath(), cboSection->currentText()))
        items.append(new QTreeWidgetItem({line}));
    lvwEntries->addTopLevelItems(items);
    txtData[0]->clear();
    txtData[1]->clear();
}

void frmMaint::lvwEntries_Click()
{
    const QTreeWidgetItem *item = lvwEntries->currentItem();
    if (!item)
        return;
    const QString line = item->text(0);
    const qsizetype eq = line.indexOf(u'=');
    txtData[0]->setText(eq < 0 ? line : line.left(eq));
    txtData[1]->setText(eq < 0 ? QString() : line.mid(eq + 1));
}

void frmMaint::cmdAdd_Click()
{
    const QString order = txtData[0]->text();
    if (order.isEmpty() || cboSection->currentText().isEmpty()) {
        MsgBox(kInvalidData, Msg::Ok, QStringLiteral("Invalid Data"));
        return;
    }
    // The lists are ordered by two-digit numbers: "5" is 05, and "0" or "000" would be the
    // default's place.
    const QString number = listOrder(order);
    if (number.isEmpty()) {
        MsgBox(kNotAnOrder, Msg::Ok, QStringLiteral("Invalid Data"));
        return;
    }
    if (number == kDefaultOrder) {
        MsgBox(kCannotChange, Msg::Critical, QStringLiteral("Invalid Option"));
        return;
    }
    WriteIniListEntry(IniPath(), cboSection->currentText(), number + u'=' + txtData[1]->text());
    cboSection_Click();
}

void frmMaint::cmdDelete_Click()
{
    // Typed as added ("9" is 09); an entry written otherwise before stays removable as it reads.
    const QString typed = txtData[0]->text();
    const QString order = listOrder(typed).isEmpty() ? typed : listOrder(typed);
    if (order.isEmpty()) {
        MsgBox(kNoOrder, Msg::Ok, QStringLiteral("Error"));
        return;
    }
    if (order == kDefaultOrder) {
        MsgBox(kCannotRemove, Msg::Critical, QStringLiteral("Invalid Option"));
        return;
    }
    if (MsgBox(QStringLiteral("Are you sure you want to remove the entry: ") + order + u'=' + txtData[1]->text() + u'?',
               Msg::QuestionDefaultNo, QStringLiteral("Confirmation")) != MsgResult::Yes)
        return;
    DeleteIniKey(IniPath(), cboSection->currentText(), order);
    cboSection_Click();
}

void ShowListMaintenance()
{
    static QPointer<frmMaint> window;
    ShowOnly(window);
}
