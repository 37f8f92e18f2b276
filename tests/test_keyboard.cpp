// Every window can be worked without a mouse: Tab reaches each control that takes input, and
// no control keeps the Tab key for itself.

#include "cabinet/frmcabinet.h"
#include "core/shell/frmmain.h"
#include "menus/frmmenu.h"
#include "quantities/frmresize.h"
#include "recipes/frmadd2.h"
#include "search/frmsearch.h"
#include "settings/frmmaint.h"
#include "settings/frmsettings.h"
#include "support/testsupport.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QRadioButton>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTabBar>
#include <QScreen>
#include <QTest>
#include <QTextEdit>

#include <functional>

namespace {

bool takesInput(const QWidget *w)
{
    return qobject_cast<const QAbstractButton *>(w) || qobject_cast<const QLineEdit *>(w) ||
           qobject_cast<const QComboBox *>(w) || qobject_cast<const QAbstractItemView *>(w) ||
           qobject_cast<const QPlainTextEdit *>(w) || qobject_cast<const QTextEdit *>(w) ||
           qobject_cast<const QAbstractSpinBox *>(w) || qobject_cast<const QTabBar *>(w);
}

// The controls that take input, are shown and enabled, and that Tab (pressed round the whole
// window) never reaches; by object name, or class where there is none.
QStringList unreached(QWidget *window)
{
    window->show();
    window->activateWindow();
    if (!QTest::qWaitForWindowActive(window))
        return {QStringLiteral("the window never became active")};
    QSet<const QWidget *> reached;
    for (int press = 0; press < 200; ++press) {
        QWidget *focus = QApplication::focusWidget();
        if (!focus)
            break;
        // A combo box's line edit stands for the box.
        while (focus->focusProxy())
            focus = focus->focusProxy();
        reached.insert(focus);
        if (auto *combo = qobject_cast<QComboBox *>(focus->parentWidget()))
            reached.insert(combo);
        QTest::keyClick(focus, Qt::Key_Tab);
    }
    QStringList missing;
    for (QWidget *w : window->findChildren<QWidget *>()) {
        if (!takesInput(w) || !w->isVisible() || !w->isEnabled() || reached.contains(w))
            continue;
        // The text of a combo box or spin box is reached with its box.
        if (qobject_cast<QLineEdit *>(w) && reached.contains(w->parentWidget()))
            continue;
        // An exclusive group of option buttons is one stop: the arrows choose within it.
        if (auto *option = qobject_cast<QRadioButton *>(w); option && option->autoExclusive()) {
            const auto siblings = w->parentWidget()->findChildren<QRadioButton *>(Qt::FindDirectChildrenOnly);
            if (std::any_of(siblings.begin(), siblings.end(), [&](QRadioButton *b) { return reached.contains(b); }))
                continue;
        }
        // Column headers sort with the mouse; the list itself is reached. The tab bar's scroll
        // buttons and Qt's other inner parts are not stops of their own.
        if (qobject_cast<QHeaderView *>(w) || qobject_cast<QTabBar *>(w->parentWidget()) ||
            w->objectName().startsWith(QLatin1String("qt_")))
            continue;
        missing << (w->objectName().isEmpty() ? QLatin1String(w->metaObject()->className()) : w->objectName());
    }
    return missing;
}

// The access keys (Alt+letter) that more than one shown control of the window claims: buttons,
// labels of a box, group boxes, tabs and the menu bar's menus; each menu's entries apart.
QStringList clashingAccessKeys(QWidget *window)
{
    QStringList clashes;
    const auto keyOf = [](const QString &text) {
        for (qsizetype i = text.indexOf(u'&'); i >= 0 && i + 1 < text.size(); i = text.indexOf(u'&', i + 2)) {
            if (text[i + 1] != u'&')
                return text[i + 1].toUpper();
        }
        return QChar();
    };
    const auto check = [&](const QList<std::pair<QString, QString>> &claims, const QString &where) {
        QMap<QChar, QStringList> byKey;
        for (const auto &[text, who] : claims)
            if (const QChar key = keyOf(text); !key.isNull())
                byKey[key] << who;
        for (auto it = byKey.cbegin(); it != byKey.cend(); ++it)
            if (it.value().size() > 1)
                clashes << where + QStringLiteral(" Alt+") + it.key() + QStringLiteral(": ") + it.value().join(u'/');
    };
    // A menu's entries answer among themselves, and so do those of each menu within it.
    std::function<void(QMenu *)> checkMenu = [&](QMenu *menu) {
        QList<std::pair<QString, QString>> items;
        for (QAction *item : menu->actions()) {
            items.append({item->text(), item->text()});
            if (item->menu())
                checkMenu(item->menu());
        }
        check(items, menu->title());
    };
    QList<std::pair<QString, QString>> claims;
    for (QWidget *w : window->findChildren<QWidget *>()) {
        if (!w->isVisibleTo(window))
            continue;
        if (auto *button = qobject_cast<QAbstractButton *>(w))
            claims.append({button->text(), button->text()});
        else if (auto *label = qobject_cast<QLabel *>(w); label && label->buddy())
            claims.append({label->text(), label->text()});
        else if (auto *group = qobject_cast<QGroupBox *>(w))
            claims.append({group->title(), group->title()});
        else if (auto *tabs = qobject_cast<QTabBar *>(w))
            for (int i = 0; i < tabs->count(); ++i)
                claims.append({tabs->tabText(i), tabs->tabText(i)});
        else if (auto *bar = qobject_cast<QMenuBar *>(w))
            for (QAction *menu : bar->actions()) {
                claims.append({menu->text(), menu->text()});
                if (menu->menu())
                    checkMenu(menu->menu());
            }
    }
    check(claims, window->windowTitle());
    return clashes;
}

std::unique_ptr<QWidget> makeWindow(int window)
{
    std::unique_ptr<QWidget> w;
    switch (window) {
    case 0:
        w = std::make_unique<frmMain>();
        break;
    case 1:
        w = std::make_unique<frmSearch>();
        break;
    case 2:
    case 3: {
        auto e = std::make_unique<frmAdd2>();
        e->TabbedView = window == 3;
        w = std::move(e);
        break;
    }
    case 4: {
        auto c = std::make_unique<frmCabinet>();
        c->Form_Load();
        w = std::move(c);
        break;
    }
    case 5: {
        auto m = std::make_unique<frmMenu>();
        m->Form_Load();
        w = std::move(m);
        break;
    }
    case 6:
        w = std::make_unique<frmSettings>();
        break;
    case 7:
        w = std::make_unique<frmMaint>();
        break;
    case 8: {
        auto r = std::make_unique<frmResize>();
        r->OrigServings = 4;
        w = std::move(r);
        break;
    }
    default: {
        auto chooser = std::make_unique<frmSearch>();
        chooser->SetSelectionMode();
        w = std::move(chooser);
    }
    }
    return w;
}

const char *const kWindowNames[] = {"main window",  "search",   "editor on one page", "editor in tabs", "cabinet",
                                    "menu planner", "settings", "list maintenance",   "resize",         "chooser"};

} // namespace

