#pragma once
// The menu planner's tree: Recipe Groups under the root, dated days in a group, meals in a day,
// and recipes under any of these (and under recipes). The kind of a node is told by its key
// alone: "Root", "Title: n", "Day: n", dayKey + ", Meal: B|L|D", parentKey + ", ID: " + id.
//
// Beside the view, the tree keeps its nodes in the order they were made (a node always after
// its parent), so that saving and loading give back the same tree in the same order.

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

class QTreeWidget;
class QTreeWidgetItem;

enum class MenuNode { Root, Group, Day, Meal, Recipe };

inline const QString kRootKey = QStringLiteral("Root");
inline const QString kRootText = QStringLiteral("All Menus");

MenuNode KindOfKey(const QString &key);

class MenuTree
{
public:
    explicit MenuTree(QTreeWidget *view);

    QTreeWidget *view() const { return m_view; }
    // Adds a node under the node of parentKey ("" for the top level); nullptr when the key is
    // taken or there is no such parent.
    QTreeWidgetItem *add(const QString &parentKey, const QString &key, const QString &text);
    QTreeWidgetItem *find(const QString &key) const { return m_byKey.value(key); }
    // Removes the node with everything below it.
    void remove(QTreeWidgetItem *node);
    // Moves the node, with everything below it, one place up (-1) or down (+1) among its
    // siblings; false when it stands first or last already.
    bool move(QTreeWidgetItem *node, int direction);
    void clear();
    // Every node, in the order it was made.
    const QList<QTreeWidgetItem *> &nodes() const { return m_order; }

    static QString keyOf(const QTreeWidgetItem *node);
    static QString parentKeyOf(const QTreeWidgetItem *node);

private:
    QTreeWidget *m_view;
    QHash<QString, QTreeWidgetItem *> m_byKey;
    QList<QTreeWidgetItem *> m_order;
};

// Loads the stored tree ("SELECT * FROM MENU ORDER BY ID"); an empty table gives the root
// alone. Rows whose parent is not in the tree (or whose key is taken) are left out and their
// texts answered.
// The stored menu's fingerprint (when asked for) is what a later save compares with, to find
// another computer's changes.
QStringList LoadMenu(MenuTree &tree, QByteArray *fingerprint = nullptr);
// The stored menu's fingerprint as it is now: every row, in order.
QByteArray StoredMenuFingerprint();
// What a save of the menu did: nothing is stored unless saved().
struct MenuSaveResult {
    const QTreeWidgetItem *failedNode = nullptr; // the node whose row the database refused
    QString failure; // why the database could not keep the menu, in the household's words
    bool changedElsewhere = false; // the stored menu is no longer the one this tree was loaded from
    QByteArray fingerprint; // the stored menu's, once saved
    bool saved() const { return !failedNode && failure.isEmpty() && !changedElsewhere; }
};
// Stores the whole tree in its order, all or nothing. With a fingerprint, nothing is written
// when the stored menu has changed since (another computer saved its menu): changedElsewhere.
MenuSaveResult SaveMenu(const MenuTree &tree, const QByteArray &loadedFingerprint = {});
// The number for the next "Title: " or "Day: " key: one more than the largest after "Day:"
// or "Title:" in any key.
qint32 NextNodeNumber(const MenuTree &tree);
// The recipe identifiers below the node (each " " + id, as written in the keys), in tree
// order; a recipe's own sub recipes are not gathered.
QStringList GatherRecipeIds(const QTreeWidgetItem *start);
