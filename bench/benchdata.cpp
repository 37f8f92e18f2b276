#include "benchdata.h"

#include <QElapsedTimer>

#include "core/db/database.h"
#include "core/ui/voicewindows.h"
#include "core/db/datasources.h"
#include "core/ui/msgbox.h"
#include "core/db/schema.h"
#include "recipes/searchindexes.h"

#include <QCoreApplication>
#include <QEvent>
#include <QWidget>
#include <QTemporaryDir>

#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStringList>
#include <algorithm>
#include <cstdio>

namespace {

const QStringList kDishes = {"Pie",     "Soup", "Stew", "Salad", "Bread", "Casserole", "Curry",
                             "Risotto", "Tart", "Cake", "Pasta", "Chili", "Gratin",    "Omelette"};
const QStringList kAdjectives = {"Apple",   "Mom's", "Spicy",  "Country", "Garden", "Lemon",
                                 "Harvest", "Smoky", "Golden", "Rustic",  "Sunday", "Winter"};
const QStringList kItems = {"onion",   "garlic", "butter", "flour",  "sugar", "salt",      "pepper",  "egg",  "milk",
                            "carrot",  "celery", "potato", "tomato", "rice",  "olive oil", "chicken", "beef", "lemon",
                            "parsley", "thyme",  "cheese", "cream",  "apple", "cinnamon",  "yeast",   "honey"};
const QStringList kAmounts = {"1/4", "1/2", "3/4", "1", "1 1/2", "2", "3", "---"};
const QStringList kMeasures = {"tsp", "Tbsp", "cup", "oz", "lb", "g", "clove", "---"};
const QStringList kCategories = {"Main Dishes", "Soups", "Desserts", "Breads", "Salads"};

template<typename List>
const auto &pick(QRandomGenerator &random, const List &list)
{
    return list[random.bounded(int(list.size()))];
}

} // namespace

void GenerateRecipeDatabase(const QString &path, int recipes)
{
    QFile::remove(path);
    if (!CreateDatabaseFromSchema(path))
        qFatal("cannot create %s", qPrintable(path));
    const QString name = QStringLiteral("bench-generate");
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(path);
        db.open();
        QSqlQuery q(db);
        q.exec(QStringLiteral("PRAGMA synchronous = OFF"));
        db.transaction();
        QRandomGenerator random(20261123);
        QSqlQuery recipe(db), ingredient(db), direction(db), cabinet(db);
        recipe.prepare(QStringLiteral("INSERT INTO RECIPE VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)"));
        ingredient.prepare(QStringLiteral("INSERT INTO INGREDIENTS VALUES (?, ?, ?, ?, ?, ?)"));
        direction.prepare(QStringLiteral("INSERT INTO DIRECTIONS VALUES (?, ?, ?)"));
        cabinet.prepare(QStringLiteral("INSERT OR IGNORE INTO CABINET VALUES (?, ?, ?)"));
        for (const QString &item : kItems + QStringList {QStringLiteral("saffron")}) {
            cabinet.addBindValue(item);
            cabinet.addBindValue(QStringLiteral("F"));
            cabinet.addBindValue(random.bounded(2));
            cabinet.exec();
        }
        for (int id = 1; id <= recipes; ++id) {
            const int minutes = random.bounded(10, 240);
            recipe.addBindValue(id);
            recipe.addBindValue(QStringLiteral("%1 Servings").arg(random.bounded(1, 12)));
            recipe.addBindValue(QStringLiteral("F"));
            recipe.addBindValue(pick(random, kCategories));
            recipe.addBindValue(pick(random, kAdjectives) + u' ' + pick(random, kDishes) + u' ' + QString::number(id));
            recipe.addBindValue(QStringLiteral("%1:%2")
                                    .arg(minutes / 60, 2, 10, QLatin1Char('0'))
                                    .arg(minutes % 60, 2, 10, QLatin1Char('0')));
            recipe.addBindValue(QStringLiteral("00:45"));
            recipe.addBindValue(id % 3 ? QString() : QStringLiteral("Family favourite."));
            recipe.addBindValue(QString(random.bounded(6), u'*'));
            recipe.exec();
            const int lines = random.bounded(4, 17); // about ten, as most recipes have
            for (int line = 1; line <= lines; ++line) {
                const QString item = pick(random, kItems);
                ingredient.addBindValue(id);
                ingredient.addBindValue(line);
                ingredient.addBindValue(pick(random, kAmounts));
                ingredient.addBindValue(pick(random, kMeasures));
                ingredient.addBindValue(item + QStringLiteral(", chopped"));
                ingredient.addBindValue(item);
                ingredient.exec();
            }
            // A rare ingredient, in one recipe of twelve, for the searches that find a few.
            if (id % 12 == 0) {
                ingredient.addBindValue(id);
                ingredient.addBindValue(lines + 1);
                ingredient.addBindValue(QStringLiteral("1"));
                ingredient.addBindValue(QStringLiteral("pinch"));
                ingredient.addBindValue(QStringLiteral("Saffron threads"));
                ingredient.addBindValue(QStringLiteral("saffron"));
                ingredient.exec();
            }
            const int steps = random.bounded(3, 11);
            for (int step = 1; step <= steps; ++step) {
                direction.addBindValue(id);
                direction.addBindValue(step);
                direction.addBindValue(
                    QStringLiteral("Stir the pot gently and let it simmer for a few minutes, step %1.").arg(step));
                direction.exec();
            }
        }
        db.commit();
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
}

