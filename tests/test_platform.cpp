// The platform conversions every command relies on.

#include "core/platform/platform.h"

#include <QTest>

class TestPlatform : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void val_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("value");
        QTest::newRow("plain") << "12" << 12.0;
        QTest::newRow("trailing text") << "12abc" << 12.0;
        QTest::newRow("not a number") << "abc" << 0.0;
        QTest::newRow("empty") << "" << 0.0;
        QTest::newRow("blanks inside") << "2 3" << 23.0;
        QTest::newRow("tabs and breaks") << "\t1\n2" << 12.0;
        QTest::newRow("decimal") << "1.5" << 1.5;
        QTest::newRow("second point ends") << "1.5.2" << 1.5;
        QTest::newRow("negative") << " -7 people" << -7.0;
        QTest::newRow("sign only") << "-" << 0.0;
        QTest::newRow("exponent") << "1e3" << 1000.0;
        QTest::newRow("exponent without digits") << "2e" << 2.0;
        QTest::newRow("fraction stops at slash") << "3/4" << 3.0;
        QTest::newRow("time without colon") << "130" << 130.0;
    }
    void val()
    {
        QFETCH(QString, text);
        QFETCH(double, value);
        QCOMPARE(Val(text), value);
    }

    void valOverflowsBeyondDouble() { QVERIFY_THROWS_EXCEPTION(PlatformError, Val(QStringLiteral("1e400"))); }

    void strictConversion()
    {
        QCOMPARE(CInt(QStringLiteral(" 6 ")), qint16(6));
        QCOMPARE(CInt(QStringLiteral("2.5")), qint16(2)); // half to even
        QCOMPARE(CInt(QStringLiteral("3.5")), qint16(4));
        QCOMPARE(CInt(QStringLiteral("-32768")), qint16(-32768));
        for (const char *bad : {"6 people", "", "abc", "1/2", "-"}) {
            try {
                CInt(QLatin1String(bad));
                QFAIL(bad);
            } catch (const PlatformError &e) {
                QCOMPARE(e.code(), PlatformError::TypeMismatch);
                QCOMPARE(e.description(), QStringLiteral("Type mismatch"));
            }
        }
        try {
            CInt(QStringLiteral("32768"));
            QFAIL("no overflow");
        } catch (const PlatformError &e) {
            QCOMPARE(e.code(), PlatformError::Overflow);
        }
        QCOMPARE(CLng(QStringLiteral("0001234")), qint32(1234));
    }

    void sixteenBitArithmetic()
    {
        QCOMPARE(Mul16(181, 181), qint16(32761));
        QCOMPARE(Add16(32766, 1), qint16(32767));
        QVERIFY_THROWS_EXCEPTION(PlatformError, Mul16(200, 200));
        QVERIFY_THROWS_EXCEPTION(PlatformError, Add16(32767, 1));
        QVERIFY_THROWS_EXCEPTION(PlatformError, Sub16(-32768, 1));
        QCOMPARE(Floor16(-0.5), qint16(-1));
        QVERIFY_THROWS_EXCEPTION(PlatformError, Floor16(40000.2));
    }

    void formats()
    {
        QCOMPARE(Format(4, QStringLiteral("00")), QStringLiteral("04"));
        QCOMPARE(Format(123, QStringLiteral("00")), QStringLiteral("123"));
        QCOMPARE(Format(42, QStringLiteral("0000000")), QStringLiteral("0000042"));
        QCOMPARE(Format(130, QStringLiteral("00:00")), QStringLiteral("01:30"));
        QCOMPARE(Format(75, QStringLiteral("00:00")), QStringLiteral("00:75"));
        QCOMPARE(Format(12345, QStringLiteral("00:00")), QStringLiteral("123:45"));
        QCOMPARE(Format(0, QStringLiteral("00:00")), QStringLiteral("00:00"));
    }
};

QTEST_GUILESS_MAIN(TestPlatform)
#include "test_platform.moc"
