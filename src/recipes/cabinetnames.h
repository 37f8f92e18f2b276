#pragma once
// The cabinet kept in step with the stored recipes: every cabinet name a recipe uses is an item
// of the cabinet of the recipe's type, so that the shopping lists know it.

#include "recipedata.h"

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>
#include <utility>

// Cabinet items gathered once each, names compared without regard to case: a name with the
// recipe type's letter ("F", "D", "O").
class CabinetNames
{
public:
    void add(const QString &name, const QString &type);
    void add(const RecipeData &recipe);
    const QList<std::pair<QString, QString>> &items() const { return m_items; }

private:
    QList<std::pair<QString, QString>> m_items;
    QSet<QString> m_seen;
    // The names met, as they were spelled, by type: an import's lines repeat a few names over
    // and over, and a name met before as it stands needs no folding.
    QHash<QString, QSet<QString>> m_spelled;
};

// Adds to the cabinet, as not available, the items it does not hold yet; added is called after
// each. Returns the names that could not be added.
QStringList AddCabinetItems(const CabinetNames &names, const std::function<void()> &added = {});
