#pragma once
// Which recipes the cabinet can make, kept by the database as ticks, cabinet items and
// ingredient lines change, so that "only what my cabinet holds" answers at once however large
// the collection. Kept for each recipe and cabinet type: how many of its lines have a cabinet
// item of that type, and how many of those items are not available. A recipe can be made when
// the first is above zero and the second is zero, which is what walking every line answers.

#include <QList>
#include <QString>

#include <optional>

// Makes the database keep the availability (a table and its triggers), filled once from what
// is stored, when the file does not keep it yet; on a server, a read-only or a damaged file it
// does nothing. True when the database keeps it.
bool KeepCabinetAvailability();
// True when the open database keeps the availability.
bool CabinetAvailabilityIsKept();
// The recipes that can be made with the cabinet of the type (its first letter counts), in
// ascending identifier order; nothing when the database does not keep the availability.
std::optional<QList<qint32>> KeptAvailableRecipes(const QString &recipeType);

// While it lives, inside the batch of an import, the recipes stored from the next free
// identifier on are counted once, at finish(), instead of line by line: an import stores
// hundreds of thousands of lines.
class CabinetAvailabilityBulk
{
public:
    CabinetAvailabilityBulk();
    ~CabinetAvailabilityBulk();
    // Counts the recipes stored meanwhile, after their new cabinet items were added; false when
    // a statement failed.
    bool finish();
    CabinetAvailabilityBulk(const CabinetAvailabilityBulk &) = delete;
    CabinetAvailabilityBulk &operator=(const CabinetAvailabilityBulk &) = delete;

private:
    qint64 m_from = 0; // 0 when the database does not keep the availability
};
