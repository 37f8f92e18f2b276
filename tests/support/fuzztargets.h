#pragma once
// Seeded fuzzing of the parts that read what the household's files and typing bring in: the
// MealMaster reader, the transfer import, fractions, the settings file and the save and search
// path. Each target mutates the inputs of its corpus (tests/data/fuzz/<target>/) and checks what
// must hold whatever the input: nothing crashes, nothing stored changes unasked, and what is
// stored reads back as it was meant. The tests run each briefly; bench/ runs them long and
// prints executions per second.

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

class QRandomGenerator;

struct FuzzRun {
    qint64 executions = 0;
    double seconds = 0;
    // What did not hold, with the input that showed it (empty when all held).
    QStringList failures;
};

// The target names, in a fixed order.
QStringList FuzzTargets();
// Runs the target from the seed for the given number of executions or seconds, whichever ends
// first, on the corpus in corpusDir. A session (program directory, database) must be open for
// the targets that store.
FuzzRun RunFuzzTarget(const QString &target, quint32 seed, qint64 executions, double seconds, const QString &corpusDir);
// One mutation of the input: flipped bits, bytes put in or taken out, a piece of another
// corpus entry spliced in, a piece repeated, an awkward text put in.
QByteArray Mutate(QByteArray input, const QList<QByteArray> &corpus, QRandomGenerator &random);
