// Amounts as fractions: parsing, formatting, arithmetic and its deliberate quirks.

#include "core/platform/platform.h"
#include "quantities/cfraction.h"
#include "core/platform/modini.h"
#include "quantities/measures.h"
#include "support/testhome.h"

#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>
#include <numeric>

using namespace Qt::StringLiterals;

namespace {

cFraction parsed(const QString &text)
{
    cFraction f;
    f.setStringValue(text);
    return f;
}

cFraction topHeavy(qint16 numerator, qint16 denominator)
{
    cFraction f;
    f.setNumerator(numerator);
    f.setDenominator(denominator);
    return f;
}

// The reduction by trial, exactly as described to the household's developers.
std::pair<int, int> trialSimplify(int n, int d)
{
    int g = 0;
    for (int i = 1; i <= std::abs(d) / 2; ++i) {
        if (std::abs(n) % i == 0 && std::abs(d) % i == 0)
            g = i;
    }
    return {g == 0 ? 0 : n / g, g == 0 ? 0 : d / g};
}

} // namespace

class TestFraction : public CoreSessionTest
{
    Q_OBJECT
public:
    TestFraction() : CoreSessionTest(false) { }

private Q_SLOTS:
    // Amounts shown in the other system, checked by hand: "" where nothing is converted.
    void conversions_data()
    {
        QTest::addColumn<QString>("amount");
        QTest::addColumn<QString>("measure");
        QTest::addColumn<int>("system");
        QTest::addColumn<QString>("shown");
        const int us = int(MeasureSystem::US), metric = int(MeasureSystem::Metric);
        const auto row = [](const char *name, const char *amount, const char *measure, int system, const char *shown) {
            QTest::newRow(name) << QString::fromUtf8(amount) << QString::fromUtf8(measure) << system
                                << QString::fromUtf8(shown);
        };
        row("7/16 cup: 103.5 ml, past the 16-bit fractions", "7/16", "cup", metric, "104 ml");
        row("a cup", "1", "Cups", metric, "237 ml");
        row("T is a tablespoon", "1", "T", metric, "15 ml");
        row("t is a teaspoon", "1", "t", metric, "5 ml");
        row("mixed number", "1 1/2", "Tbsp.", metric, "22 ml");
        row("a litre in cups", "1", "l", us, "4 1/4 cup");
        row("250 ml is about a cup", "250", "ml", us, "1 cup");
        row("two thirds", "160", "ml", us, "2/3 cup");
        row("small amounts in spoons", "10", "ml", us, "2 tsp");
        row("spoons in tablespoons", "45", "ml", us, "3 Tbsp");
        row("mass in pounds", "500", "g", us, "1 1/8 lb");
        row("decimal kilograms", "1.5", "kg", us, "3 1/3 lb");
        row("pounds in grams", "2", "lb", metric, "907 g");
        row("large volumes in litres", "2", "imp pint", metric, "1.1 l");
        row("a huge amount", "999999999", "gallon", metric, "3785411780.2 l");
        row("already US", "3", "tsp", us, "");
        row("already metric", "1200", "ml", metric, "");
        row("a range", "1-2", "cup", metric, "");
        row("no unit", "1", "pinch", metric, "");
        row("as written", "1", "cup", int(MeasureSystem::AsWritten), "");
        // Every unit of the shipped table, through its size: one of each, shown in the other system.
        row("tsp", "1", "tsp", metric, "5 ml");
        row("fl oz", "1", "fl oz", metric, "30 ml");
        row("pint", "1", "pint", metric, "473 ml");
        row("quart", "1", "quart", metric, "946 ml");
        row("imp quart", "1", "imp quart", metric, "1.1 l");
        row("imp gallon", "1", "imp gallon", metric, "4.5 l");
        row("imp fl oz", "1", "imp fl oz", us, "1 7/8 Tbsp");
        row("cl", "25", "cl", us, "1 cup");
        row("dl", "1", "dl", us, "3/8 cup");
        row("mg", "5000", "mg", us, "1/8 oz");
        row("oz", "1", "oz", metric, "28 g");
        row("kg", "1", "kg", us, "2 1/4 lb");
    }
    void conversions()
    {
        QFETCH(QString, amount);
        QFETCH(QString, measure);
        QFETCH(int, system);
        QFETCH(QString, shown);
        const std::optional<ShownAmount> converted = ConvertAmount(amount, measure, MeasureSystem(system));
        QCOMPARE(converted ? converted->amount + u' ' + converted->measure : QString(), shown);
    }

