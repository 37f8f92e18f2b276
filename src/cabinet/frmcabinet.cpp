#include "frmcabinet.h"

#include "cabinettools.h"

#include "core/platform/appstate.h"
#include "core/ui/controls.h"
#include "core/db/database.h"
#include "core/ui/guard.h"
#include "core/ui/msgbox.h"
#include "core/platform/modini.h"
#include "core/platform/programdir.h"
#include "quantities/measures.h"
#include "reports/recipeprinter.h"
#include "core/ui/voicewindows.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

// The tick as the database holds it, beside the tick the user sees.
constexpr int kStoredTick = Qt::UserRole + 1;

const QString kAddPrompt = QStringLiteral("What item do you wish to add to the Cabinet?");
const QString kDeleteQuestion = QStringLiteral("Are you sure you want to remove this item from the Cabinet?");
const QString kCloseQuestion =
    QStringLiteral("You have not saved your changes.\n\nWould you like to close your Cabinet without saving?");
const QString kFont = QStringLiteral("Courier New");

// An item's name inside a quoted text of a statement that is not an INSERT (which doubles its
// apostrophes itself): "Baker's chocolate" is ticked and removed like any other.
QString quoted(const QString &item)
{
    QString text = item;
    return text.replace(u'\'', QStringLiteral("''"));
}

// What the statements cannot carry, said before anything is tried.
bool refuseUnstorable(const QString &item)
{
    if (DelimiterApostropheIn(item) < 0)
        return false;
    MsgBox(QStringLiteral("The item \"") + item +
               QStringLiteral("\" cannot be stored as it stands: an apostrophe next to a comma or a parenthesis "
                              "would end it there."),
           Msg::Critical, QStringLiteral("Error"));
    return true;
}

} // namespace

frmCabinet::frmCabinet(QWidget *parent) : QWidget(parent, Qt::Window)
{
    setObjectName(QStringLiteral("frmCabinet"));
    setWindowTitle(QStringLiteral("Cabinet"));
    buildLayout();
    connect(cboRecipeType, &QComboBox::activated, this, [this] { Guarded([this] { cboRecipeType_Click(); }); });
    const std::pair<QPushButton *, void (frmCabinet::*)()> commands[] = {
        {cmdAdd, &frmCabinet::cmdAdd_Click},           {cmdDelete, &frmCabinet::cmdDelete_Click},
        {cmdAll, &frmCabinet::cmdAll_Click},           {cmdNone, &frmCabinet::cmdNone_Click},
        {cmdSelected, &frmCabinet::cmdSelected_Click}, {cmdClearSelected, &frmCabinet::cmdClearSelected_Click},
        {cmdToggle, &frmCabinet::cmdToggle_Click},     {cmdSave, &frmCabinet::cmdSave_Click},
        {cmdPrint, &frmCabinet::cmdPrint_Click},       {cmdClean, &frmCabinet::cmdClean_Click},
        {cmdDensity, &frmCabinet::cmdDensity_Click},   {cmdClose, &frmCabinet::cmdClose_Click}};
    for (const auto &[button, handler] : commands)
        connect(button, &QPushButton::clicked, this,
                [this, handler] { Guarded([this, handler] { (this->*handler)(); }); });
    // A tick set by the user is a change; the list's own loading sets none.
    connect(lvwCabinet, &QTreeWidget::itemChanged, this, [this] { m_changed = true; });
}

