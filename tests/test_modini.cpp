// The settings file: reading and the placement rules of writing.

#include "core/platform/appsettings.h"
#include "core/platform/modini.h"
#include "core/platform/platform.h"
#include "support/testhome.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QRandomGenerator>
#include <QTest>

#include <unistd.h>

using namespace Qt::StringLiterals;

class TestModIni : public QObject
{
    Q_OBJECT

    QString m_ini;
    std::unique_ptr<TestHome> m_home;

    void write(const QByteArray &text) { WriteFile(m_ini, text); }
    QString contents() const { return ReadFile(m_ini); }
    static QStringList sectionsOf(const QString &path)
    {
        QStringList sections;
        for (const QString &line : ReadFile(path).split(u'\n')) {
            if (line.startsWith(u'['))
                sections.append(line.mid(1, line.indexOf(u']') - 1));
        }
        return sections;
    }

private Q_SLOTS:
    void init()
    {
        m_home = std::make_unique<TestHome>(false);
        m_ini = m_home->iniPath();
    }
    void cleanup() { m_home.reset(); }

    void readsValuesByExactSectionAndKey()
    {
        write(
            "[Files]\nDatabase=C:\\db\\pantrio.mdb\n\n[Misc]\n\nSeek=True\nseekamount=False\nEmpty=\n=odd\nnoequals\n");
        QCOMPARE(GetIniValue(m_ini, "Files", "Database"), QStringLiteral("C:\\db\\pantrio.mdb"));
        QCOMPARE(GetIniValue(m_ini, "Misc", "Seek"), QStringLiteral("True")); // after an empty line
        QCOMPARE(GetIniValue(m_ini, "Misc", "SeekAmount"), QString()); // case differs
        QCOMPARE(GetIniValue(m_ini, "misc", "Seek"), QString());
        QCOMPARE(GetIniValue(m_ini, "Misc", "Empty"), QString());
        QCOMPARE(GetIniValue(m_ini, "Misc", ""), QString()); // "=odd" is never a key
        QCOMPARE(GetIniValue(m_ini, "Misc", "noequals"), QString());
        QCOMPARE(GetIniValue(m_ini, "Files", "Seek"), QString()); // the key is in another section
        QCOMPARE(GetIniValue(m_ini, "Absent", "Seek"), QString());
        QCOMPARE(GetIniValue(m_home->path("missing.ini"), "Misc", "Seek"), QString());
    }

    void valueKeepsEverythingAfterTheFirstEquals()
    {
        write("[A]\nkey = spaced = value \n");
        QCOMPARE(GetIniValue(m_ini, "A", "key "), QStringLiteral(" spaced = value "));
        QCOMPARE(GetIniValue(m_ini, "A", "key"), QString());
    }

    void windowsLineEndsReadTheSame()
    {
        write("[Misc]\r\nSeek=True\r\n\r\n[Rating]\r\n00=\r\n01=*\r\n");
        QCOMPARE(GetIniValue(m_ini, "Misc", "Seek"), QStringLiteral("True"));
        QCOMPARE(GetIniSection(m_ini, "Rating"), (QStringList {"00=", "01=*"}));
        WriteIniValue(m_ini, "Misc", "Seek=False");
        QCOMPARE(contents(), QStringLiteral("[Misc]\r\nSeek=False\r\n\r\n[Rating]\r\n00=\r\n01=*\r\n"));
    }

    void sectionsAndLists()
    {
        write("[Category_Food]\n00=\n\n01=Breads\n02=Soups\n[Empty]\n[Next]\nx=1\n");
        QCOMPARE(GetIniSection(m_ini, "Category_Food"), (QStringList {"00=", "01=Breads", "02=Soups"}));
        QCOMPARE(GetIniSection(m_ini, "Empty"), QStringList {QString()});
        QCOMPARE(GetIniSection(m_ini, "Absent"), QStringList {QString()});
        QCOMPARE(IniListValues(m_ini, "Category_Food"), (QStringList {"", "Breads", "Soups"}));
        QCOMPARE(IniListValues(m_ini, "Absent"), QStringList {QString()}); // one empty entry
        QCOMPARE(IniLineValue("05=Main=Dishes"), QStringLiteral("Main=Dishes"));
        QCOMPARE(IniLineValue("noequals"), QStringLiteral("noequals"));
    }

