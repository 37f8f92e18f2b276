// Seeded fuzzing, briefly: each target on its corpus for a second and a half (MIREPAN_FUZZ_SECONDS
// sets another time, MIREPAN_FUZZ_SEED another seed). bench/ runs the same targets long.

#include "support/fuzztargets.h"
#include "support/testsupport.h"

#include <QTest>

class TestFuzz : public SessionTest
{
    Q_OBJECT

private Q_SLOTS:
    void targetsHoldOnMutatedInput_data()
    {
        QTest::addColumn<QString>("target");
        for (const QString &target : FuzzTargets())
            QTest::newRow(qPrintable(target)) << target;
    }
    void targetsHoldOnMutatedInput()
    {
        QFETCH(QString, target);
        const double seconds = qEnvironmentVariableIsSet("MIREPAN_FUZZ_SECONDS")
                                 ? qEnvironmentVariable("MIREPAN_FUZZ_SECONDS").toDouble()
                                 : 1.5;
        const quint32 seed = qEnvironmentVariableIsSet("MIREPAN_FUZZ_SEED")
                               ? qEnvironmentVariable("MIREPAN_FUZZ_SEED").toUInt()
                               : 20261124;
        const FuzzRun run =
            RunFuzzTarget(target, seed, 1'000'000, seconds, QStringLiteral(MIREPAN_SOURCE_DIR "/tests/data/fuzz"));
        QVERIFY2(run.failures.isEmpty(), qPrintable(run.failures.join(u'\n')));
        QVERIFY(run.executions > 10);
        m_boxes->clear(); // the fraction target's notices
    }
};

QTEST_MAIN(TestFuzz)
#include "test_fuzz.moc"
