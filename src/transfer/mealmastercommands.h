#pragma once
// Tools > Transfer Files > Import MealMaster... and Export MealMaster...: collections brought in
// from MealMaster files and written out as one.

#include <QStringList>

// What an import came to.
struct MealMasterImportResult {
    int imported = 0;
    int rejected = 0;
    bool cancelled = false;
    // The database could not keep a file's recipes (full, busy, read-only): the import stopped.
    QString notStored;
    // The files the rejected recipes were written to, as they stood in their source.
    QStringList rejectedFiles;
    // Why each was rejected, one line each.
    QStringList reasons;
};

// Asks for one or more files, takes in their recipes and says how it went.
void ImportMealMaster();
// Takes in every recipe of the files as a new Food recipe, each stored whole or not at all;
// the rejected ones go, byte for byte, to "<name>-rejected<.ext>" beside their source.
// The progress window runs throughout, and its Cancel keeps what was imported.
MealMasterImportResult ImportMealMasterFiles(const QStringList &files);
// The words the import's closing message gives.
QString MealMasterImportSummary(const MealMasterImportResult &result);

// Chooses recipes in the search window and writes them to a MealMaster file.
void ExportMealMaster();
// Writes the recipes (seven-digit identifiers) to the file, replacing it in one step; the
// number written.
int ExportMealMasterFile(const QStringList &recipeIds, const QString &file);
