#pragma once
// The transfer file without windows: a recipe's section written from the database and read
// back into it, and a whole file exported and imported. The transfer commands (cTransfer) ask
// and show; this does the work, and the tests run it without a display.

#include <QString>
#include <QStringList>

#include <functional>

class IniFile;

// The lines of the recipe's section: its eight fields, its ingredients and its directions, in
// the order the database gives them, escaped when a text needs it ("Escaped=True" then says
// so); none when there is no such recipe.
QStringList RecipeSectionLines(const QString &recipeId);
// The n-th field (from 1) of a value split at " | ", without the blanks at its ends; the last
// field runs to the end of the value; "" past the last field.
QString TransferSubItem(const QString &value, int n);

// Appends the recipes (seven-digit identifiers) to the file as the sections after Max, in one
// write. goOn is asked before each recipe (its number from 1); false stops the export with
// nothing written, and the function answers false.
bool ExportTransferSections(const QString &path, const QStringList &chosen, const std::function<bool(qsizetype)> &goOn);

// The recipes the file holds, as its progress counts them: Max when it is a usable count,
// else the numbered sections there are.
int TransferRecipeCount(const IniFile &file);
// Whether the file has been imported before ([Imported] Flag=True), and marking it so.
bool TransferFileImported(const IniFile &file);
void MarkTransferFileImported(IniFile &file);

struct TransferImport {
    int stored = 0;
    QStringList leftOut; // why a recipe or a line was left out, one line each
    QString notStored; // why nothing of the file was kept; "" when the recipes are stored
};
// Adds every recipe of the file as a new recipe, section by section from 1 to the first
// missing one, in one batch; progress is told each section's number first. A file cut short
// leaves its last recipe out whole.
TransferImport ImportTransferSections(const IniFile &file, const std::function<void(int)> &progress);

// Adds the recipe of one section's lines (key=value, in file order), the section-th of a file
// whose sections up to lastWhole are whole; true when the recipe was stored (some of its lines
// may have been left out, each named in leftOut).
bool RecipeProcess(const QStringList &lines, int section, int lastWhole, QStringList &leftOut);