void frmCabinet::buildLayout()
{
    lvwCabinet = Named(new QTreeWidget(this), "lvwCabinet");
    lvwCabinet->setRootIsDecorated(false);
    lvwCabinet->setHeaderLabels({QStringLiteral("Ingredient")});
    lvwCabinet->setSelectionMode(QAbstractItemView::ExtendedSelection);
    lvwCabinet->setColumnWidth(0, 3700 / 15);
    lvwCabinet->setMinimumWidth(3700 / 15 + 24);
    cboRecipeType = Named(new QComboBox(this), "cboRecipeType");
    auto button = [this](const char *name, const QString &caption) {
        return Named(new QPushButton(caption, this), name);
    };
    cmdAdd = button("cmdAdd", QStringLiteral("&Add..."));
    cmdDelete = button("cmdDelete", QStringLiteral("&Delete"));
    cmdAll = button("cmdAll", QStringLiteral("Tick A&ll"));
    cmdNone = button("cmdNone", QStringLiteral("&Untick All"));
    cmdSelected = button("cmdSelected", QStringLiteral("T&ick Selected"));
    cmdClearSelected = button("cmdClearSelected", QStringLiteral("Untick Sele&cted"));
    cmdToggle = button("cmdToggle", QStringLiteral("&Toggle Selected"));
    cmdSave = button("cmdSave", QStringLiteral("&Save"));
    cmdPrint = button("cmdPrint", QStringLiteral("&Print"));
    cmdClean = button("cmdClean", QStringLiteral("Clea&n"));
    cmdDensity = button("cmdDensity", QStringLiteral("&Weight of a Cup..."));
    cmdClose = button("cmdClose", QStringLiteral("Cl&ose"));
    cmdSave->setDefault(true);

    auto *typeRow = new QHBoxLayout;
    auto *typeLabel = new QLabel(QStringLiteral("&Recipe type:"), this);
    typeLabel->setBuddy(cboRecipeType);
    typeRow->addWidget(typeLabel);
    typeRow->addWidget(cboRecipeType, 1);

    auto *side = new QVBoxLayout;
    side->addLayout(typeRow);
    side->addSpacing(8);
    for (QPushButton *b : {cmdAll, cmdNone, cmdSelected, cmdClearSelected, cmdToggle})
        side->addWidget(b);
    side->addSpacing(8);
    for (QPushButton *b : {cmdAdd, cmdDelete, cmdClean, cmdDensity})
        side->addWidget(b);
    side->addStretch();
    for (QPushButton *b : {cmdSave, cmdPrint, cmdClose})
        side->addWidget(b);

    auto *layout = new QHBoxLayout(this);
    layout->addWidget(lvwCabinet, 1);
    layout->addLayout(side);
    FitToScreen(this, 520, 460);
}

bool frmCabinet::event(QEvent *event)
{
    if (event->type() == QEvent::Show && !m_life.loaded())
        Guarded([this] { Form_Load(); });
    return QWidget::event(event);
}

void frmCabinet::Form_Load()
{
    if (!m_life.load())
        return;
    FillRecipeTypes(cboRecipeType);
    cboRecipeType->setCurrentText(gRecipeType);
    m_type = cboRecipeType->currentText();
    LoadList();
}

void frmCabinet::LoadList()
{
    const QSignalBlocker quiet(lvwCabinet);
    lvwCabinet->clear();
    if (gNotConnected)
        return;
    gSQL = QStringLiteral("SELECT * FROM CABINET WHERE type = '") + typeCode() + u'\'';
    QList<QTreeWidgetItem *> items;
    for (Recordset rs = ExecuteSQL(gSQL); rs && !rs.eof(); rs.MoveNext()) {
        auto *item = new QTreeWidgetItem({rs.text(QStringLiteral("item"))});
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(0, rs.value(QStringLiteral("available")).toLongLong() != 0 ? Qt::Checked : Qt::Unchecked);
        item->setData(0, kStoredTick, item->checkState(0));
        items.append(item);
    }
    lvwCabinet->addTopLevelItems(items);
    lvwCabinet->sortItems(0, Qt::AscendingOrder);
}

void frmCabinet::cboRecipeType_Click()
{
    // Switching types never loses ticks: the old type's are saved first.
    if (m_changed)
        cmdSave_Click();
    if (m_changed) { // not saved: the list stays on its type, ticks and all
        const QSignalBlocker quiet(cboRecipeType);
        cboRecipeType->setCurrentText(m_type);
        return;
    }
    m_type = cboRecipeType->currentText();
    gRecipeType = m_type;
    LoadList();
}

