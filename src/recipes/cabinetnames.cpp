#include "cabinetnames.h"

#include "core/db/database.h"

namespace {

QString key(const QString &name, const QString &type)
{
    return name.toUpper() + u'\n' + type.toUpper();
}

} // namespace

void CabinetNames::add(const QString &name, const QString &type)
{
    QSet<QString> &spelled = m_spelled[type];
    if (spelled.contains(name))
        return;
    spelled.insert(name);
    const QString k = key(name, type);
    if (!m_seen.contains(k)) {
        m_seen.insert(k);
        m_items.append({name, type});
    }
}

void CabinetNames::add(const RecipeData &recipe)
{
    const QString type = recipe.recipeType.left(1);
    for (const IngredientLine &line : recipe.ingredients)
        add(line.cabinet, type);
}

QStringList AddCabinetItems(const CabinetNames &names, const std::function<void()> &added)
{
    QStringList refused;
    if (names.items().isEmpty())
        return refused;
    // Only the items not yet in the cabinet are inserted: an existing one would fail as a
    // duplicate, once for every item the household already has.
    CabinetNames present;
    for (Recordset rs = ExecuteSQL(QStringLiteral("SELECT item, type FROM CABINET")); rs && !rs.eof(); rs.MoveNext())
        present.add(rs.text(0), rs.text(1));
    for (const auto &[name, type] : names.items()) {
        const qsizetype before = present.items().size();
        present.add(name, type);
        if (present.items().size() == before)
            continue;
        gSQL = QStringLiteral("INSERT INTO CABINET VALUES ('") + name + QStringLiteral("', '") + type +
               QStringLiteral("', 0)");
        if (ExecuteSQL(gSQL).failed())
            refused.append(name);
        if (added)
            added();
    }
    return refused;
}
