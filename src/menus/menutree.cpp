#include "menutree.h"

#include <QCryptographicHash>

#include "core/db/database.h"
#include "core/platform/platform.h"

#include <QSet>
#include <QTreeWidget>

#include <cmath>

namespace {

constexpr int kKeyRole = Qt::UserRole;

// The number written after the marker in the key (blanks skipped), or 0.
double numberAfter(const QString &key, QLatin1String marker)
{
    const qsizetype at = key.indexOf(marker);
    return at < 0 ? 0 : Val(key.mid(at + marker.size()));
}

void gather(const QTreeWidgetItem *node, QStringList &ids)
{
    const QString key = MenuTree::keyOf(node);
    if (const qsizetype at = key.indexOf(QLatin1String("ID:")); at >= 0) {
        ids.append(key.mid(at + 3));
        return;
    }
    for (int i = 0; i < node->childCount(); ++i)
        gather(node->child(i), ids);
}

} // namespace

MenuNode KindOfKey(const QString &key)
{
    if (key.contains(QLatin1String("ID:")))
        return MenuNode::Recipe;
    if (key.contains(QLatin1String("Meal:")))
        return MenuNode::Meal;
    if (key.contains(QLatin1String("Day:")))
        return MenuNode::Day;
    if (key.contains(QLatin1String("Title:")))
        return MenuNode::Group;
    return MenuNode::Root;
}

MenuTree::MenuTree(QTreeWidget *view) : m_view(view) { }

QString MenuTree::keyOf(const QTreeWidgetItem *node)
{
    return node ? node->data(0, kKeyRole).toString() : QString();
}

QString MenuTree::parentKeyOf(const QTreeWidgetItem *node)
{
    return node ? keyOf(node->parent()) : QString();
}

QTreeWidgetItem *MenuTree::add(const QString &parentKey, const QString &key, const QString &text)
{
    if (m_byKey.contains(key))
        return nullptr;
    QTreeWidgetItem *parent = parentKey.isEmpty() ? nullptr : m_byKey.value(parentKey);
    if (!parentKey.isEmpty() && !parent)
        return nullptr;
    auto *node = new QTreeWidgetItem(QStringList {text});
    node->setData(0, kKeyRole, key);
    if (parent)
        parent->addChild(node);
    else
        m_view->addTopLevelItem(node);
    m_byKey.insert(key, node);
    m_order.append(node);
    return node;
}

void MenuTree::remove(QTreeWidgetItem *node)
{
    QSet<const QTreeWidgetItem *> gone;
    QList<QTreeWidgetItem *> pending {node};
    while (!pending.isEmpty()) {
        QTreeWidgetItem *item = pending.takeLast();
        gone.insert(item);
        m_byKey.remove(keyOf(item));
        for (int i = 0; i < item->childCount(); ++i)
            pending.append(item->child(i));
    }
    m_order.removeIf([&gone](const QTreeWidgetItem *item) { return gone.contains(item); });
    delete node; // takes its children along and leaves the view
}

bool MenuTree::move(QTreeWidgetItem *node, int direction)
{
    QTreeWidgetItem *parent = node->parent();
    const int at = parent ? parent->indexOfChild(node) : m_view->indexOfTopLevelItem(node);
    const int to = at + direction;
    const int siblings = parent ? parent->childCount() : m_view->topLevelItemCount();
    if (at < 0 || to < 0 || to >= siblings)
        return false;
    const bool expanded = node->isExpanded();
    if (parent) {
        parent->takeChild(at);
        parent->insertChild(to, node);
    } else {
        m_view->takeTopLevelItem(at);
        m_view->insertTopLevelItem(to, node);
    }
    node->setExpanded(expanded);
    // The order a save walks is the view's from now on: each node after its parent, siblings
    // as they stand.
    m_order.clear();
    QList<QTreeWidgetItem *> pending;
    for (int i = m_view->topLevelItemCount() - 1; i >= 0; --i)
        pending.append(m_view->topLevelItem(i));
    while (!pending.isEmpty()) {
        QTreeWidgetItem *item = pending.takeLast();
        m_order.append(item);
        for (int i = item->childCount() - 1; i >= 0; --i)
            pending.append(item->child(i));
    }
    return true;
}

