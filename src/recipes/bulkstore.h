#pragma once
// The recipes of a large import stored with statements prepared once and their values bound,
// on the file database inside the import's batch. Recipes are gathered and written five
// hundred at a time, table by table, so that each table's pages lie together as a rewrite in
// order would leave them. What was stored is read back afterwards in one pass and compared with
// a digest kept per recipe: a recipe stored otherwise than it was read is removed again and
// named, in the same batch.

#include "recipedata.h"

#include <QByteArray>
#include <QList>

#include <memory>
#include <vector>

// A recipe made ready for binding: its texts in UTF-8, one after the other, and their digest.
// It needs no database, so an import makes it while the database stores the recipes before.
class BoundRecipe
{
public:
    explicit BoundRecipe(const RecipeData &recipe);

    // Whether the statements would carry every text as it stands (no apostrophe, which they
    // may take for a delimiter, no NUL, no half of a surrogate pair) and the line numbers rise:
    // else the recipe takes StoreRecipe's way.
    bool bindable() const { return m_bindable; }

private:
    friend class BulkRecipeStore;
    struct Text {
        qsizetype at;
        qsizetype size;
    };
    struct Line {
        qint64 number;
        Text fields[4]; // amount, measure, ingredient, cabinet
    };
    struct Step {
        qint64 number;
        Text direction;
    };
    QByteArrayView bytes(Text text) const { return QByteArrayView(m_texts).sliced(text.at, text.size); }

    bool m_bindable = false;
    QByteArray m_texts;
    Text m_fields[8] {}; // type, servings, category, title, prep and cook times, notes, rating
    std::vector<Line> m_lines;
    std::vector<Step> m_steps;
    quint64 m_digest = 0;
};

class BulkRecipeStore
{
public:
    BulkRecipeStore();
    ~BulkRecipeStore();
    BulkRecipeStore(const BulkRecipeStore &) = delete;
    BulkRecipeStore &operator=(const BulkRecipeStore &) = delete;

    // Takes the recipe under the next free identifier, as StoreRecipe does (its cabinet names
    // left to the caller); false, with the problem when one is known, when it was not stored.
    // A recipe that is not bindable() takes StoreRecipe's way at once, and so does every recipe
    // on a server. A bound recipe is written with the next five hundred, or by verify(). The
    // bound form is made here when the caller has none.
    bool store(const RecipeData &recipe, QString *problem, qint32 *storedId, BoundRecipe *bound = nullptr);

    struct Removed {
        qint32 id;
        QString title;
        std::size_t stored; // its place among the recipes stored, from 0
        QString problem;
    };
    // Writes what is gathered, reads back every recipe stored and removes those that differ
    // from what was meant; false when a statement failed, and the batch with it. On a server,
    // where every recipe took StoreRecipe's way and was read back there, there is nothing more
    // to read.
    bool verify(QList<Removed> &removed);

private:
    struct Statements;
    struct Gathered {
        qint32 id;
        std::size_t stored;
        BoundRecipe recipe;
    };
    bool write();

    std::unique_ptr<Statements> m_statements; // on the file database, inside a batch
    qint32 m_first = 0; // the first identifier stored, 0 before
    // By identifier from m_first on; 0 for a recipe read back already (StoreRecipe's way).
    std::vector<quint64> m_digests;
    QList<Removed> m_refused; // by the engine while written
    std::vector<Gathered> m_recipes; // waiting to be written
};
