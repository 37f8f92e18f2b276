// Installing: the files in their places, their descriptions valid, and an installed program
// that keeps its data in the user's data directory.

#include "core/platform/modini.h"
#include "support/testsupport.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

class TestInstall : public QObject
{
    Q_OBJECT

    QTemporaryDir m_root;
    QString prefix() const { return m_root.filePath(QStringLiteral("prefix")); }

private Q_SLOTS:
    void initTestCase()
    {
        QProcess install;
        install.setProcessChannelMode(QProcess::MergedChannels);
        install.start(QStringLiteral(MIREPAN_CMAKE), {QStringLiteral("--install"), QStringLiteral(MIREPAN_BINARY_DIR),
                                                      QStringLiteral("--prefix"), prefix()});
        QVERIFY(install.waitForFinished(120000));
        QVERIFY2(install.exitCode() == 0, install.readAll().constData());
    }

    void filesAreInTheirPlaces()
    {
        for (const char *file :
             {"bin/mirepan", "bin/reg_vesk", "share/mirepan/pantrio.ini", "share/mirepan/schema.sql",
              "share/mirepan/vesk_um.rtf", "share/applications/org.mirepan.mirepan.desktop",
              "share/icons/hicolor/scalable/apps/org.mirepan.mirepan.svg",
              "share/icons/hicolor/48x48/apps/org.mirepan.mirepan.png",
              "share/icons/hicolor/256x256/apps/org.mirepan.mirepan.png", "share/man/man1/mirepan.1.gz",
              "share/man/man1/reg_vesk.1.gz", "share/doc/mirepan/copyright", "share/doc/mirepan/changelog.gz",
              "share/metainfo/org.mirepan.mirepan.metainfo.xml"})
            QVERIFY2(QFile::exists(prefix() + u'/' + QLatin1String(file)), file);
    }

    void descriptionsAreValid_data()
    {
        QTest::addColumn<QString>("tool");
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("menu entry") << "desktop-file-validate"
                                    << QStringList {prefix() +
                                                    QStringLiteral("/share/applications/org.mirepan.mirepan.desktop")};
        QTest::newRow("software centre")
            << "appstreamcli"
            << QStringList {QStringLiteral("validate"), QStringLiteral("--pedantic"), QStringLiteral("--no-net"),
                            prefix() + QStringLiteral("/share/metainfo/org.mirepan.mirepan.metainfo.xml")};
    }
    void descriptionsAreValid()
    {
        QFETCH(QString, tool);
        QFETCH(QStringList, arguments);
        const QString program = QStandardPaths::findExecutable(tool);
        if (program.isEmpty())
            QSKIP("the validator is not installed");
        QProcess check;
        check.setProcessChannelMode(QProcess::MergedChannels);
        check.start(program, arguments);
        QVERIFY(check.waitForFinished(60000));
        QVERIFY2(check.exitCode() == 0, check.readAll().constData());
    }

    void installedProgramKeepsItsDataWithTheUser()
    {
        const QString home = m_root.filePath(QStringLiteral("home"));
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.remove(QStringLiteral("MIREPAN_HOME"));
        env.remove(QStringLiteral("MIREPAN_DATASOURCES"));
        env.insert(QStringLiteral("HOME"), home);
        env.insert(QStringLiteral("XDG_DATA_HOME"), home + QStringLiteral("/.local/share"));
        env.insert(QStringLiteral("XDG_CONFIG_HOME"), home + QStringLiteral("/.config"));
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        env.insert(QStringLiteral("MIREPAN_REPORT_SHOWN"), QStringLiteral("1"));
        const QStringList installed = QDir(prefix() + QStringLiteral("/bin")).entryList(QDir::Files);
        // The first start sets up the data source (eight seconds), the second finds it.
        for (int start = 0; start < 2; ++start) {
            QProcess mirepan;
            mirepan.setProcessEnvironment(env);
            mirepan.start(prefix() + QStringLiteral("/bin/mirepan"), {});
            QVERIFY(mirepan.waitForFinished(60000));
            QVERIFY2(mirepan.readAllStandardOutput().contains("shown-at-ms"),
                     mirepan.readAllStandardError().constData());
            if (start == 0) { // as an older version left them: the manual is renewed, the settings kept
                WriteFile(home + QStringLiteral("/.local/share/Mirepan/Mirepan/vesk_um.rtf"), "an old manual");
                WriteIniValue(home + QStringLiteral("/.local/share/Mirepan/Mirepan/pantrio.ini"),
                              QStringLiteral("Print_Settings"), QStringLiteral("BaseFontSize=14"));
            }
        }
        const QString data = home + QStringLiteral("/.local/share/Mirepan/Mirepan/");
        QCOMPARE(ReadBytes(data + QStringLiteral("vesk_um.rtf")),
                 ReadBytes(prefix() + QStringLiteral("/share/mirepan/vesk_um.rtf")));
        QCOMPARE(GetIniValue(data + QStringLiteral("pantrio.ini"), QStringLiteral("Print_Settings"),
                             QStringLiteral("BaseFontSize")),
                 QStringLiteral("14"));
        for (const char *file : {"pantrio.ini", "PANTRIO.MDB", "vesk_um.rtf"})
            QVERIFY2(QFile::exists(data + QLatin1String(file)), file);
        QVERIFY(ReadFile(home + QStringLiteral("/.config/Mirepan/Mirepan/datasources.ini"))
                    .contains(data + QStringLiteral("PANTRIO.MDB")));
        QCOMPARE(QDir(prefix() + QStringLiteral("/bin")).entryList(QDir::Files), installed);
    }
};

QTEST_GUILESS_MAIN(TestInstall)
#include "test_install.moc"
