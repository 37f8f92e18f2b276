#include "cabinettools.h"

#include "recipes/cabinetnames.h"
#include "stem.h"

#include "core/ui/controls.h"
#include "core/db/database.h"
#include "core/ui/frmstatus.h"
#include "core/ui/msgbox.h"

#include <QSet>
#include <QStringList>

namespace {

const QString kNotConnected =
    QStringLiteral("Because you were not able to connect to the database, all cabinet tools were disabled.");
const QString kCleanQuestion = QStringLiteral(
    "Cleaning the Cabinet will attempt to remove any ingredients from the cabinet that are not specified as "
    "ingredients in the collection of recipes.\n\nWould you like to continue?");
const QString kRefreshQuestion = QStringLiteral(
    "Refreshing the Cabinet will make sure that all ingredients used in recipes are available in your Cabinet.\n\n"
    "Would you like to continue?");
const QString kRepairQuestion = QStringLiteral(
    "Repairing the Cabinet will strip the cabinet ingredients up to the first delimeter.  Then it compares the "
    "current cabinet item to this result and tries to use the most compact.  This process will attempt to compact "
    "the number of specific ingredients that are listed in the Cabinet.\n\nDelimeters include the following "
    "characters and strings: ( / - , or \n\nWould you like to continue?");

// Asks the tool's question and checks the connection; false when the tool is not to run.
bool startTool(const QString &question, const QString &title)
{
    if (MsgBox(question, Msg::Question, title) != MsgResult::Yes)
        return false;
    if (!gNotConnected)
        return true;
    MsgBox(kNotConnected, Msg::Ok, QStringLiteral("Message"));
    return false;
}

// The progress of a tool: rows processed, shown against 100 and starting over at 100, since
// the number of rows is not known in advance.
class ProgressCounter
{
public:
    void advance()
    {
        m_count = m_count + 1 >= 100 ? 0 : m_count + 1;
        SetStatusProgress(m_count);
    }

private:
    int m_count = 0;
};

// Names the statements could not carry (an apostrophe ends a name in them), so the user
// knows what the tool passed over.
void reportPassedOver(const QStringList &names, const QString &what)
{
    if (names.isEmpty())
        return;
    MsgBox(QStringLiteral("These names could not be %1, as an apostrophe in a name ends it in the database's "
                          "statements; change them in their recipes:\n\n")
                   .arg(what) +
               MessageList(names),
           Msg::Information, QStringLiteral("Information"));
}

// Runs a tool's work under the hourglass and the progress window, then names what it passed
// over.
template<typename Work>
void runTool(const QString &status, const QString &passedWhat, Work work)
{
    QStringList passedOver;
    {
        WaitCursor busy;
        StatusGuard guard(status);
        SetStatusMaximum(100);
        ProgressCounter progress;
        work(progress, passedOver);
    }
    reportPassedOver(passedOver, passedWhat);
}

// A tool's question about one item after another: Yes, No, Yes to All, No to All or Cancel, No
// the default, so that a long list is answered once and one Enter changes nothing.
class ItemQuestions
{
public:
    enum Answer { Yes, No, Stop };
    Answer ask(const QString &question)
    {
        if (m_all != Unasked)
            return m_all == AllYes ? Yes : No;
        switch (ChooseAction(question, QStringLiteral("Confirmation"),
                             {QStringLiteral("&Yes"), QStringLiteral("&No"), QStringLiteral("Yes to &All"),
                              QStringLiteral("N&o to All"), QStringLiteral("Cancel")},
                             1, MsgIcon::Question)) {
        case 0:
            return Yes;
        case 2:
            m_all = AllYes;
            return Yes;
        case 3:
            m_all = AllNo;
            return No;
        case 4:
            return Stop;
        default:
            return No;
        }
    }

private:
    enum { Unasked, AllYes, AllNo } m_all = Unasked;
};

} // namespace