    void garbageAndBinaryLinesAreHarmless()
    {
        QByteArray data("[Misc]\n\x01\x02\xff\xfe garbage\n[broken\nSeek=True\n");
        data += QByteArray(300, '\0');
        WriteFile(m_ini, data);
        QCOMPARE(GetIniValue(m_ini, "Misc", "Seek"), QString()); // "[broken" opens a section
        QCOMPARE(GetIniValue(m_ini, "broken", "Seek"), QStringLiteral("True"));
        WriteIniValue(m_ini, "Misc", "Seek=False");
        QCOMPARE(GetIniValue(m_ini, "Misc", "Seek"), QString()); // landed under "[broken"
        QCOMPARE(GetIniValue(m_ini, "broken", "Seek"), QStringLiteral("False"));
    }

    // One write (or delete, for a line without "="), the file before and after.
    void writesInPlace_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("after");
        QTest::addColumn<QString>("readBack"); // the key's value in the section, read again
        QTest::newRow("replacing keeps every other line")
            << u"[Misc]\nSeek=True\n\nStandardAdd=False\n\n[Files]\nPreview=x\n"_s << u"Misc"_s << u"StandardAdd=True"_s
            << u"[Misc]\nSeek=True\n\nStandardAdd=True\n\n[Files]\nPreview=x\n"_s << u"True"_s;
        QTest::newRow("a new key lands under the next section's header")
            << u"[Misc]\nSeek=True\n[Files]\nPreview=x\n"_s << u"Misc"_s << u"MaxRecipeID=12"_s
            << u"[Misc]\nSeek=True\n[Files]\nMaxRecipeID=12\nPreview=x\n"_s << u""_s;
        QTest::newRow("a new key in the last section ends it")
            << u"[Files]\nPreview=x\n[Misc]\nSeek=True\n"_s << u"Misc"_s << u"MaxRecipeID=12"_s
            << u"[Files]\nPreview=x\n[Misc]\nSeek=True\nMaxRecipeID=12\n"_s << u"12"_s;
        QTest::newRow("an absent section is appended")
            << u"[Files]\nPreview=x\n"_s << u"FIRSTRUN"_s << u"CONDB=YES"_s
            << u"[Files]\nPreview=x\n\n[FIRSTRUN]\nCONDB=YES\n"_s << u"YES"_s;
        QTest::newRow("a header on the last line takes the key")
            << u"[Files]\nPreview=x\n[Misc]"_s << u"Misc"_s << u"Seek=True"_s
            << u"[Files]\nPreview=x\n[Misc]\nSeek=True\n"_s << u"True"_s;
        QTest::newRow("delete in its section only")
            << u"[Rating]\n00=\n01=*\n02=**\n[Other]\n01=keep\n"_s << u"Rating"_s << u"01"_s
            << u"[Rating]\n00=\n02=**\n[Other]\n01=keep\n"_s << u""_s;
        QTest::newRow("delete of an absent key")
            << u"[Rating]\n00=\n"_s << u"Rating"_s << u"99"_s << u"[Rating]\n00=\n"_s << u""_s;
    }
    void writesInPlace()
    {
        QFETCH(QString, before);
        QFETCH(QString, section);
        QFETCH(QString, line);
        QFETCH(QString, after);
        QFETCH(QString, readBack);
        write(before.toUtf8());
        if (line.contains(u'='))
            WriteIniValue(m_ini, section, line);
        else
            DeleteIniKey(m_ini, section, line);
        QCOMPARE(contents(), after);
        QCOMPARE(GetIniValue(m_ini, section, line.section(u'=', 0, 0)), readBack);
    }

    void missingFileIsCreatedWithoutLeadingEmptyLine()
    {
        const QString path = m_home->path("sub/new.ini");
        WriteIniValue(path, "FIRSTRUN", "CONDB=YES");
        QCOMPARE(ReadFile(path), QStringLiteral("[FIRSTRUN]\nCONDB=YES\n"));
        QVERIFY(!QFile::exists(QDir::current().filePath("copytest.ini")));
    }

    void orderedInsertionKeepsListsSorted()
    {
        write("[Rating]\n00=\n02=**\n04=****\n\n[Amount_Food]\n00=---\n");
        WriteIniValue(m_ini, "Rating", "03=***", true);
        WriteIniValue(m_ini, "Rating", "05=*****", true);
        WriteIniValue(m_ini, "Rating", "02=two", true); // the same order replaces its entry
        QCOMPARE(contents(),
                 QStringLiteral("[Rating]\n00=\n02=two\n03=***\n04=****\n\n05=*****\n[Amount_Food]\n00=---\n"));
        QCOMPARE(GetIniSection(m_ini, "Rating").last(), QStringLiteral("05=*****"));
        // Orders sort as text: 10 before 9.
        WriteIniValue(m_ini, "Amount_Food", "9=nine", true);
        WriteIniValue(m_ini, "Amount_Food", "10=ten", true);
        QCOMPARE(GetIniSection(m_ini, "Amount_Food"), (QStringList {"00=---", "10=ten", "9=nine"}));
    }

    void latin1FileIsWrittenBackInLatin1()
    {
        // From another system: "Crème brûlée" and "Café" in Latin-1, not valid UTF-8.
        const QByteArray latin1("[Category_Food]\n00=\n01=Cr\xe8me br\xfbl\xe9\x65\n[Misc]\nSeek=True\n02=Caf\xe9\n");
        WriteFile(m_ini, latin1);
        QCOMPARE(GetIniSection(m_ini, "Category_Food").last(), QStringLiteral("01=Crème brûlée"));
        WriteIniValue(m_ini, "Misc", "Seek=False");
        QByteArray expected = latin1;
        expected.replace("Seek=True", "Seek=False");
        QCOMPARE(ReadBytes(m_ini), expected);
        // A character Latin-1 cannot hold makes the file UTF-8, every other character kept.
        WriteIniValue(m_ini, "Category_Food", "02=Борщ", true);
        QCOMPARE(GetIniSection(m_ini, "Category_Food"), (QStringList {"00=", "01=Crème brûlée", "02=Борщ"}));
        QCOMPARE(
            ReadBytes(m_ini),
            QStringLiteral("[Category_Food]\n00=\n01=Crème brûlée\n02=Борщ\n[Misc]\nSeek=False\n02=Café\n").toUtf8());
    }

    // The dialog's settings go into their sections of the shipped file and read back the same;
    // the lists and the other keys stay as they were.
    void settingsRoundTripThroughTheShippedFile()
    {
        QVERIFY(QFile::copy(ShippedIniPath(), m_ini));
        QFile::setPermissions(m_ini, QFile::ReadOwner | QFile::WriteOwner);
        const QStringList categories = GetIniSection(m_ini, "Category_Food");
        const FileDefaults defaults {"/p.rtf", "/d.mdb"};
        AppSettings s = ReadAppSettings(m_ini, defaults);
        s.BaseFontSize = 14;
        s.PageNumbers = !s.PageNumbers;
        s.Transfer = QStringLiteral("/home/x/transfer.txt");
        s.OnlyNewRecipes = true;
        WriteAppSettings(m_ini, s);
        const AppSettings back = ReadAppSettings(m_ini, defaults);
        QCOMPARE(back.BaseFontSize, 14);
        QCOMPARE(back.PageNumbers, s.PageNumbers);
        QCOMPARE(back.Transfer, s.Transfer);
        QCOMPARE(back.Preview, s.Preview);
        QCOMPARE(back.OnlyNewRecipes, true);
        QCOMPARE(GetIniValue(m_ini, "Misc", "OnlyNewRecipes"), QStringLiteral("True"));
        QCOMPARE(GetIniSection(m_ini, "Category_Food"), categories);
        // An absent size, or one no printer takes, reads as 9.
        WriteIniValue(m_ini, "Print_Settings", "BaseFontSize=400");
        QCOMPARE(ReadAppSettings(m_ini, defaults).BaseFontSize, 9);
    }

    void byteOrderMarkIsKept()
    {
        WriteFile(m_ini, "\xEF\xBB\xBF[Misc]\nSeek=True\n");
        QCOMPARE(GetIniValue(m_ini, "Misc", "Seek"), QStringLiteral("True"));
        WriteIniValue(m_ini, "Misc", "Seek=False");
        QCOMPARE(ReadBytes(m_ini), QByteArray("\xEF\xBB\xBF[Misc]\nSeek=False\n"));
    }

    void changesOnDiskAreSeen()
    {
        // Read once and kept: a file changed by another program must be read again.
        write("[Misc]\nSeek=True\n");
        QCOMPARE(GetIniValue(m_ini, "Misc", "Seek"), QStringLiteral("True"));
        write("[Misc]\nSeek=Fals\n");
        QCOMPARE(GetIniValue(m_ini, "Misc", "Seek"), QStringLiteral("Fals"));
        QFile::remove(m_ini);
        QCOMPARE(GetIniValue(m_ini, "Misc", "Seek"), QString());
        QCOMPARE(GetIniSection(m_ini, "Misc"), QStringList {QString()});
    }

    void killedWritesNeverLoseTheSettings()
    {
        QFile::copy(ShippedIniPath(), m_ini);
        QMap<QString, QStringList> before;
        for (const QString &section : sectionsOf(m_ini))
            before.insert(section, GetIniSection(m_ini, section));
        QRandomGenerator random(20261123);
        for (int kill = 0, rounds = KillRounds(200); kill < rounds; ++kill) {
            QVERIFY(KillWhileWriting({QStringLiteral("ini"), m_ini}, random, 20000));
            for (auto it = before.cbegin(); it != before.cend(); ++it) {
                QStringList lines = GetIniSection(m_ini, it.key());
                if (it.key() == u"Misc") // the writer's own key, either value
                    lines.replaceInStrings(QStringLiteral("Seek=False"), QStringLiteral("Seek=True"));
                lines.removeAll(QStringLiteral("06=******"));
                QVERIFY2(lines == it.value(), qPrintable(QStringLiteral("kill %1, [%2]").arg(kill).arg(it.key())));
            }
        }
    }

    // Hundreds of random files and writes: the file written once from memory and the file
    // written key by key (whose rules the table above pins down) agree byte for byte, line
    // breaks inside values included.
    void writingFromMemoryEqualsWritingKeyByKey()
    {
        const QStringList sections {"A", "B", "1", "ID"};
        const QStringList lines {"",      "[A]",    "[B]",     "[1]", "[ID]",    "k=1",
                                 "Max=2", "Ing1=x", "Ing10=y", "=z",  "noequals"};
        const QStringList newLines {"k=new",      "Max=3",        "Ing1=a | b", "Ing10=c",
                                    "Dir1=1 | x", "k=two\nlines", "k=v\n[B]"};
        QRandomGenerator random(7);
        auto pick = [&random](const QStringList &from) { return from[random.bounded(int(from.size()))]; };
        const QString keyByKey = m_home->path("keybykey.ini");
        for (int round = 0; round < 300; ++round) {
            QStringList start;
            for (int n = random.bounded(8); n > 0; --n)
                start << pick(lines);
            for (const QString &path : {m_ini, keyByKey}) {
                QFile::remove(path);
                if (round % 5)
                    WriteFile(path, (start.join(u'\n') + u'\n').toUtf8());
            }
            IniFile file(m_ini);
            for (int n = 1 + random.bounded(6); n > 0; --n) {
                const QString section = pick(sections);
                const QString line = pick(newLines);
                const bool ordered = random.bounded(4) == 0;
                file.write(section, line, ordered);
                WriteIniValue(keyByKey, section, line, ordered);
            }
            file.save();
            QCOMPARE(ReadFile(m_ini), ReadFile(keyByKey));
        }
    }

    void unwritableDirectoryKeepsTheFile()
    {
        if (::geteuid() == 0)
            QSKIP("root may write any file: the refusal this waits for cannot happen");
        write("[Misc]\nSeek=True\n");
        const QString dir = m_home->dir();
        QFile::setPermissions(dir, QFile::ReadOwner | QFile::ExeOwner);
        QFile::setPermissions(m_ini, QFile::ReadOwner);
        bool raised = false;
        try {
            WriteIniValue(m_ini, "Misc", "Seek=False");
        } catch (const PlatformError &) {
            raised = true;
        }
        QFile::setPermissions(dir, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QFile::setPermissions(m_ini, QFile::ReadOwner | QFile::WriteOwner);
        QVERIFY(raised);
        QCOMPARE(contents(), QStringLiteral("[Misc]\nSeek=True\n"));
    }
};

QTEST_MAIN(TestModIni)
#include "test_modini.moc"
