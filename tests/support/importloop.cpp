// Another computer importing, to be killed at a random moment by the tests: "importloop FILE"
// opens the registered collection and imports the MealMaster file again and again;
// "importloop --transfer FILE" does the same with a transfer file, answering Yes to "import it
// again?". It says "importing" before its first import.

#include "core/db/database.h"
#include "core/ui/msgbox.h"
#include "transfer/ctransfer.h"
#include "transfer/mealmastercommands.h"

#include <QApplication>
#include <cstdio>

namespace {

// The household at this computer says Yes to every question.
class AlwaysYes : public Responder
{
public:
    MsgResult messageBox(const QString &, MsgStyle, const QString &) override { return MsgResult::Yes; }
    QString inputBox(const QString &, const QString &, const QString &defaultText) override { return defaultText; }
    QString fileName(const QString &, const QString &) override { return {}; }
    void showModal(QDialog *) override { }
    void wait(double) override { }
};

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    const bool transfer = argc == 3 && qstrcmp(argv[1], "--transfer") == 0;
    if ((argc != 2 && !transfer) || !OpenDatabase())
        return 2;
    const QString file = QString::fromLocal8Bit(argv[argc - 1]);
    AlwaysYes yes;
    SetResponder(&yes);
    std::puts("importing");
    std::fflush(stdout);
    for (;;) {
        if (transfer) {
            cTransfer importer;
            importer.FileName = file;
            importer.Import();
        } else {
            ImportMealMasterFiles({file});
        }
    }
}
