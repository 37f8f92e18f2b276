#include "fuzztargets.h"

#include "testhome.h"

#include "core/db/database.h"
#include "core/platform/modini.h"
#include "core/platform/platform.h"
#include "core/ui/msgbox.h"
#include "quantities/cfraction.h"
#include "recipes/reciperepository.h"
#include "search/searchquery.h"
#include "transfer/ctransfer.h"
#include "transfer/mealmaster.h"

#include <QBuffer>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>

namespace {

// Texts that have broken readers before: quoting, separators, line starts, other scripts.
const char *const kAwkward[] = {
    "'",     "''",    "', '", " | ", "\n",   "\r\n",         "[",        "[1]",      "=",  "%",     "_",
    "MMMMM", "-----", "1/0",  "/",   "-",    "\xef\xbb\xbf", "\xc3\xa9", "\xd0\x91", "\t", "Ing1=", "Dir1=",
    "Max=",  ";",     "--",   "0",   "32767"};

// Answers every question Yes and records the titles of the boxes.
class Answering : public Responder
{
public:
    MsgResult messageBox(const QString &, MsgStyle style, const QString &title) override
    {
        titles.append(title);
        return style.buttons == MsgButtons::YesNo ? MsgResult::Yes : MsgResult::Ok;
    }
    QString inputBox(const QString &, const QString &, const QString &) override { return {}; }
    QString fileName(const QString &, const QString &) override { return {}; }
    void showModal(QDialog *) override { }
    void wait(double) override { }
    QStringList titles;
};

QList<QByteArray> readCorpus(const QString &dir)
{
    QList<QByteArray> corpus;
    const QDir folder(dir);
    for (const QString &name : folder.entryList(QDir::Files, QDir::Name)) {
        QFile file(folder.filePath(name));
        if (file.open(QIODevice::ReadOnly))
            corpus.append(file.readAll());
    }
    if (corpus.isEmpty())
        corpus.append(QByteArray());
    return corpus;
}

QString shown(const QByteArray &input)
{
    return QString::fromLatin1(input.left(300).toPercentEncoding(" \n"));
}

void mealMaster(const QByteArray &input, QStringList &failures)
{
    QBuffer buffer;
    buffer.setData(input);
    buffer.open(QIODevice::ReadOnly);
    static const MeasureCodes codes(QStringList {"---", "tsp", "Tbsp", "cup", "oz", "lb", "g"});
    MealMasterReader reader(buffer, codes);
    qint64 last = 0;
    int recipes = 0;
    for (MealMasterRecipe r; reader.next(r); ++recipes) {
        // Each recipe lies within the file, after the one before it.
        if (r.begin < last || r.end < r.begin || r.end > input.size() || recipes > input.size()) {
            failures << QStringLiteral("recipe %1 at %2..%3 of %4: ")
                                .arg(recipes)
                                .arg(r.begin)
                                .arg(r.end)
                                .arg(input.size()) +
                            shown(input);
            return;
        }
        last = r.end;
    }
}

void fraction(const QByteArray &input, QStringList &failures)
{
    const QString text = QString::fromUtf8(input.left(64));
    try {
        cFraction f;
        f.setStringValue(text);
        // What an amount prints as reads back as an amount that prints the same ("2" reads as 2/1,
        // which prints as itself from then on).
        cFraction once;
        once.setStringValue(f.StringValue());
        cFraction twice;
        twice.setStringValue(once.StringValue());
        if (once.Denominator() != 0 && twice.StringValue() != once.StringValue())
            failures << QStringLiteral("\"%1\" printed \"%2\", read back as \"%3\"")
                            .arg(text, once.StringValue(), twice.StringValue());
        cFraction other;
        other.setStringValue(QStringLiteral("1 1/2"));
        f.Add(other);
        f.Multiply(other);
        f.Divide(other);
    } catch (const PlatformError &) {
        // Overflow and division by zero end the command with a message: the expected way out.
    }
}

void settingsFile(const QByteArray &input, const QString &dir, qint64 n, QStringList &failures)
{
    const QString path = QDir(dir).filePath(QStringLiteral("fuzz.ini"));
    QFile::remove(path);
    {
        QFile file(path);
        file.open(QIODevice::WriteOnly);
        file.write(input);
    }
    try {
        // The settings the file holds before: a new key changes none of them. (A new key of a
        // section that another follows lands under that section's header: the settings file's
        // own rule, which the shipped file avoids by holding every key the program writes.)
        QList<std::pair<QString, QString>> keys;
        for (const QString &section : {QStringLiteral("Misc"), QStringLiteral("Rating"), QStringLiteral("Files")}) {
            for (const QString &line : GetIniSection(path, section)) {
                const QString key = line.section(u'=', 0, 0);
                if (line.indexOf(u'=') > 0 && key != u"FuzzKey")
                    keys.append({section, key});
            }
        }
        QStringList before;
        for (const auto &[section, key] : keys)
            before << GetIniValue(path, section, key);
        WriteIniValue(path, QStringLiteral("Misc"), QStringLiteral("FuzzKey=v%1").arg(n));
        QStringList after;
        for (const auto &[section, key] : keys)
            after << GetIniValue(path, section, key);
        if (after != before)
            failures << QStringLiteral("a new key changed another: ") + shown(input) + QStringLiteral(" => ") +
                            shown(ReadBytes(path));
        // A key that is there is replaced where it stands.
        if (GetIniValue(path, QStringLiteral("Misc"), QStringLiteral("FuzzKey")) == QStringLiteral("v%1").arg(n)) {
            WriteIniValue(path, QStringLiteral("Misc"), QStringLiteral("FuzzKey=again"));
            if (GetIniValue(path, QStringLiteral("Misc"), QStringLiteral("FuzzKey")) != u"again")
                failures << QStringLiteral("a key written twice does not read back: ") + shown(input);
        }
    } catch (const PlatformError &) {
        // A file that cannot be read is refused, and left as it was.
    }
}

void transferImport(const QByteArray &input, const QString &dir, const QString &keptRecipe, qint64 n,
                    QStringList &failures)
{
    const QString path = QDir(dir).filePath(QStringLiteral("fuzz-transfer.txt"));
    QFile::remove(path);
    {
        QFile file(path);
        file.open(QIODevice::WriteOnly);
        file.write(input);
    }
    Answering answers;
    SetResponder(&answers);
    try {
        cTransfer transfer;
        transfer.FileName = path;
        transfer.Import();
    } catch (const PlatformError &) { }
    SetResponder(nullptr);
    if (answers.titles.contains(QStringLiteral("Database Error")))
        failures << QStringLiteral("a database error box: ") + shown(input);
    // The household's recipe is never touched by an import.
    if (Describe(LoadRecipe(1)) != keptRecipe)
        failures << QStringLiteral("the stored recipe changed: ") + shown(input);
    if (n % 50 == 0)
        ExecuteSQL(QStringLiteral("DELETE * FROM RECIPE WHERE ID > 1"));
}

void saveAndSearch(const QByteArray &input, QRandomGenerator &random, QStringList &failures)
{
    // The input's lines become the recipe's texts.
    QStringList texts = QString::fromUtf8(input).split(u'\n');
    const auto text = [&] { return texts.value(random.bounded(int(texts.size()) + 1)); };
    RecipeData r;
    r.recipeType = QStringLiteral("Food");
    r.title = text();
    r.category = text();
    r.servings = text();
    r.prepTime = QStringLiteral("00:10");
    r.cookTime = QStringLiteral("00:20");
    r.notes = text();
    r.rating = text();
    for (int k = 1; k <= 3; ++k) {
        r.ingredients.append({TwoDigits(k), text(), text(), text(), text()});
        r.directions.append({TwoDigits(k), text()});
    }
    const int before = QueryNumber(QStringLiteral("SELECT count(*) FROM RECIPE"));
    QString problem;
    qint32 id = 0;
    if (StoreRecipe(r, 0, false, &problem, &id)) {
        RecipeData back = LoadRecipe(id);
        back.recipeType = r.recipeType;
        if (Describe(back) != Describe(r))
            failures << QStringLiteral("stored otherwise than meant: ") + shown(input);
        // A search for the title finds it, unless the title holds a wildcard of its own.
        SearchCriteria criteria;
        criteria.title = r.title.trimmed();
        // (A NUL ends a statement's text for the engine: such a title, brought in by a file, is
        // found by what comes before it.)
        if (!criteria.title.isEmpty() && !criteria.title.contains(u'%') && !criteria.title.contains(u'_') &&
            !criteria.title.contains(QChar(0)) && criteria.title.size() < 200) {
            bool found = false;
            for (Recordset rs = ExecuteSQL(BuildSearchSql(criteria, SearchContext())); rs && !rs.eof(); rs.MoveNext())
                found = found || rs.integer(0) == id;
            if (!found)
                failures << QStringLiteral("a stored title is not found: ") + shown(r.title.toUtf8());
        }
        ExecuteSQL(QStringLiteral("DELETE * FROM RECIPE WHERE ID = ") + QString::number(id));
    } else if (problem.isEmpty() || QueryNumber(QStringLiteral("SELECT count(*) FROM RECIPE")) != before) {
        failures << QStringLiteral("refused without a reason, or half stored: ") + shown(input);
    }
}

} // namespace

