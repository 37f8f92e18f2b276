#include "testhome.h"

#include "core/db/database.h"
#include "core/db/datasources.h"
#include "core/db/schema.h"
#include "core/platform/appstate.h"
#include "core/platform/atomicfile.h"
#include "core/platform/platform.h"
#include "recipes/searchindexes.h"
#include "recipes/reciperepository.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTest>
#include <QThread>

TestHome::TestHome(bool withShippedIni) : m_previousDir(QDir::currentPath())
{
    // Settings writes compose "copytest.ini" in the current directory: one per test run.
    QDir::setCurrent(m_dir.path());
    qputenv("MIREPAN_HOME", m_dir.path().toUtf8());
    qputenv("MIREPAN_DATASOURCES", path(QStringLiteral("datasources.ini")).toUtf8());
    if (withShippedIni)
        QFile::copy(ShippedIniPath(), iniPath());
    QFile::setPermissions(iniPath(), QFile::ReadOwner | QFile::WriteOwner);
}

TestHome::~TestHome()
{
    CloseDatabase();
    QDir::setCurrent(m_previousDir);
    qunsetenv("MIREPAN_HOME");
    qunsetenv("MIREPAN_DATASOURCES");
}

void TestHome::registerDatabase(const QString &file)
{
    DataSource source;
    source.name = kDataSourceName;
    source.database = file;
    RegisterDataSource(source);
}

QString TestServerDir()
{
    return qEnvironmentVariable("MIREPAN_TEST_SERVER");
}

namespace {

QString serverFile(const QString &name)
{
    QFile file(TestServerDir() + u'/' + name);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).trimmed() : QString();
}

} // namespace

DataSource TestServerSource(const QString &database)
{
    DataSource source;
    source.name = kDataSourceName;
    source.driver = QStringLiteral("QPSQL");
    source.host = QStringLiteral("127.0.0.1");
    source.port = serverFile(QStringLiteral("port")).toInt();
    source.user = serverFile(QStringLiteral("user"));
    source.database = database;
    return source;
}

namespace {

void runOrDie(QSqlDatabase &db, const QString &sql)
{
    QSqlQuery query(db);
    if (!query.exec(sql))
        qFatal("test server: %s: %s", qPrintable(sql), qPrintable(query.lastError().text()));
}

// A database of this test program's own on the test server, emptied and given fresh tables.
DataSource freshServerDatabase()
{
    static const DataSource source = EmptyServerDatabase(QStringLiteral("recipes"));
    const QString database = source.database;
    const QString connection = QStringLiteral("test-server");
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), connection);
        ConfigureConnection(db, TestServerSource(database));
        if (!db.open())
            qFatal("test server: %s", qPrintable(db.lastError().text()));
        runOrDie(db, QStringLiteral("DROP SCHEMA public CASCADE"));
        runOrDie(db, QStringLiteral("CREATE SCHEMA public"));
        QString error;
        if (!CreateServerSchema(db, &error))
            qFatal("test server: %s", qPrintable(error));
        db.close();
    }
    QSqlDatabase::removeDatabase(connection);
    return TestServerSource(database);
}

} // namespace

DataSource EmptyServerDatabase(const QString &name)
{
    const QString database = QStringLiteral("mirepan_%1_%2").arg(name).arg(QCoreApplication::applicationPid());
    const QString connection = QStringLiteral("test-server-admin");
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), connection);
        ConfigureConnection(db, TestServerSource(QStringLiteral("postgres")));
        if (!db.open())
            qFatal("test server: %s", qPrintable(db.lastError().text()));
        runOrDie(db, QStringLiteral("DROP DATABASE IF EXISTS ") + database);
        runOrDie(db, QStringLiteral("CREATE DATABASE ") + database);
        db.close();
    }
    QSqlDatabase::removeDatabase(connection);
    return TestServerSource(database);
}

void TestHome::createAndOpenDatabase()
{
    if (!TestServerDir().isEmpty()) {
        RegisterDataSource(freshServerDatabase());
        OpenFailure failure;
        if (!OpenDatabase(&failure) || !KeepSearchIndexes())
            qFatal("cannot open the test database on the server: %s", qPrintable(failure.reason));
        return;
    }
    QString error;
    if (!CreateDatabaseFromSchema(databasePath(), &error))
        qFatal("cannot create the test database: %s", qPrintable(error));
    registerDatabase(databasePath());
    if (!OpenDatabase() || !KeepSearchIndexes())
        qFatal("cannot open the test database");
}

