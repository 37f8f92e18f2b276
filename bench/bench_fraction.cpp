// Parsing, scaling and formatting one million amounts, as a resize or shopping list does.

#include "benchdata.h"
#include "quantities/cfraction.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QStringList>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QStringList amounts = {"1/2", "3/4", "1 1/2", "2", "1/3", "2 2/3", "1/8", "4", "5 1/4", "3/8"};
    constexpr int kAmounts = 1000000;
    QList<double> samples;
    qsizetype characters = 0;
    for (int run = 0; run < 5; ++run) {
        QElapsedTimer timer;
        timer.start();
        for (int i = 0; i < kAmounts; ++i) {
            cFraction amount;
            amount.setStringValue(amounts[i % amounts.size()]);
            cFraction factor;
            factor.setNumerator(qint16(3 + i % 5));
            factor.setDenominator(4);
            amount.Multiply(factor);
            characters += amount.StringValue().size();
        }
        samples.append(kAmounts / (timer.nsecsElapsed() / 1e9));
    }
    PrintFigure("fraction.parse_multiply_format.ops_per_s", Median(samples), "ops/s");
    return characters > 0 ? 0 : 1;
}
