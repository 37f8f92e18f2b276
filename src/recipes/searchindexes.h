#pragma once
// What the file database keeps for the searches, in step with every change through triggers of
// its own, so that searches answer at once however large the collection grows:
// - which recipes the cabinet can make: for each recipe and cabinet type, how many of its lines
//   have a cabinet item of that type and how many of those items are not available (a recipe
//   can be made when the first is above zero and the second zero, which is what walking every
//   line answers);
// - the ingredient index: each line's text in upper case, found by its trigrams, which narrows
//   the ingredient search to the lines that can hold the text.
// On a server, trigram indexes of titles and ingredient texts (pg_trgm) serve its LIKE directly,
// and the server counts the cabinet's lines itself.

#include <QList>
#include <QString>

#include <optional>

// Makes the database keep both (tables and their triggers), filled once from what is stored,
// when the file does not keep them yet; a server its trigram indexes; a read-only or damaged
// file nothing. True when the database keeps them.
bool KeepSearchIndexes();
// True when the open database keeps them.
bool SearchIndexesAreKept();
// The recipes that can be made with the cabinet of the type (its first letter counts), in
// ascending identifier order; nothing when the database does not keep the availability (a
// server always counts it).
std::optional<QList<qint32>> KeptAvailableRecipes(const QString &recipeType);

// The condition on a recipe search's recipes "A" that keeps those KeptAvailableRecipes lists
// for the type; "" when the database keeps no availability.
QString KeptAvailabilityCondition(const QString &recipeType);

// While it lives, inside the batch of an import (outside one it does nothing), the recipes
// stored from the next free identifier on are counted and indexed once, at finish(), instead of
// line by line: an import stores hundreds of thousands of lines.
class SearchIndexesBulk
{
public:
    SearchIndexesBulk();
    ~SearchIndexesBulk();
    // Counts the recipes stored meanwhile, after their new cabinet items were added; false when
    // a statement failed.
    bool finish();
    SearchIndexesBulk(const SearchIndexesBulk &) = delete;
    SearchIndexesBulk &operator=(const SearchIndexesBulk &) = delete;

private:
    qint64 m_from = 0; // 0 when the database does not keep the availability
};
