#include "userinputblock.h"

#include <QCoreApplication>
#include <QEvent>
#include <QWidget>
#include <QWindow>

UserInputBlock::UserInputBlock(QWidget *except) : m_except(except)
{
    QCoreApplication::instance()->installEventFilter(this);
}

UserInputBlock::~UserInputBlock()
{
    QCoreApplication::instance()->removeEventFilter(this);
}

bool UserInputBlock::eventFilter(QObject *watched, QEvent *event)
{
    if (!event->spontaneous())
        return QObject::eventFilter(watched, event);
    if (m_except && event->type() != QEvent::Close) {
        const auto *widget = qobject_cast<const QWidget *>(watched);
        const auto *window = qobject_cast<const QWindow *>(watched);
        if ((widget && (widget == m_except || m_except->isAncestorOf(widget))) ||
            (window && window == m_except->windowHandle()))
            return QObject::eventFilter(watched, event);
    }
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        event->accept(); // claimed, so that no shortcut fires either
        return true;
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::Shortcut:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TabletPress:
    case QEvent::Close:
        return true;
    default:
        return QObject::eventFilter(watched, event);
    }
}
