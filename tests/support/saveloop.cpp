// Another household computer saving recipes: "saveloop COUNT LABEL" opens the registered
// collection and saves COUNT new recipes titled "LABEL n" as the editor does, each under the
// next free identifier. It prints "saved S failed F" and fails when any save failed.
// "saveloop --sql STATEMENT..." runs the statements instead, as another computer's menu or
// cabinet save writes them; it fails when one does.

#include "core/db/database.h"
#include "core/platform/voice.h"
#include "recipes/reciperepository.h"

#include <QCoreApplication>
#include <cstdio>

namespace {

// No one to ask: every failure goes to standard error.
class Unattended : public Voice
{
public:
    void report(const QString &text, const QString &title) override
    {
        std::fprintf(stderr, "%s: %s\n", qPrintable(title), qPrintable(text));
    }
};

RecipeData recipe(const QString &title, int n)
{
    RecipeData r;
    r.recipeType = QStringLiteral("Food");
    r.title = title;
    r.category = QStringLiteral("Soups");
    r.servings = QString::number(2 + n % 6);
    r.prepTime = QStringLiteral("00:15");
    r.cookTime = QStringLiteral("00:40");
    for (int line = 1; line <= 8; ++line)
        r.ingredients.append({QStringLiteral("%1").arg(line, 2, 10, QLatin1Char('0')), QStringLiteral("1/2"),
                              QStringLiteral("cup"), QStringLiteral("item %1 of %2").arg(line).arg(title),
                              QStringLiteral("item %1").arg(line)});
    for (int step = 1; step <= 3; ++step)
        r.directions.append({QStringLiteral("%1").arg(step, 2, 10, QLatin1Char('0')),
                             QStringLiteral("Step %1 of %2.").arg(step).arg(title)});
    return r;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    if (argc < 3)
        return 2;
    Unattended unattended;
    SetVoice(&unattended);
    OpenFailure failure;
    if (!OpenDatabase(&failure)) {
        std::fprintf(stderr, "saveloop: cannot open the collection: %s\n", qPrintable(failure.reason));
        return 1;
    }
    if (qstrcmp(argv[1], "--sql") == 0) {
        bool ran = true;
        for (int i = 2; i < argc; ++i)
            ran = !ExecuteSQL(QString::fromLocal8Bit(argv[i])).failed() && ran;
        CloseDatabase();
        return ran ? 0 : 1;
    }
    const int count = QString::fromLocal8Bit(argv[1]).toInt();
    const QString label = QString::fromLocal8Bit(argv[2]);
    int saved = 0;
    int failed = 0;
    for (int n = 1; n <= count; ++n) {
        QString problem;
        if (StoreRecipe(recipe(QStringLiteral("%1 %2").arg(label).arg(n), n), 0, false, &problem))
            ++saved;
        else
            ++failed;
    }
    std::printf("saved %d failed %d\n", saved, failed);
    CloseDatabase();
    return failed == 0 ? 0 : 1;
}
