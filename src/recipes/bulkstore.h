#pragma once
// The recipes of a large import stored with statements prepared once and their values bound,
// on the file database inside the import's batch. What was stored is read back afterwards in
// one pass and compared with a digest kept per recipe: a recipe stored otherwise than it was
// read is removed again and named, in the same batch.

#include "recipedata.h"

#include <QList>

#include <memory>
#include <vector>

class BulkRecipeStore
{
public:
    BulkRecipeStore();
    ~BulkRecipeStore();
    BulkRecipeStore(const BulkRecipeStore &) = delete;
    BulkRecipeStore &operator=(const BulkRecipeStore &) = delete;

    // Stores the recipe under the next free identifier, as StoreRecipe does (its cabinet names
    // left to the caller); false, with the problem when one is known, when it was not stored.
    // A recipe the statements would judge otherwise than binding does (an apostrophe in a
    // text) takes StoreRecipe's way, and so does every recipe on a server.
    bool store(const RecipeData &recipe, QString *problem, qint32 *storedId);

    struct Removed {
        qint32 id;
        QString title;
        std::size_t stored; // its place among the recipes stored, from 0
    };
    // Reads back every recipe stored and removes those that differ from what was meant; false
    // when a statement failed, and the batch with it. On a server, where every recipe took
    // StoreRecipe's way and was read back there, there is nothing more to read.
    bool verify(QList<Removed> &removed);

private:
    struct Statements;
    bool bind(const RecipeData &recipe, qint32 id);

    std::unique_ptr<Statements> m_statements; // on the file database, inside a batch
    qint32 m_first = 0; // the first identifier stored, 0 before
    std::vector<quint64> m_digests; // by identifier from m_first on
};

// The digest the bulk store compares: every stored field and line number of the recipe.
quint64 RecipeDigest(const RecipeData &recipe);
