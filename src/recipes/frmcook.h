#pragma once
// Cooking mode: a recipe at the stove, readable from a few steps away. The ingredients (ticked
// off as they are used) beside the current step in large type; the keyboard alone moves through
// the steps (Space or Right, Left, Home, End; Escape leaves). The type grows with the window;
// Ctrl+plus and Ctrl+minus change its size, Ctrl+D the dark and light look. The times written
// in the step are buttons: each starts a timer named after its step, all of them shown from
// any step, and one that ends rings until it is acknowledged (Enter, or a click on it), and is
// told by the desktop when the window is not the one in front. While it is shown the screen
// does not blank.

#include "recipedata.h"

#include <QElapsedTimer>
#include <QWidget>

#include <memory>

class QLabel;
class QListWidget;
class QHBoxLayout;
class QTimer;
class ScreenKeptOn;

class frmCook : public QWidget
{
    Q_OBJECT
public:
    explicit frmCook(const RecipeData &recipe, qint32 recipeId, QWidget *parent = nullptr);
    ~frmCook() override;

    QListWidget *lstIngredients;
    QLabel *lblStep;
    QLabel *lblDirection;
    QListWidget *lstTimers;

    int step() const { return m_step; }
    void showStep(int step);
    // Starts a timer of the current step.
    void startTimer(const QString &written, int seconds);
    // Whether a timer has ended and rings until acknowledged.
    bool ringing() const;
    void acknowledge();
    // Counts the running timers down by the seconds (the clock does so every second).
    void tick(int seconds);
    int fontSize() const { return m_fontSize; }
    bool dark() const { return m_dark; }

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    struct Timer {
        QString name;
        int left;
        bool ringing = false;
    };
    void applyLook();
    void applySizes();
    void showTimers();

    RecipeData m_recipe;
    qint32 m_recipeId;
    int m_step = 0;
    int m_fontSize = 28;
    bool m_dark = true;
    QHBoxLayout *m_timeButtons;
    QList<Timer> m_timers;
    QTimer *m_clock;
    std::unique_ptr<ScreenKeptOn> m_screenOn;
};

// Opens cooking mode on the stored recipe, full screen.
void ShowCookingMode(qint32 recipeId);
// The same for a recipe as the editor holds it (resized, perhaps not saved); the step reached
// is remembered by its identifier, when it has one.
void ShowCookingMode(const RecipeData &recipe, qint32 recipeId);