QStringList FuzzTargets()
{
    return {QStringLiteral("mealmaster"), QStringLiteral("transfer"), QStringLiteral("fraction"),
            QStringLiteral("settings"), QStringLiteral("save")};
}

QByteArray Mutate(QByteArray input, const QList<QByteArray> &corpus, QRandomGenerator &random)
{
    const int rounds = 1 + random.bounded(4);
    for (int k = 0; k < rounds; ++k) {
        const int at = input.isEmpty() ? 0 : random.bounded(int(input.size()) + 1);
        switch (random.bounded(6)) {
        case 0:
            if (!input.isEmpty() && at < input.size())
                input[at] = char(input[at] ^ (1 << random.bounded(8)));
            break;
        case 1:
            input.insert(at, char(random.bounded(256)));
            break;
        case 2:
            input.remove(at, random.bounded(16));
            break;
        case 3: {
            const QByteArray &other = corpus[random.bounded(int(corpus.size()))];
            if (!other.isEmpty()) {
                const int from = random.bounded(int(other.size()));
                input.insert(at, other.mid(from, random.bounded(200)));
            }
            break;
        }
        case 4:
            if (!input.isEmpty() && at < input.size())
                input.insert(at, input.mid(at, random.bounded(64)));
            break;
        default:
            input.insert(at, kAwkward[random.bounded(int(std::size(kAwkward)))]);
            break;
        }
    }
    return input.left(1 << 16);
}

