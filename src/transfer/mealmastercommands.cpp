#include "mealmastercommands.h"

#include "mealmaster.h"
#include "mealmasterfeed.h"

#include "core/platform/atomicfile.h"
#include "core/ui/controls.h"
#include "core/db/dbcompact.h"
#include "core/db/database.h"
#include "core/ui/frmstatus.h"
#include "core/platform/modini.h"
#include "core/ui/msgbox.h"
#include "core/platform/platform.h"
#include "core/platform/programdir.h"
#include "recipes/searchindexes.h"
#include "recipes/bulkstore.h"
#include "recipes/cabinetnames.h"
#include "recipes/reciperepository.h"
#include "search/frmsearch.h"
#include "core/ui/voicewindows.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

const QString kImportTitle = QStringLiteral("Import MealMaster");
const QString kExportTitle = QStringLiteral("Export MealMaster");
const QString kFilter = QStringLiteral("MealMaster files (*.mmf *.mm *.mxp *.txt);;All files (*)");

// The household's food measures, which the measure codes read as.
MeasureCodes householdCodes()
{
    QStringList names;
    for (const QString &line : GetIniSection(IniPath(), QStringLiteral("Measure_Food")))
        names << IniLineValue(line);
    return MeasureCodes(names);
}

// "<name>-rejected<.ext>" beside the source.
QString rejectedPath(const QString &source)
{
    const QFileInfo info(source);
    const QString suffix = info.suffix().isEmpty() ? QString() : u'.' + info.suffix();
    return info.dir().filePath(info.completeBaseName() + QStringLiteral("-rejected") + suffix);
}

// Reads one file into the database; false when the user cancelled.
bool importFile(const QString &path, const MeasureCodes &codes, const StatusCancel &cancel,
                MealMasterImportResult &result)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        result.reasons << QFileInfo(path).fileName() + QStringLiteral(": the file cannot be read (") +
                              file.errorString() + u')';
        return true;
    }
    const QString name = QFileInfo(path).fileName();
    const QString message = QStringLiteral("Importing recipes from ") + name;
    const qint64 size = std::max<qint64>(1, file.size());
    QByteArray rejected;
    // The rejected recipes are copied through a second handle: the reader owns the first.
    QFile source(path);
    source.open(QIODevice::ReadOnly);
    const auto copy = [&source](qint64 from, qint64 to) {
        source.seek(from);
        return source.read(to - from);
    };
    // The recipes' bound form is made on the reading thread; a server, which takes each recipe
    // through the statements, needs none.
    MealMasterFeed::Prepare prepare;
    if (gConn().driverName() != u"QPSQL") {
        prepare = [](MealMasterRecipe &read) {
            if (read.problem.isEmpty())
                read.prepared = BoundRecipe(read.recipe);
        };
    }
    MealMasterFeed feed(file, codes, prepare);
    MealMasterRecipe read;
    qint64 position = 0;
    bool goOn = true;
    const MealMasterImportResult before = result;
    {
        // One commit for the file: a recipe that fails is rolled back alone (a batch of its own
        // inside this one). The bulk store writes each recipe before its lines and reads all back.
        const UncheckedReferences bulk;
        StatementBatch batch;
        GatheredFailures failures; // named once in the closing summary, not a box each
        CabinetNames names; // of the recipes stored, added to the cabinet once
        SearchIndexesBulk counted;
        BulkRecipeStore store;
        // Where each stored recipe stands in the file, in the order stored.
        struct Source {
            qint64 begin;
            qint64 end;
            int number;
        };
        std::vector<Source> sources;
        const auto reject = [&](int number, const QString &title, qint64 begin, qint64 end, const QString &problem) {
            ++result.rejected;
            result.reasons
                << QStringLiteral("%1, recipe %2 (%3): %4").arg(name).arg(number).arg(title.left(60), problem);
            rejected += copy(begin, end);
            if (!rejected.endsWith('\n'))
                rejected += '\n';
        };
        for (int number = 1; batch.begun() && feed.next(read, position); ++number) {
            QString problem = read.problem;
            if (problem.isEmpty()) {
                if (store.store(read.recipe, &problem, nullptr, std::any_cast<BoundRecipe>(&read.prepared))) {
                    names.add(read.recipe);
                    sources.push_back({read.begin, read.end, number});
                } else if (problem.isEmpty()) {
                    problem = QStringLiteral("the database refused it");
                }
            }
            if (problem.isEmpty())
                ++result.imported;
            else
                reject(number, read.recipe.title, read.begin, read.end, problem);
            ShowStatusStep(message, int(1000 * position / size));
            if (cancel.requested()) {
                goOn = false;
                break;
            }
        }
        // Everything stored is read back once: a recipe the database holds otherwise than it
        // was read goes again, and is named.
        QList<BulkRecipeStore::Removed> removed;
        if (!store.verify(removed))
            batch.fail();
        for (const BulkRecipeStore::Removed &gone : std::as_const(removed)) {
            const Source &from = sources[gone.stored];
            --result.imported;
            reject(from.number, gone.title, from.begin, from.end, gone.problem);
        }
        result.reasons << failures.texts();
        // The file's new cabinet names, in the same commit as its recipes.
        if (!AddCabinetItems(names).isEmpty() || !counted.finish())
            batch.fail();
        if (!batch.commit()) {
            // The file's recipes were read but not kept: the count says what is really stored.
            result = before;
            result.notStored = name + QStringLiteral(": no recipe of this file was stored. ") + batch.failure();
            return false;
        }
    }
    if (!rejected.isEmpty()) {
        const QString target = rejectedPath(path);
        try {
            ReplaceFile(target, rejected);
            result.rejectedFiles << target;
        } catch (const PlatformError &e) { // a source on read-only media: the list still says what
            result.reasons << QStringLiteral("The rejected recipes could not be written to ") + target +
                                  QStringLiteral(": ") + e.description();
        }
    }
    return goOn;
}

} // namespace

