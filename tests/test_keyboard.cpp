// Every window can be worked without a mouse: Tab reaches each control that takes input, and
// no control keeps the Tab key for itself.

#include "cabinet/frmcabinet.h"
#include "core/shell/frmmain.h"
#include "core/ui/frmhelp.h"
#include "menus/frmmenu.h"
#include "quantities/frmresize.h"
#include "recipes/frmadd2.h"
#include "search/frmsearch.h"
#include "settings/frmmaint.h"
#include "settings/frmsettings.h"
#include "support/testsupport.h"

#include <QAbstractButton>
#include <QApplication>
#include <QImage>
#include <QScopeGuard>
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
    const auto check = [&](const QStringList &claims, const QString &where) {
        QMap<QChar, QStringList> byKey;
        for (const QString &text : claims)
            if (const QChar key = keyOf(text); !key.isNull())
                byKey[key] << text;
        for (auto it = byKey.cbegin(); it != byKey.cend(); ++it)
            if (it.value().size() > 1)
                clashes << where + QStringLiteral(" Alt+") + it.key() + QStringLiteral(": ") + it.value().join(u'/');
    };
    // A menu's entries answer among themselves, and so do those of each menu within it.
    std::function<void(QMenu *)> checkMenu = [&](QMenu *menu) {
        QStringList items;
        for (QAction *item : menu->actions()) {
            items << item->text();
            if (item->menu())
                checkMenu(item->menu());
        }
        check(items, menu->title());
    };
    QStringList claims;
    for (QWidget *w : window->findChildren<QWidget *>()) {
        if (!w->isVisibleTo(window))
            continue;
        if (auto *button = qobject_cast<QAbstractButton *>(w))
            claims << button->text();
        else if (auto *label = qobject_cast<QLabel *>(w); label && label->buddy())
            claims << label->text();
        else if (auto *group = qobject_cast<QGroupBox *>(w))
            claims << group->title();
        else if (auto *tabs = qobject_cast<QTabBar *>(w))
            for (int i = 0; i < tabs->count(); ++i)
                claims << tabs->tabText(i);
        else if (auto *bar = qobject_cast<QMenuBar *>(w))
            for (QAction *menu : bar->actions()) {
                claims << menu->text();
                if (menu->menu())
                    checkMenu(menu->menu());
            }
    }
    check(claims, window->windowTitle());
    return clashes;
}

// Each window as the program opens it, by name.
const QList<std::pair<const char *, std::function<std::unique_ptr<QWidget>()>>> kWindows {
    {"main window", [] { return std::make_unique<frmMain>(); }},
    {"search", [] { return std::make_unique<frmSearch>(); }},
    {"editor on one page", [] { return std::make_unique<frmAdd2>(); }},
    {"editor in tabs",
     [] {
         auto e = std::make_unique<frmAdd2>();
         e->TabbedView = true;
         return e;
     }},
    {"cabinet",
     [] {
         auto c = std::make_unique<frmCabinet>();
         c->Form_Load();
         return c;
     }},
    {"menu planner",
     [] {
         auto m = std::make_unique<frmMenu>();
         m->Form_Load();
         return m;
     }},
    {"settings", [] { return std::make_unique<frmSettings>(); }},
    {"list maintenance", [] { return std::make_unique<frmMaint>(); }},
    {"resize",
     [] {
         auto r = std::make_unique<frmResize>();
         r->OrigServings = 4;
         return r;
     }},
    {"chooser",
     [] {
         auto chooser = std::make_unique<frmSearch>();
         chooser->SetSelectionMode();
         return chooser;
     }},
    {"user manual", [] { return std::make_unique<frmHelp>(); }}};

} // namespace

class TestKeyboard : public SessionTest
{
    Q_OBJECT

private Q_SLOTS:
    void tabReachesEveryControl_data()
    {
        QTest::addColumn<int>("window");
        for (int i = 0; i < int(kWindows.size()); ++i)
            QTest::newRow(kWindows[i].first) << i;
    }
    void tabReachesEveryControl()
    {
        QFETCH(int, window);
        std::unique_ptr<QWidget> w = kWindows[window].second();
        const QStringList missing = unreached(w.get());
        QVERIFY2(missing.isEmpty(), qPrintable(missing.join(QStringLiteral(", "))));
        // Inside the screen's available area, at this scale too, wherever the window's layout
        // can be that small (the offscreen screen at twice the density is 400 by 400).
        const QRect area = w->screen()->availableGeometry();
        const QSize least = w->minimumSizeHint();
        if (least.width() <= area.width() - 40 && least.height() <= area.height() - 80)
            QCOMPARE(area.intersected(w->geometry()), w->geometry());
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
        std::unique_ptr<QWidget> w = kWindows[window].second();
        w->show();
        const QStringList clashes = clashingAccessKeys(w.get());
        QVERIFY2(clashes.isEmpty(), qPrintable(clashes.join(QStringLiteral("; "))));
        w->hide();
    }

    // On a dark desktop every window is dark: text boxes and lists on the desktop's own
    // colours, none forced white.
    void everyWindowTakesADarkPalette_data() { tabReachesEveryControl_data(); }
    void everyWindowTakesADarkPalette()
    {
        QFETCH(int, window);
        const QPalette light = QApplication::palette();
        const QPalette dark = DarkDesktopPalette();
        QApplication::setPalette(dark);
        const auto restore = qScopeGuard([&] { QApplication::setPalette(light); });
        std::unique_ptr<QWidget> w = kWindows[window].second();
        w->show();
        QVERIFY(QTest::qWaitForWindowExposed(w.get()));
        QCoreApplication::sendPostedEvents();
        const QImage shot = w->grab().toImage();
        QStringList lightBoxes;
        const auto check = [&](QWidget *box, QPoint at) {
            // The picture is in device pixels: twice the points at twice the density.
            const QPoint pixel = box->mapTo(w.get(), at) * shot.devicePixelRatio();
            if (box->isVisible() && shot.valid(pixel) && qGray(shot.pixel(pixel)) >= 128)
                lightBoxes << box->objectName() + u'/' + QLatin1String(box->metaObject()->className());
        };
        for (QLineEdit *box : w->findChildren<QLineEdit *>()) // right of any text, inside the frame
            check(box, QPoint(box->rect().right() - 4, box->rect().center().y()));
        for (QAbstractItemView *list : w->findChildren<QAbstractItemView *>())
            check(list->viewport(), list->viewport()->rect().bottomRight() - QPoint(3, 3));
        SaveScreenshot(w.get(), QStringLiteral("dark-") + QLatin1String(QTest::currentDataTag()));
        QVERIFY2(lightBoxes.isEmpty(), qPrintable(lightBoxes.join(QStringLiteral(", "))));
        w->hide();
    }
};

QTEST_MAIN(TestKeyboard)
#include "test_keyboard.moc"