class TestKeyboard : public SessionTest
{
    Q_OBJECT

private Q_SLOTS:
    void tabReachesEveryControl_data()
    {
        QTest::addColumn<int>("window");
        for (int i = 0; i < int(std::size(kWindowNames)); ++i)
            QTest::newRow(kWindowNames[i]) << i;
    }
    void tabReachesEveryControl()
    {
        QFETCH(int, window);
        std::unique_ptr<QWidget> w = makeWindow(window);
        const QStringList missing = unreached(w.get());
        QVERIFY2(missing.isEmpty(), qPrintable(missing.join(QStringLiteral(", "))));
        // Inside the screen's available area, at this scale too, wherever the window's layout
        // can be that small (the offscreen screen at twice the density is 400 by 400).
        const QRect area = w->screen()->availableGeometry();
        const QSize least = w->minimumSizeHint();
        if (least.width() <= area.width() - 40 && least.height() <= area.height() - 80)
            QVERIFY2(area.contains(w->geometry()), qPrintable(QStringLiteral("%1,%2 %3x%4 outside %5x%6")
                                                                  .arg(w->x())
                                                                  .arg(w->y())
                                                                  .arg(w->width())
                                                                  .arg(w->height())
                                                                  .arg(area.width())
                                                                  .arg(area.height())));
        // For a look by eye at the scale the run was started with (QT_SCALE_FACTOR).
        SaveScreenshot(w.get(),
                       QStringLiteral("scale%1-").arg(w->devicePixelRatioF()) + QLatin1String(QTest::currentDataTag()));
        w->hide();
    }

    // No two shown controls of a window answer to the same Alt+letter (nor two entries of a menu).
    void accessKeysAreUnique_data() { tabReachesEveryControl_data(); }
    void accessKeysAreUnique()
    {
        QFETCH(int, window);
        std::unique_ptr<QWidget> w = makeWindow(window);
        w->show();
        const QStringList clashes = clashingAccessKeys(w.get());
        QVERIFY2(clashes.isEmpty(), qPrintable(clashes.join(QStringLiteral("; "))));
        w->hide();
    }
};

QTEST_MAIN(TestKeyboard)
#include "test_keyboard.moc"