void frmCabinet::tick(Tick how, bool selectedOnly)
{
    const QSignalBlocker quiet(lvwCabinet);
    for (int i = 0; i < lvwCabinet->topLevelItemCount(); ++i) {
        QTreeWidgetItem *item = lvwCabinet->topLevelItem(i);
        if (selectedOnly && !item->isSelected())
            continue;
        const bool on = how == Tick::On || (how == Tick::Invert && item->checkState(0) != Qt::Checked);
        item->setCheckState(0, on ? Qt::Checked : Qt::Unchecked);
    }
    m_changed = true;
}

void frmCabinet::cmdAll_Click()
{
    tick(Tick::On, false);
}

void frmCabinet::cmdNone_Click()
{
    tick(Tick::Off, false);
}

void frmCabinet::cmdSelected_Click()
{
    tick(Tick::On, true);
}

void frmCabinet::cmdClearSelected_Click()
{
    tick(Tick::Off, true);
}

void frmCabinet::cmdToggle_Click()
{
    tick(Tick::Invert, true);
}

void frmCabinet::cmdAdd_Click()
{
    const QString item = InputBox(kAddPrompt, QStringLiteral("Confirmation"));
    if (item.isEmpty() || ReportNotConnected() || refuseUnstorable(item))
        return;
    gSQL = QStringLiteral("INSERT INTO CABINET VALUES ('") + item + QStringLiteral("', '") + typeCode() +
           QStringLiteral("', 0)");
    if (ExecuteSQL(gSQL).failed())
        return;
    // Into the list as it stands: the ticks not yet saved stay.
    auto *added = new QTreeWidgetItem({item});
    added->setFlags(added->flags() | Qt::ItemIsUserCheckable);
    {
        const QSignalBlocker quiet(lvwCabinet);
        added->setCheckState(0, Qt::Unchecked);
        added->setData(0, kStoredTick, Qt::Unchecked);
        lvwCabinet->addTopLevelItem(added);
        lvwCabinet->sortItems(0, Qt::AscendingOrder);
    }
    lvwCabinet->setCurrentItem(added);
    m_changed = true;
}

void frmCabinet::cmdDelete_Click()
{
    const QList<QTreeWidgetItem *> selected = lvwCabinet->selectedItems();
    const QString question =
        selected.size() > 1
            ? QStringLiteral("Are you sure you want to remove these %1 items from the Cabinet?").arg(selected.size())
            : kDeleteQuestion;
    if (MsgBox(question, Msg::QuestionDefaultNo, QStringLiteral("Confirmation")) != MsgResult::Yes)
        return;
    if (selected.isEmpty()) {
        MsgBox(QStringLiteral("You must select an item!"), Msg::Ok, QStringLiteral("Error"));
        return;
    }
    if (ReportNotConnected())
        return;
    // Exactly the selected items, of this cabinet only; the other cabinets keep theirs. The list
    // loses them where it stands, so the ticks not yet saved stay.
    StatementBatch batch;
    for (const QTreeWidgetItem *item : selected) {
        gSQL = QStringLiteral("DELETE * FROM CABINET WHERE item = '") + quoted(item->text(0)) +
               QStringLiteral("' AND type = '") + typeCode() + u'\'';
        if (!batch.begun() || ExecuteSQL(gSQL).failed())
            batch.fail();
    }
    if (!batch.commit()) {
        batch.reportFailure();
        return;
    }
    qDeleteAll(selected);
}

