#pragma once
// The documents of the menu planner for the recipes below a node: the shopping list (the items
// the cabinet marks as out) and the needed amounts (every item with its amounts summed per
// measure, the items that are out in bold italic red).

#include <QString>
#include <QStringList>

// The identifiers as an SQL list: joined with ", ", or "-1" when there are none.
QString IdListText(const QStringList &ids);
// Whether two measures count as one when amounts are summed: without "." and "(s)", in upper
// case, one contains the other ('cup' and 'Cups'; an empty measure matches any).
bool SameMeasure(const QString &a, const QString &b);
// Composes and shows the list for the node's recipes, or says that there is nothing to show.
void ShowShoppingList(const QString &nodeText, const QStringList &ids);
void ShowNeededAmounts(const QString &nodeText, const QStringList &ids);