    void combinedAmountsAndTemperatures()
    {
        const auto combined = [](const QList<std::pair<QString, QString>> &parts) {
            const std::optional<ShownAmount> c = CombineAmounts(parts);
            return c ? c->amount + u' ' + c->measure : QString();
        };
        QCOMPARE(combined({{"1 1/2", "tsp"}, {"1", "Tbsp"}}), QStringLiteral("1 1/2 Tbsp"));
        QCOMPARE(combined({{"1", "cup"}, {"250", "ml"}}), QStringLiteral("2 cup"));
        QCOMPARE(combined({{"300", "g"}, {"0.8", "kg"}}), QStringLiteral("1.1 kg"));
        QCOMPARE(combined({{"1", "cup"}, {"1", "lb"}}), QString()); // volume and mass stay apart
        QCOMPARE(combined({{"1", "pinch"}, {"1", "tsp"}}), QString());
        // With the weight of a cup of the item (flour, 125 g), cups and grams meet.
        const Exact flour {125, 1};
        const auto withFlour = [&](const QList<std::pair<QString, QString>> &parts) {
            const std::optional<ShownAmount> c = CombineAmounts(parts, flour);
            return c ? c->amount + u' ' + c->measure : QString();
        };
        QCOMPARE(withFlour({{"1", "cup"}, {"100", "g"}}), QStringLiteral("1 3/4 cup"));
        QCOMPARE(withFlour({{"100", "g"}, {"1", "cup"}}), QStringLiteral("225 g"));
        const auto shownFlour = [&](const char *amount, const char *measure, MeasureSystem system) {
            const std::optional<ShownAmount> c =
                ConvertAmount(QString::fromUtf8(amount), QString::fromUtf8(measure), system, flour);
            return c ? c->amount + u' ' + c->measure : QString();
        };
        QCOMPARE(shownFlour("7/16", "cup", MeasureSystem::Metric), QStringLiteral("55 g"));
        QCOMPARE(shownFlour("250", "g", MeasureSystem::US), QStringLiteral("2 cup"));
        QCOMPARE(shownFlour("1", "kg", MeasureSystem::Metric), QString()); // already as the cook weighs it
        // The household's own units, from its list: a stick is 8 Tbsp; a name the table knows
        // keeps its meaning, and an entry that names no unit is left out.
        QTemporaryDir dir;
        const QString ini = dir.filePath(QStringLiteral("pantrio.ini"));
        WriteIniValue(ini, QStringLiteral("Units"), QStringLiteral("01=stick = 8 Tbsp"));
        WriteIniValue(ini, QStringLiteral("Units"), QStringLiteral("02=cup = 1 tsp"));
        WriteIniValue(ini, QStringLiteral("Units"), QStringLiteral("03=handful = some"));
        LoadHouseholdUnits(ini);
        QCOMPARE(combined({{"1", "stick"}, {"2", "Tbsp"}}), QStringLiteral("5/8 cup"));
        QCOMPARE(combined({{"1", "cup"}, {"1", "cup"}}), QStringLiteral("2 cup"));
        QVERIFY(!IsUnitAmount(QStringLiteral("1"), QStringLiteral("handful")));
        QCOMPARE(ConvertAmount(QStringLiteral("2"), QStringLiteral("sticks"), MeasureSystem::Metric)->amount,
                 QStringLiteral("237"));
        LoadHouseholdUnits(dir.filePath(QStringLiteral("none.ini")));
        QVERIFY(!IsUnitAmount(QStringLiteral("1"), QStringLiteral("stick")));
        const auto annotated = [](const char *text, MeasureSystem system) {
            return AnnotateTemperatures(QString::fromUtf8(text), system);
        };
        QCOMPARE(annotated("Bake at 350°F for 1 hour.", MeasureSystem::Metric),
                 QStringLiteral("Bake at 350°F (175°C) for 1 hour."));
        QCOMPARE(annotated("Heat to 180 C, then 200 degrees c.", MeasureSystem::US),
                 QStringLiteral("Heat to 180 C (355°F), then 200 degrees c (390°F)."));
        QCOMPARE(annotated("Oven at gas mark 4.", MeasureSystem::Metric),
                 QStringLiteral("Oven at gas mark 4 (180°C)."));
        for (const char *unchanged : {"Add 2 C flour and 20 C water.", "Bake at 350°F."})
            QCOMPARE(annotated(unchanged, MeasureSystem::US), QString::fromUtf8(unchanged));
        QCOMPARE(annotated("Bake at 350°F.", MeasureSystem::AsWritten), QStringLiteral("Bake at 350°F."));
    }

