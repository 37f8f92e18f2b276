#include "controls.h"

#include <limits>

#include "core/platform/appstate.h"
#include "core/platform/modini.h"
#include "core/platform/programdir.h"
#include "core/platform/platform.h"

#include <QApplication>
#include <QScreen>
#include <cmath>
#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTreeWidget>

namespace {

void setBoxColours(QWidget *control, const QColor &base, const QColor &text)
{
    QPalette palette = control->palette();
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::Text, text);
    control->setPalette(palette);
}

bool isTextBox(const QWidget *control)
{
    return qobject_cast<const QLineEdit *>(control) || qobject_cast<const QComboBox *>(control) ||
           qobject_cast<const QPlainTextEdit *>(control);
}

} // namespace

QComboBox *NewEditableCombo(QWidget *parent, const char *name)
{
    auto *combo = Named(new QComboBox(parent), name);
    combo->setEditable(true);
    combo->setInsertPolicy(QComboBox::NoInsert);
    combo->setCompleter(nullptr);
    combo->setMaxVisibleItems(20);
    return combo;
}

void DisableControl(QWidget *control)
{
    control->setEnabled(false);
    if (isTextBox(control))
        setBoxColours(control, control->palette().color(QPalette::Button), control->palette().color(QPalette::Text));
    if (auto *list = qobject_cast<QTreeWidget *>(control))
        list->clearSelection();
}

void EnableControl(QWidget *control)
{
    control->setEnabled(true);
    // A text box's own colours are the desktop's (white on a light desktop, dark on a dark
    // one): the box takes its parent's palette again.
    if (isTextBox(control))
        control->setPalette(QPalette());
}

bool HasSelection(const QTreeWidget *list)
{
    return list->topLevelItemCount() > 0 && list->currentItem() && list->currentItem()->isSelected();
}

void SelectAllText(QLineEdit *box)
{
    box->setSelection(0, int(box->text().size()));
}

void FillRecipeTypes(QComboBox *combo)
{
    combo->addItems(RecipeTypes());
}

void InstallSeek(QComboBox *combo, bool (*enabled)())
{
    QLineEdit *edit = combo->lineEdit();
    if (!edit)
        return;
    // The text as typed before the last change: the completion's memory.
    auto typed = std::make_shared<QString>();
    QObject::connect(edit, &QLineEdit::textEdited, combo, [combo, edit, typed, enabled](const QString &text) {
        const bool deleting = text.size() <= typed->size();
        *typed = text;
        if (deleting || text.isEmpty() || !enabled())
            return;
        for (int i = 0; i < combo->count(); ++i) {
            const QString entry = combo->itemText(i);
            if (entry.size() > text.size() && entry.startsWith(text, Qt::CaseInsensitive)) {
                edit->setText(text + entry.mid(text.size()));
                edit->setSelection(int(entry.size()), -int(entry.size() - text.size()));
                return;
            }
        }
    });
    QObject::connect(edit, &QLineEdit::editingFinished, combo, [typed] { typed->clear(); });
}

WaitCursor::WaitCursor()
{
    QApplication::setOverrideCursor(Qt::WaitCursor);
}

WaitCursor::~WaitCursor()
{
    QApplication::restoreOverrideCursor();
}

QString NormaliseTimeText(const QString &text)
{
    QString digits = text;
    digits.remove(u':');
    const double value = std::round(Val(digits));
    if (std::abs(value) > 1e15)
        throw PlatformError(PlatformError::Overflow);
    return Format(qint64(value), QStringLiteral("00:00"));
}

void LoadIniList(QComboBox *combo, const QString &section)
{
    combo->addItems(IniListValues(IniPath(), section));
}

void AllowAnyLength(QWidget *window)
{
    for (QLineEdit *box : window->findChildren<QLineEdit *>())
        box->setMaxLength(std::numeric_limits<int>::max());
}

void FitToScreen(QWidget *window, int width, int height)
{
    const QWidget *over = QApplication::activeWindow();
    const QScreen *screen = over && over->screen() ? over->screen() : QGuiApplication::primaryScreen();
    if (!screen) {
        window->resize(width, height);
        return;
    }
    const QRect area = screen->availableGeometry();
    // The frame and title bar come on top of the size asked for.
    const QSize size(std::min(width, area.width() - 40), std::min(height, area.height() - 80));
    window->resize(size);
    window->move(area.center() - QPoint(size.width() / 2, size.height() / 2));
}