MealMasterImportResult ImportMealMasterFiles(const QStringList &files)
{
    MealMasterImportResult result;
    const MeasureCodes codes = householdCodes();
    const LowMemoryWork flat;
    StatusGuard status(QStringLiteral("Importing recipes..."));
    SetStatusMaximum(1000);
    StatusCancel cancel;
    for (const QString &path : files) {
        if (!importFile(path, codes, cancel, result)) {
            result.cancelled = result.notStored.isEmpty();
            break;
        }
    }
    // A collection comes in a recipe at a time, its pages interleaved: put them in order.
    if (result.imported > 0)
        CompactDatabaseIfScattered();
    return result;
}

QString MealMasterImportSummary(const MealMasterImportResult &result)
{
    QString text = QStringLiteral("%1 imported, %2 rejected").arg(result.imported).arg(result.rejected);
    if (result.cancelled)
        text += QStringLiteral("\n\nThe import was cancelled; the recipes imported before it are kept.");
    if (!result.notStored.isEmpty())
        text += QStringLiteral("\n\n") + result.notStored;
    if (!result.rejectedFiles.isEmpty())
        text += QStringLiteral("\n\nThe rejected recipes were written, as they stood, to:\n") +
                result.rejectedFiles.join(u'\n') + QStringLiteral("\nCorrect them there and import that file.");
    if (!result.reasons.isEmpty())
        text += QStringLiteral("\n\n") + MessageList(result.reasons);
    return text;
}

void ImportMealMaster()
{
    if (ReportNotConnected())
        return;
    const QStringList files = AskFileNames(kImportTitle, ProgramDir(), kFilter);
    if (files.isEmpty())
        return;
    MealMasterImportResult result;
    {
        WaitCursor busy;
        result = ImportMealMasterFiles(files);
    }
    if (result.imported + result.rejected == 0 && result.reasons.isEmpty() && result.notStored.isEmpty())
        MsgBox(QStringLiteral("No MealMaster recipes were found in ") + files.join(QStringLiteral(", ")) + u'.',
               Msg::Information, kImportTitle);
    else
        MsgBox(MealMasterImportSummary(result), result.notStored.isEmpty() ? Msg::Information : Msg::Critical,
               kImportTitle);
}

int ExportMealMasterFile(const QStringList &recipeIds, const QString &file)
{
    const MeasureCodes codes = householdCodes();
    QByteArray out;
    int written = 0;
    {
        StatusGuard status(QStringLiteral("Exporting recipes to ") + file);
        SetStatusMaximum(int(recipeIds.size()));
        for (const QString &id : recipeIds) {
            const RecipeData recipe = LoadRecipe(qint32(Val(id)));
            ShowStatusStep(QStringLiteral("Exporting recipe ID: ") + id + QStringLiteral(" to ") + file, written);
            if (!recipe.exists) // deleted since it was chosen
                continue;
            if (written > 0)
                out += '\n';
            out += FormatMealMaster(recipe, codes).join(u'\n').toUtf8();
            out += '\n';
            ++written;
        }
    }
    ReplaceFile(file, out);
    return written;
}

void ExportMealMaster()
{
    if (ReportNotConnected())
        return;
    const QStringList chosen = ChooseRecipes();
    if (chosen.isEmpty())
        return;
    const QString file =
        AskFileName(kExportTitle, QDir(ProgramDir()).filePath(QStringLiteral("recipes.mmf")), kFilter, FileUse::Export);
    if (file.isEmpty())
        return;
    WaitCursor busy;
    const int written = ExportMealMasterFile(chosen, file);
    MsgBox(QString::number(written) + (written == 1 ? QStringLiteral(" recipe") : QStringLiteral(" recipes")) +
               QStringLiteral(" exported to ") + file,
           Msg::Information, kExportTitle);
}