void frmCabinet::cmdSave_Click()
{
    if (ReportNotConnected())
        return;
    QStringList notSaved;
    {
        WaitCursor busy;
        StatementBatch batch; // one commit for the whole list
        if (!batch.begun()) {
            batch.reportFailure();
            return;
        }
        QList<QTreeWidgetItem *> written;
        for (int i = 0; i < lvwCabinet->topLevelItemCount(); ++i) {
            QTreeWidgetItem *item = lvwCabinet->topLevelItem(i);
            // Only the ticks changed here are written: another computer's ticks of the other items
            // stay as it saved them.
            if (item->data(0, kStoredTick).toInt() == item->checkState(0))
                continue;
            written.append(item);
            gSQL = QStringLiteral("UPDATE CABINET SET available = ") +
                   (item->checkState(0) == Qt::Checked ? QStringLiteral("True") : QStringLiteral("False")) +
                   QStringLiteral(" WHERE item = '") + quoted(item->text(0)) + QStringLiteral("' AND type = '") +
                   typeCode() + u'\'';
            if (ExecuteSQL(gSQL).failed()) {
                notSaved.append(item->text(0));
                written.removeLast();
            }
        }
        if (!batch.commit()) {
            batch.reportFailure();
            return; // the ticks stay as the user set them, still to be saved
        }
        for (QTreeWidgetItem *item : std::as_const(written))
            item->setData(0, kStoredTick, item->checkState(0));
    }
    m_changed = false;
    if (!notSaved.isEmpty())
        MsgBox(QStringLiteral("The ticks of these items could not be saved, as an apostrophe in a name ends it in "
                              "the statement:\n\n") +
                   notSaved.join(u'\n'),
               Msg::Critical, QStringLiteral("Error"));
}

void frmCabinet::cmdPrint_Click()
{
    RecipePrinter printer;
    printer.SetFileName(JoinPath(ProgramDir(), QStringLiteral("cabinet.txt")));
    printer.AddLine(m_type + QStringLiteral(" Cabinet"), kFont, 10, true, false);
    printer.AddLine(QString(), kFont, 9, false, false);
    for (int i = 0; i < lvwCabinet->topLevelItemCount(); ++i) {
        const QTreeWidgetItem *item = lvwCabinet->topLevelItem(i);
        printer.AddLine((item->checkState(0) == Qt::Checked ? QStringLiteral(" * ") : QStringLiteral("   ")) +
                            item->text(0),
                        kFont, 9, false, false);
    }
    printer.Show();
}

void frmCabinet::cmdClean_Click()
{
    // The clean reads the stored cabinet: ticks not yet saved are saved first, if the user says so.
    if (m_changed) {
        if (MsgBox(QStringLiteral("You have not saved your changes.\n\nSave them before the cabinet is cleaned?"),
                   Msg::Question, QStringLiteral("Confirmation")) != MsgResult::Yes)
            return;
        cmdSave_Click();
        if (m_changed)
            return; // not saved: the clean would lose them
    }
    CleanCabinet();
    LoadList();
}

void frmCabinet::cmdClose_Click()
{
    close();
}

void frmCabinet::closeEvent(QCloseEvent *event)
{
    if (m_changed && MsgBox(kCloseQuestion, Msg::QuestionDefaultNo, QStringLiteral("Confirmation")) != MsgResult::Yes) {
        event->ignore();
        return;
    }
    m_life.unload();
    event->accept();
}

void ShowCabinetWindow()
{
    static QPointer<frmCabinet> window;
    ShowOnly(window);
}

void frmCabinet::cmdDensity_Click()
{
    const QTreeWidgetItem *item = lvwCabinet->currentItem();
    if (!item || !item->isSelected()) {
        MsgBox(QStringLiteral("Select the item whose cup you have weighed."), Msg::Ok, QStringLiteral("Error"));
        return;
    }
    const QString name = item->text(0);
    const QString key = Densities::key(name);
    const QString current = Densities::text(Densities::fromSettings(IniPath()).gramsPerCup(name));
    const QString answer = InputBox(QStringLiteral("How many grams does one cup of ") + name +
                                        QStringLiteral(" weigh?\n\nWith it, its cups and grams convert into one "
                                                       "another. Leave the box empty to forget it."),
                                    QStringLiteral("Weight of a Cup"), current)
                               .trimmed();
    if (answer == current)
        return;
    if (answer.isEmpty()) {
        DeleteIniKey(IniPath(), QStringLiteral("Densities"), key);
        return;
    }
    const std::optional<Exact> grams = ParseExactAmount(answer);
    if (!grams || grams->num <= 0) {
        MsgBox(answer + QStringLiteral(" is no weight in grams: give a number, such as 125 or 127.5."), Msg::Ok,
               QStringLiteral("Invalid Data"));
        return;
    }
    WriteIniValue(IniPath(), QStringLiteral("Densities"), key + u'=' + Densities::text(grams));
}