void MenuTree::clear()
{
    m_view->clear();
    m_byKey.clear();
    m_order.clear();
}

namespace {

void addToFingerprint(QCryptographicHash &hash, const Recordset &rs, int parent, int key, int text)
{
    for (const QString &field : {rs.text(parent), rs.text(key), rs.text(text)}) {
        hash.addData(field.toUtf8());
        hash.addData(QByteArrayView("\0", 1));
    }
}

} // namespace

QStringList LoadMenu(MenuTree &tree, QByteArray *fingerprint)
{
    tree.clear();
    QStringList leftOut;
    QCryptographicHash hash(QCryptographicHash::Sha256);
    Recordset rs = ExecuteSQL(QStringLiteral("SELECT * FROM MENU ORDER BY ID"));
    if (!rs || rs.eof()) {
        tree.add(QString(), kRootKey, kRootText);
    } else {
        const int parent = rs.columnIndex(QStringLiteral("parent"));
        const int key = rs.columnIndex(QStringLiteral("key"));
        const int text = rs.columnIndex(QStringLiteral("text"));
        for (; !rs.eof(); rs.MoveNext()) {
            addToFingerprint(hash, rs, parent, key, text);
            if (!tree.add(rs.text(parent), rs.text(key), rs.text(text)))
                leftOut.append(rs.text(text));
        }
    }
    if (fingerprint)
        *fingerprint = hash.result();
    if (!tree.nodes().isEmpty())
        tree.nodes().first()->setExpanded(true);
    return leftOut;
}

QByteArray StoredMenuFingerprint()
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    Recordset rs = ExecuteSQL(QStringLiteral("SELECT * FROM MENU ORDER BY ID"));
    if (rs) {
        const int parent = rs.columnIndex(QStringLiteral("parent"));
        const int key = rs.columnIndex(QStringLiteral("key"));
        const int text = rs.columnIndex(QStringLiteral("text"));
        for (; !rs.eof(); rs.MoveNext())
            addToFingerprint(hash, rs, parent, key, text);
    }
    return hash.result();
}

MenuSaveResult SaveMenu(const MenuTree &tree, const QByteArray &loadedFingerprint)
{
    // The old menu stays until the whole new one is stored.
    StatementBatch batch;
    if (!batch.begun())
        return {nullptr, batch.failure()};
    // Compared while this computer holds the writers' turn: no other save can slip in between.
    if (!loadedFingerprint.isEmpty() && StoredMenuFingerprint() != loadedFingerprint) {
        MenuSaveResult changed;
        changed.changedElsewhere = true;
        return changed;
    }
    if (ExecuteSQL(QStringLiteral("DELETE * FROM MENU")).failed())
        return {batch.failure().isEmpty() ? tree.nodes().value(0) : nullptr, batch.failure()};
    int n = 0;
    for (const QTreeWidgetItem *node : tree.nodes()) {
        const QString sql = QStringLiteral("INSERT INTO MENU VALUES (") + QString::number(n++) + QStringLiteral(", '") +
                            MenuTree::parentKeyOf(node) + QStringLiteral("', '") + MenuTree::keyOf(node) +
                            QStringLiteral("', '") + node->text(0) + QStringLiteral("')");
        if (ExecuteSQL(sql).failed())
            return {batch.failure().isEmpty() ? node : nullptr, batch.failure()};
    }
    MenuSaveResult result;
    result.fingerprint = StoredMenuFingerprint();
    if (!batch.commit())
        return {nullptr, batch.failure()};
    return result;
}

qint32 NextNodeNumber(const MenuTree &tree)
{
    double largest = 0;
    for (const QTreeWidgetItem *node : tree.nodes()) {
        const QString key = MenuTree::keyOf(node);
        largest =
            std::max({largest, numberAfter(key, QLatin1String("Day:")), numberAfter(key, QLatin1String("Title:"))});
    }
    if (!(largest < 2147483647.0))
        throw PlatformError(PlatformError::Overflow);
    return qint32(std::floor(largest)) + 1;
}

QStringList GatherRecipeIds(const QTreeWidgetItem *start)
{
    QStringList ids;
    if (start)
        gather(start, ids);
    return ids;
}