namespace {

class YesResponder : public Responder
{
public:
    MsgResult messageBox(const QString &, MsgStyle style, const QString &) override
    {
        return style.buttons == MsgButtons::YesNo ? MsgResult::Yes : MsgResult::Ok;
    }
    QString inputBox(const QString &, const QString &, const QString &defaultText) override { return defaultText; }
    QString fileName(const QString &, const QString &current) override { return current; }
    void showModal(QDialog *) override { }
    void wait(double) override { }
};

} // namespace

struct BenchHome::Private {
    QTemporaryDir dir;
    YesResponder yes;
};

BenchHome::BenchHome(int recipes) : d(std::make_unique<Private>())
{
    qputenv("MIREPAN_HOME", d->dir.path().toUtf8());
    qputenv("MIREPAN_DATASOURCES", path(QStringLiteral("datasources.ini")).toUtf8());
    QFile::copy(QCoreApplication::applicationDirPath() + QStringLiteral("/../bin/pantrio.ini"),
                path(QStringLiteral("pantrio.ini")));
    const QString database = path(QStringLiteral("PANTRIO.MDB"));
    GenerateRecipeDatabase(database, recipes);
    DataSource source;
    source.name = kDataSourceName;
    source.database = database;
    RegisterDataSource(source);
    if (!OpenDatabase() || !KeepSearchIndexes()) // as at the program's start
        qFatal("cannot open the benchmark database");
    SetResponder(&d->yes);
    InstallWindowVoice();
}

BenchHome::~BenchHome()
{
    SetResponder(nullptr);
    CloseDatabase();
}

QString BenchHome::path(const QString &name) const
{
    return d->dir.filePath(name);
}

double ProcessMiB(const char *field)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n'))
        if (line.startsWith(field))
            return line.mid(qstrlen(field)).trimmed().split(' ').value(0).toDouble() / 1024;
    return 0;
}

QHash<QByteArray, double> RunChildFigures(const QStringList &arguments, const QProcessEnvironment &environment)
{
    QProcess child;
    child.setProcessEnvironment(environment);
    child.start(QCoreApplication::applicationFilePath(), arguments);
    if (!child.waitForFinished(1200000) || child.exitCode() != 0)
        qFatal("the benchmark's child run failed: %s", child.readAllStandardError().constData());
    QHash<QByteArray, double> figures;
    for (const QByteArray &line : child.readAllStandardOutput().split('\n'))
        if (const qsizetype at = line.indexOf(':'); at > 0)
            figures.insert(line.left(at), line.mid(at + 1).trimmed().split(' ').value(0).toDouble());
    return figures;
}

void PrintFigure(const char *name, double value, const char *unit, const char *goal)
{
    if (goal)
        std::printf("%s: %.1f %s (goal: %s)\n", name, value, unit, goal);
    else
        std::printf("%s: %.1f %s\n", name, value, unit);
    std::fflush(stdout);
}

double Median(QList<double> samples)
{
    std::sort(samples.begin(), samples.end());
    return samples.isEmpty() ? 0.0 : samples[samples.size() / 2];
}

double TimedMs(const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return timer.nsecsElapsed() / 1e6;
}

namespace {

// Counts the paintings of a widget.
class PaintCount : public QObject
{
public:
    int count = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::Paint;
        return false;
    }
};

} // namespace

void PaintWithoutFrameDelay()
{
    qputenv("QT_QPA_UPDATE_IDLE_TIME", "0");
}

void RunUntilPainted(QWidget *widget, const std::function<void()> &action)
{
    PaintCount painted;
    widget->installEventFilter(&painted);
    action();
    for (int round = 0; painted.count == 0 && round < 1000; ++round)
        QCoreApplication::processEvents();
    widget->removeEventFilter(&painted);
    if (painted.count == 0)
        qFatal("the window was not painted");
    QCoreApplication::processEvents();
}