    void parsing_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("whole");
        QTest::addColumn<int>("numerator");
        QTest::addColumn<int>("denominator");
        QTest::addColumn<QString>("formatted");
        QTest::newRow("mixed") << "1 1/2" << 1 << 1 << 2 << "1 1/2";
        QTest::newRow("proper") << "3/4" << 0 << 3 << 4 << "3/4";
        QTest::newRow("whole is not normalised") << "2" << 0 << 2 << 1 << "2/1";
        QTest::newRow("blanks trimmed") << "  3/4  " << 0 << 3 << 4 << "3/4";
        QTest::newRow("decimal cut down") << "1.5" << 0 << 1 << 1 << "1/1";
        QTest::newRow("below one") << "0.5" << 0 << 0 << 1 << "";
        QTest::newRow("blank inside a number") << "2 3" << 2 << 23 << 1 << "2 23/1";
        QTest::newRow("words after a number") << "1 to 2" << 1 << 0 << 1 << "1";
        QTest::newRow("negative") << "-1/2" << 0 << -1 << 2 << "-1/2";
        QTest::newRow("words") << "a pinch" << 0 << 0 << 1 << "";
        QTest::newRow("empty") << "" << 0 << 0 << 1 << "";
        QTest::newRow("the unset amount") << "---" << 0 << 0 << 1 << "";
        QTest::newRow("sign only") << "-" << 0 << 0 << 1 << "";
        QTest::newRow("mixed negative") << "-1 1/2" << -1 << 1 << 2 << "-1 1/2";
    }
    void parsing()
    {
        QFETCH(QString, text);
        QFETCH(int, whole);
        QFETCH(int, numerator);
        QFETCH(int, denominator);
        QFETCH(QString, formatted);
        const cFraction f = parsed(text);
        QCOMPARE(int(f.WholeNumber()), whole);
        QCOMPARE(int(f.Numerator()), numerator);
        QCOMPARE(int(f.Denominator()), denominator);
        QCOMPARE(f.StringValue(), formatted);
        QVERIFY(m_voice->told.isEmpty());
    }

    void zeroDenominatorIsAMessageNotAnError()
    {
        cFraction f = parsed(QStringLiteral("1/0"));
        QCOMPARE(m_voice->texts(), QStringList {QStringLiteral("Error parsing string to create fraction!")});
        QCOMPARE(m_voice->told[0].title, QStringLiteral("Error"));
        QVERIFY(!m_voice->told[0].critical); // a plain OK box
        QCOMPARE(f.StringValue(), QStringLiteral("1/0"));
        f.setStringValue(QStringLiteral("1/"));
        QCOMPARE(m_voice->told.size(), 2); // once per parse
        QCOMPARE(f.StringValue(), QStringLiteral("1/0"));
        cFraction fresh;
        QCOMPARE(fresh.Denominator(), qint16(0));
        QCOMPARE(fresh.StringValue(), QString());
    }

    void arithmetic_data()
    {
        QTest::addColumn<QString>("left");
        QTest::addColumn<QString>("right");
        QTest::addColumn<QString>("product");
        QTest::addColumn<QString>("sum");
        QTest::newRow("quarter doubled") << u"1/4"_s << u"2"_s << u"1/2"_s << u"2 1/4"_s;
        QTest::newRow("three quarters by four") << u"3/4"_s << u"4"_s << u"3"_s << u"4 3/4"_s;
        QTest::newRow("mixed by a fraction") << u"1 1/2"_s << u"3/2"_s << u"2 1/4"_s << u"3"_s;
        QTest::newRow("thirds") << u"1/3"_s << u"1/3"_s << u"1/9"_s << u"2/3"_s;
        QTest::newRow("halves") << u"1/2"_s << u"1/2"_s << u"1/4"_s << u"1"_s;
        QTest::newRow("reduced") << u"6/8"_s << u"1"_s << u"3/4"_s << u"1 3/4"_s;
        QTest::newRow("top-heavy") << u"9/4"_s << u"1"_s << u"2 1/4"_s << u"3 1/4"_s;
    }
    void arithmetic()
    {
        QFETCH(QString, left);
        QFETCH(QString, right);
        QFETCH(QString, product);
        QFETCH(QString, sum);
        cFraction a = parsed(left), b = parsed(right);
        a.Multiply(b);
        QCOMPARE(a.StringValue(), product);
        cFraction c = parsed(left), d = parsed(right);
        c.Add(d);
        QCOMPARE(c.StringValue(), sum);
    }

    void operandIsMadeTopHeavy()
    {
        cFraction a = parsed(QStringLiteral("1/2"));
        cFraction b = parsed(QStringLiteral("1 1/2"));
        a.Multiply(b);
        QCOMPARE(b.WholeNumber(), qint16(0));
        QCOMPARE(b.Numerator(), qint16(3));
        QCOMPARE(b.Denominator(), qint16(2));
        QCOMPARE(a.StringValue(), QStringLiteral("3/4"));
    }

    void divideAndSubtract()
    {
        cFraction a = parsed(QStringLiteral("1/2")), b = parsed(QStringLiteral("3"));
        a.Divide(b); // b divided by a
        QCOMPARE(a.StringValue(), QStringLiteral("6"));
        cFraction c = parsed(QStringLiteral("3/4")), d = parsed(QStringLiteral("1/4"));
        c.Subtract(d);
        QCOMPARE(c.StringValue(), QStringLiteral("1/2"));
    }

    void deliberateImperfections()
    {
        cFraction sixteen = topHeavy(-16, 16);
        sixteen.Simplify();
        QCOMPARE(sixteen.StringValue(), QStringLiteral("-2/2"));
        cFraction fiveHalves = topHeavy(-5, 2);
        fiveHalves.Simplify();
        QCOMPARE(fiveHalves.StringValue(), QStringLiteral("-5/2"));
        cFraction sign = parsed(QStringLiteral("-1 1/2"));
        sign.MakeTopHeavy();
        QCOMPARE(sign.StringValue(), QStringLiteral("-1/2")); // the whole part's sign is lost
        cFraction three = topHeavy(-3, 1);
        try {
            three.Simplify();
            QFAIL("no division by zero");
        } catch (const PlatformError &e) {
            QCOMPARE(e.code(), PlatformError::DivisionByZero);
        }
        cFraction twelve = topHeavy(12, 4);
        twelve.Simplify();
        QCOMPARE(twelve.Numerator(), qint16(0));
        QCOMPARE(twelve.StringValue(), QStringLiteral("3"));
    }

    void reductionMatchesTheTrialDivisor()
    {
        for (int d = -60; d <= 60; ++d) {
            for (int n = -70; n <= 70; ++n) {
                if (n == 0 || d == 0 || n >= d)
                    continue; // only what reaches the reduction untouched by the whole part
                const auto [rn, rd] = trialSimplify(n, d);
                cFraction f = topHeavy(qint16(n), qint16(d));
                if (rd == 0) {
                    QVERIFY_THROWS_EXCEPTION(PlatformError, f.Simplify());
                    continue;
                }
                f.Simplify();
                QCOMPARE(int(f.Numerator()), rn);
                QCOMPARE(int(f.Denominator()), rd);
            }
        }
    }

    void propertyAgainstExactRationals()
    {
        QRandomGenerator random(42);
        int checked = 0, overflowed = 0;
        for (int round = 0; round < 20000; ++round) {
            const qint64 w1 = random.bounded(0, 12), d1 = random.bounded(1, 64), n1 = random.bounded(0, int(d1));
            const qint64 w2 = random.bounded(0, 12), d2 = random.bounded(1, 64), n2 = random.bounded(0, int(d2));
            const QString t1 = QStringLiteral("%1 %2/%3").arg(w1).arg(n1).arg(d1);
            const QString t2 = QStringLiteral("%1 %2/%3").arg(w2).arg(n2).arg(d2);
            const qint64 top1 = w1 * d1 + n1, top2 = w2 * d2 + n2;
            const bool multiplyFits = top1 * top2 <= 32767 && d1 * d2 <= 32767;
            const bool addFits =
                d1 * top2 <= 32767 && d2 * top1 <= 32767 && d1 * top2 + d2 * top1 <= 32767 && d1 * d2 <= 32767;
            for (int op = 0; op < 2; ++op) {
                const bool fits = op == 0 ? multiplyFits : addFits;
                qint64 num = op == 0 ? top1 * top2 : top1 * d2 + top2 * d1;
                qint64 den = d1 * d2;
                cFraction a = parsed(t1), b = parsed(t2);
                try {
                    op == 0 ? a.Multiply(b) : a.Add(b);
                } catch (const PlatformError &e) {
                    QVERIFY2(!fits, qPrintable(t1 + QStringLiteral(" op ") + t2));
                    QCOMPARE(e.code(), PlatformError::Overflow);
                    ++overflowed;
                    continue;
                }
                QVERIFY2(fits, qPrintable(QStringLiteral("no overflow for ") + t1 + u' ' + t2));
                const qint64 g = std::gcd(num, den);
                num /= g;
                den /= g;
                QCOMPARE(qint64(a.WholeNumber()), num / den);
                if (num % den == 0) {
                    QCOMPARE(a.Numerator(), qint16(0));
                } else {
                    QCOMPARE(qint64(a.Numerator()), num % den); // proper and fully reduced
                    QCOMPARE(qint64(a.Denominator()), den);
                }
                ++checked;
            }
        }
        QVERIFY(checked > 10000);
        QVERIFY(overflowed > 1000);
    }

    void anyTextEndsInAValueAMessageOrThePlatformError()
    {
        const QStringList texts = {QString(),
                                   QStringLiteral("99999"),
                                   QStringLiteral("1e400"),
                                   QStringLiteral("-"),
                                   QStringLiteral("1/0"),
                                   QString(100000, u'9'),
                                   QString::fromUtf8("\x01\x02\xff"),
                                   QStringLiteral("1/2/3"),
                                   QStringLiteral("  /  "),
                                   QStringLiteral("1e4/2"),
                                   QStringLiteral("3 4 5/6")};
        for (const QString &text : texts) {
            try {
                cFraction f = parsed(text);
                cFraction two = parsed(QStringLiteral("2"));
                f.Multiply(two);
                (void)f.StringValue();
            } catch (const PlatformError &) { }
        }
        m_voice->told.clear(); // the zero-denominator texts showed their message
        QVERIFY_THROWS_EXCEPTION(PlatformError, parsed(QStringLiteral("99999")));
        QVERIFY_THROWS_EXCEPTION(PlatformError, parsed(QStringLiteral("1e400")));
    }

    void overflowWhenScaledBeyondSixteenBits()
    {
        cFraction a = parsed(QStringLiteral("1/200")), b = parsed(QStringLiteral("1/200"));
        QVERIFY_THROWS_EXCEPTION(PlatformError, a.Add(b));
    }
};

QTEST_MAIN(TestFraction)
#include "test_fraction.moc"