QString TwoDigits(int n)
{
    return Format(n, QStringLiteral("00"));
}

QString SevenDigits(qint32 id)
{
    return Format(id, QStringLiteral("0000000"));
}

RecipeData TestRecipe(const QString &title, const QStringList &lines, const QStringList &steps, const QString &type)
{
    RecipeData r;
    r.recipeType = type;
    r.title = title;
    for (const QString &line : lines) {
        const QStringList f = line.split(u'|');
        r.ingredients.append({TwoDigits(int(r.ingredients.size()) + 1), f.value(0), f.value(1), f.value(2),
                              f.value(f.size() > 3 ? 3 : 2)});
    }
    for (const QString &step : steps)
        r.directions.append({TwoDigits(int(r.directions.size()) + 1), step});
    return r;
}

qint32 StoreTestRecipe(const RecipeData &recipe, qint32 id)
{
    QString problem;
    if (StoreRecipe(recipe, id, false, &problem, &id))
        return id;
    QTest::qFail(qPrintable(QStringLiteral("cannot store %1: %2").arg(recipe.title, problem)), __FILE__, __LINE__);
    return -1;
}

QString Describe(const RecipeData &r)
{
    QStringList parts {r.recipeType, r.servings, r.category, r.title, r.prepTime, r.cookTime, r.notes, r.rating};
    for (const IngredientLine &line : r.ingredients)
        parts << line.number + u':' + line.amount + u'|' + line.measure + u'|' + line.ingredient + u'|' + line.cabinet;
    for (const DirectionLine &line : r.directions)
        parts << line.step + u':' + line.direction;
    return parts.join(QStringLiteral(" / "));
}

int QueryNumber(const QString &sql)
{
    const Recordset rs = ExecuteSQL(sql);
    return rs && !rs.eof() ? rs.value(0).toInt() : -1;
}

QString ShippedIniPath()
{
    return QStringLiteral(MIREPAN_SOURCE_DIR "/data/pantrio.ini");
}

QString RegVeskPath()
{
    return QStringLiteral(MIREPAN_REG_VESK);
}

QByteArray ReadBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString ReadFile(const QString &path)
{
    return QString::fromUtf8(ReadBytes(path));
}

void WriteFile(const QString &path, const QByteArray &data)
{
    // Through a copy, as an editor saves: a file read a moment ago is seen to have changed.
    ReplaceFile(path, data);
}

bool KillWhileWriting(const QStringList &arguments, QRandomGenerator &random, int withinMicroseconds)
{
    QProcess writer;
    writer.start(QStringLiteral(MIREPAN_WRITE_LOOP), arguments);
    if (!writer.waitForReadyRead(10000))
        return false;
    QThread::usleep(random.bounded(withinMicroseconds));
    writer.kill();
    return writer.waitForFinished(10000);
}

bool RunElsewhere(const QStringList &statements)
{
    QProcess other;
    other.start(QStringLiteral(MIREPAN_SAVE_LOOP), QStringList {QStringLiteral("--sql")} + statements);
    return other.waitForFinished(30000) && other.exitStatus() == QProcess::NormalExit && other.exitCode() == 0;
}

int KillRounds(int inSuite)
{
    const int asked = qEnvironmentVariableIntValue("MIREPAN_KILLS");
    return asked > 0 ? asked : inSuite;
}

QStringList RecordingVoice::texts() const
{
    QStringList all;
    for (const Told &t : told)
        all.append(t.text);
    return all;
}

void ResetSessionValues()
{
    gSubWindows = 0;
    gRecipeType = QStringLiteral("Food");
    gSettings = AppSettings();
    gMaxRecipeID = 0;
}

void CoreSessionTest::init()
{
    m_home = std::make_unique<TestHome>();
    if (m_withDatabase)
        m_home->createAndOpenDatabase();
    m_voice = std::make_unique<RecordingVoice>();
    ResetSessionValues();
}

void CoreSessionTest::cleanup()
{
    m_voice.reset();
    m_home.reset();
}