FuzzRun RunFuzzTarget(const QString &target, quint32 seed, qint64 executions, double seconds, const QString &corpusDir)
{
    FuzzRun run;
    const QList<QByteArray> corpus = readCorpus(QDir(corpusDir).filePath(target));
    QRandomGenerator random(seed);
    const QString dir = QDir::currentPath();
    QString keptRecipe;
    if (target == u"transfer") {
        StoreTestRecipe(TestRecipe(QStringLiteral("Kept stew"), {"1|cup|Beans|beans"}, {"Simmer."}), 1);
        keptRecipe = Describe(LoadRecipe(1));
    }
    QElapsedTimer clock;
    clock.start();
    while (run.executions < executions && clock.elapsed() < seconds * 1000 && run.failures.size() < 5) {
        const QByteArray input = Mutate(corpus[random.bounded(int(corpus.size()))], corpus, random);
        ++run.executions;
        if (target == u"mealmaster")
            mealMaster(input, run.failures);
        else if (target == u"fraction")
            fraction(input, run.failures);
        else if (target == u"settings")
            settingsFile(input, dir, run.executions, run.failures);
        else if (target == u"transfer")
            transferImport(input, dir, keptRecipe, run.executions, run.failures);
        else if (target == u"save")
            saveAndSearch(input, random, run.failures);
    }
    run.seconds = clock.elapsed() / 1000.0;
    return run;
}
