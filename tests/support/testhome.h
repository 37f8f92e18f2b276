#pragma once
// What every test shares, with windows or without: a throw-away program directory with its own
// settings file and database, recipes to test with, the test server, files, and a voice that
// records what the layers below the windows tell the user.

#include "core/db/datasources.h"
#include "core/platform/voice.h"
#include "recipes/recipedata.h"

#include <QList>
#include <QObject>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

class QRandomGenerator;

// A fresh program directory: $MIREPAN_HOME and $MIREPAN_DATASOURCES point into a temporary
// directory for the lifetime of the object.
class TestHome
{
public:
    explicit TestHome(bool withShippedIni = true);
    ~TestHome();

    QString dir() const { return m_dir.path(); }
    QString path(const QString &name) const { return m_dir.filePath(name); }
    QString iniPath() const { return path(QStringLiteral("pantrio.ini")); }
    QString databasePath() const { return path(QStringLiteral("PANTRIO.MDB")); }
    // Creates PANTRIO.MDB from the shipped schema, registers it and opens the session.
    void createAndOpenDatabase();
    void registerDatabase(const QString &file);

private:
    QTemporaryDir m_dir;
    QString m_previousDir;
};

// A recipe to test with. Lines read "amount|measure|ingredient|cabinet" (the cabinet name is
// the ingredient when left out); lines and steps are numbered from 01.
RecipeData TestRecipe(const QString &title, const QStringList &lines = {}, const QStringList &steps = {},
                      const QString &type = QStringLiteral("Food"));
// Stores the recipe under the identifier (the next free one when 0): the identifier, or -1
// with a test failure when it could not be stored.
qint32 StoreTestRecipe(const RecipeData &recipe, qint32 id = 0);
QString TwoDigits(int n);
// An identifier as the lists show it.
QString SevenDigits(qint32 id);
// A recipe as one text, every field and line, for comparing two recipes.
QString Describe(const RecipeData &recipe);

// The test server's directory (scripts/pgserver.sh) when the tests run against a PostgreSQL
// server, "" when they run against the file database.
QString TestServerDir();
// The test server's entry for one of its databases.
DataSource TestServerSource(const QString &database);
// A new, empty database of this test program's own on the test server.
DataSource EmptyServerDatabase(const QString &name);
// Skips the test when it runs against a server: it is about the database file itself.
#define SKIP_ON_SERVER()                                                                                               \
    do {                                                                                                               \
        if (!TestServerDir().isEmpty())                                                                                \
            QSKIP("about the database file");                                                                          \
    } while (false)

// The first field of the first row of a query on the session, -1 when there is none.
int QueryNumber(const QString &sql);
QString ShippedIniPath();
QString RegVeskPath();
QString ReadFile(const QString &path);
QByteArray ReadBytes(const QString &path);
void WriteFile(const QString &path, const QByteArray &data);

// Starts the write-loop helper with the arguments, kills it at a random moment within
// withinMicroseconds of its first write, and waits for it to end; false when it would not run.
bool KillWhileWriting(const QStringList &arguments, QRandomGenerator &random, int withinMicroseconds);
// Runs the statements on the registered collection from another process, as another computer
// would; true when every one ran.
bool RunElsewhere(const QStringList &statements);
// How many kills a kill test makes: the few given for the test suite, or $MIREPAN_KILLS (the
// long runs of bench/run).
int KillRounds(int inSuite);

// Records every failure and notice the layers below the windows tell the user, while it lives.
class RecordingVoice : public Voice
{
public:
    RecordingVoice() { SetVoice(this); }
    ~RecordingVoice() override { SetVoice(nullptr); }
    struct Told {
        QString text;
        QString title;
        bool critical;
    };
    void report(const QString &text, const QString &title) override { told.append({text, title, true}); }
    void notice(const QString &text, const QString &title) override { told.append({text, title, false}); }
    QStringList texts() const;

    QList<Told> told;
};

// A test class without windows whose every test function gets a fresh session: a program
// directory (with an open database unless told otherwise), the program-wide values as at
// start-up, and a recording voice. A class with more to set up declares its own init() and
// cleanup() and calls these first.
class CoreSessionTest : public QObject
{
    Q_OBJECT
protected:
    explicit CoreSessionTest(bool withDatabase = true) : m_withDatabase(withDatabase) { }
    std::unique_ptr<TestHome> m_home;
    std::unique_ptr<RecordingVoice> m_voice;

protected Q_SLOTS:
    void init();
    void cleanup();

private:
    bool m_withDatabase;
};

// The program-wide values as at start-up.
void ResetSessionValues();
