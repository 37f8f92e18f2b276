#pragma once
// What the user does while a command runs is dropped, as on the original platform's modal
// sleep: a click on Save during the " has been saved!" notice must not save again, and a
// window must not be closed under a command that is still running.

#include <QObject>
#include <QPointer>

class QWidget;

class UserInputBlock : public QObject
{
public:
    // Input for the window except (and what it holds) still goes through: a Cancel button.
    explicit UserInputBlock(QWidget *except = nullptr);
    ~UserInputBlock() override;
    UserInputBlock(const UserInputBlock &) = delete;
    UserInputBlock &operator=(const UserInputBlock &) = delete;

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QPointer<QWidget> m_except;
};