void CleanCabinet()
{
    if (!startTool(kCleanQuestion, QStringLiteral("Information")))
        return;
    runTool(QStringLiteral("Attempting to delete duplicates in the cabinet..."), QStringLiteral("checked"),
            [](ProgressCounter &progress, QStringList &passedOver) {
                QStringList items;
                gSQL = QStringLiteral("SELECT DISTINCT item FROM CABINET");
                for (Recordset rs = ExecuteSQL(gSQL); rs && !rs.eof(); rs.MoveNext())
                    items.append(rs.text(0));
                ItemQuestions questions;
                for (const QString &item : items) {
                    gSQL = QStringLiteral("SELECT * FROM INGREDIENTS WHERE cabinet = '") + item + u'\'';
                    const Recordset used = ExecuteSQL(gSQL);
                    if (used.failed()) {
                        passedOver.append(item); // not asked about: whether it is used is not known
                    } else if (used.eof()) {
                        const auto answer = questions.ask(QStringLiteral("Would you like to remove ") + item +
                                                          QStringLiteral(" from the cabinet?"));
                        if (answer == ItemQuestions::Stop)
                            break;
                        if (answer == ItemQuestions::Yes) {
                            gSQL = QStringLiteral("DELETE * FROM CABINET WHERE item = '") + item + u'\'';
                            ExecuteSQL(gSQL);
                        }
                    }
                    progress.advance();
                }
            });
    MsgBox(QStringLiteral("The cabinet has been cleaned!"), Msg::Ok, QStringLiteral("Confirmation"));
}

void RefreshCabinet()
{
    if (!startTool(kRefreshQuestion, QStringLiteral("Information")))
        return;
    bool kept = true;
    runTool(QStringLiteral("Refreshing cabinet..."), QStringLiteral("added"),
            [&kept](ProgressCounter &progress, QStringList &passedOver) {
                // Every name the recipes use, the empty one of a line brought in without one too.
                CabinetNames used;
                gSQL = QStringLiteral(
                    "SELECT DISTINCT cabinet, type FROM INGREDIENTS A, RECIPE B where A.recipe_id = B.ID");
                for (Recordset rs = ExecuteSQL(gSQL); rs && !rs.eof(); rs.MoveNext())
                    used.add(rs.text(0), rs.text(1));
                StatementBatch batch; // one commit for all the new items
                if (!batch.begun()) {
                    batch.reportFailure();
                    kept = false;
                    return;
                }
                passedOver << AddCabinetItems(used, [&progress] { progress.advance(); });
                if (!batch.commit()) {
                    batch.reportFailure();
                    kept = false;
                }
            });
    if (kept)
        MsgBox(QStringLiteral("The cabinet has been refreshed!"), Msg::Information, QStringLiteral("Confirmation"));
}

void RepairCabinet()
{
    if (!startTool(kRepairQuestion, QStringLiteral("Confirmation")))
        return;
    runTool(QStringLiteral("Attempting to compact the database"), QStringLiteral("changed"),
            [](ProgressCounter &progress, QStringList &passedOver) {
                QList<std::pair<QString, QString>> rows; // cabinet, ingredient
                gSQL = QStringLiteral("SELECT DISTINCT cabinet, ingredient FROM INGREDIENTS");
                for (Recordset rs = ExecuteSQL(gSQL); rs && !rs.eof(); rs.MoveNext())
                    rows.append({rs.text(0), rs.text(1)});
                ItemQuestions questions;
                for (const auto &[cabinet, ingredient] : rows) {
                    const QString stem = StripToDelimiter(ingredient);
                    const bool shorter = stem.toUpper() != cabinet.toUpper() && stem.size() < cabinet.size();
                    QString suggestion;
                    if (shorter) {
                        gSQL = QStringLiteral("SELECT cabinet FROM INGREDIENTS WHERE cabinet LIKE '%") + stem +
                               QStringLiteral("%'");
                        const Recordset rs = ExecuteSQL(gSQL);
                        if (rs && !rs.eof())
                            suggestion = rs.text(0);
                    }
                    const QString core = cabinet.left(std::max<qsizetype>(0, cabinet.size() - 3));
                    if (shorter && (suggestion.isEmpty() || suggestion != cabinet) &&
                        !ingredient.contains(core, Qt::CaseInsensitive)) {
                        if (frmStatus *window = StatusWindow())
                            window->hide();
                        const QString question = QStringLiteral("Change the following?\n\nIngredient: ") + ingredient +
                                                 QStringLiteral("\nCurrently in cabinet as: ") + cabinet +
                                                 QStringLiteral("\nNew cabinet suggestion: ") + stem;
                        const auto answer = questions.ask(question);
                        if (answer == ItemQuestions::Stop)
                            break;
                        if (answer == ItemQuestions::Yes) {
                            gSQL = QStringLiteral("UPDATE INGREDIENTS SET cabinet = '") + stem +
                                   QStringLiteral("' WHERE ingredient = '") + ingredient + u'\'';
                            if (ExecuteSQL(gSQL).failed())
                                passedOver.append(ingredient);
                        }
                        if (frmStatus *window = StatusWindow())
                            window->show();
                    }
                    progress.advance();
                }
            });
    MsgBox(QStringLiteral("The cabinet is in order!"));
}
