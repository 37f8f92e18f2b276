#pragma once
// Realistic recipe databases for the benchmarks.

#include <QHash>
#include <QProcessEnvironment>
#include <QString>

class QWidget;

#include <functional>
#include <memory>

// Creates the database file from the shipped schema and fills it with n recipes of 4 to 16
// ingredients and 3 to 10 directions each, plus the cabinet rows their ingredients name.
void GenerateRecipeDatabase(const QString &path, int recipes);

// A program directory with the shipped settings and a generated database, opened as the
// session's data source for the lifetime of the object; every question is answered Yes.
class BenchHome
{
public:
    explicit BenchHome(int recipes = 30000);
    ~BenchHome();
    QString path(const QString &name) const;

private:
    struct Private;
    std::unique_ptr<Private> d;
};

// Prints one figure as "name: value unit", with the goal when there is one.
// A figure of the process's memory from /proc/self/status ("VmRSS:", "VmHWM:"), in MiB.
double ProcessMiB(const char *field);
void PrintFigure(const char *name, double value, const char *unit, const char *goal = nullptr);
// Runs this benchmark again as a child with the arguments (and environment) and reads the
// "name: value" lines it prints; stops the benchmark when the child fails.
QHash<QByteArray, double>
RunChildFigures(const QStringList &arguments,
                const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment());
// How long the work takes, in milliseconds.
double TimedMs(const std::function<void()> &work);
// The median of a list of samples.
double Median(QList<double> samples);

// Lets the platform paint as soon as the event queue is empty instead of on its next frame;
// before the application is made. A click is then timed until what it changed stands painted.
void PaintWithoutFrameDelay();
// Runs the action (a click), then the event loop until the widget has been painted and no
// event is left: what the user waits for.
void RunUntilPainted(QWidget *widget, const std::function<void()> &action);
