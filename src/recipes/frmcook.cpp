#include "frmcook.h"

#include "cookingtimes.h"
#include "reciperepository.h"

#include "core/ui/controls.h"
#include "core/ui/desktopsession.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QHash>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace {

// The step reached in each recipe, for the session.
QHash<qint32, int> &stepsReached()
{
    static QHash<qint32, int> reached;
    return reached;
}

QString clockText(int seconds)
{
    return seconds >= 3600 ? QStringLiteral("%1:%2:%3")
                                 .arg(seconds / 3600)
                                 .arg(seconds / 60 % 60, 2, 10, QLatin1Char('0'))
                                 .arg(seconds % 60, 2, 10, QLatin1Char('0'))
                           : QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

} // namespace

frmCook::frmCook(const RecipeData &recipe, qint32 recipeId, QWidget *parent)
    : QWidget(parent, Qt::Window), m_recipe(recipe), m_recipeId(recipeId)
{
    setObjectName(QStringLiteral("frmCook"));
    setWindowTitle(QStringLiteral("Cooking: ") + recipe.title);
    setAttribute(Qt::WA_DeleteOnClose);
    lstIngredients = Named(new QListWidget(this), "lstIngredients");
    lstIngredients->setFocusPolicy(Qt::NoFocus); // the keys belong to the steps
    lstIngredients->setWordWrap(true);
    for (const IngredientLine &line : recipe.ingredients) {
        QStringList parts;
        for (const QString &part : {line.amount, line.measure, line.ingredient})
            if (part != u"---" && !part.isEmpty())
                parts << part;
        auto *item = new QListWidgetItem(parts.join(u' '), lstIngredients);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
        item->setCheckState(Qt::Unchecked);
    }
    lblStep = Named(new QLabel(this), "lblStep");
    lblDirection = Named(new QLabel(this), "lblDirection");
    lblDirection->setWordWrap(true);
    lblDirection->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    lstTimers = Named(new QListWidget(this), "lstTimers");
    lstTimers->setFocusPolicy(Qt::NoFocus);
    lstTimers->setMaximumHeight(160);
    connect(lstTimers, &QListWidget::itemClicked, this, [this] { acknowledge(); });

    auto *right = new QVBoxLayout;
    right->addWidget(lblStep);
    right->addWidget(lblDirection, 1);
    m_timeButtons = new QHBoxLayout;
    right->addLayout(m_timeButtons);
    right->addWidget(lstTimers);
    auto *layout = new QHBoxLayout(this);
    layout->addWidget(lstIngredients, 1);
    layout->addLayout(right, 2);

    m_clock = new QTimer(this);
    m_clock->setInterval(1000);
    connect(m_clock, &QTimer::timeout, this, [this] { tick(1); });
    applyLook();
    showStep(stepsReached().value(recipeId, 0));
    showTimers();
    FitToScreen(this, 1000, 700); // full screen when shown by the program
}

void frmCook::showStep(int step)
{
    const int last = int(m_recipe.directions.size()) - 1;
    m_step = std::clamp(step, 0, std::max(0, last));
    if (m_recipeId != 0) // a recipe not yet saved has nothing to be known by
        stepsReached()[m_recipeId] = m_step;
    lblStep->setText(last < 0 ? QStringLiteral("No directions")
                              : QStringLiteral("Step %1 of %2").arg(m_step + 1).arg(last + 1));
    const QString direction = last < 0 ? QString() : m_recipe.directions[m_step].direction;
    lblDirection->setText(direction);
    while (QLayoutItem *item = m_timeButtons->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    for (const CookingTime &time : FindCookingTimes(direction)) {
        auto *button = new QPushButton(QStringLiteral("Timer: ") + time.written, this);
        button->setFocusPolicy(Qt::NoFocus);
        connect(button, &QPushButton::clicked, this,
                [this, written = time.written, seconds = time.seconds] { startTimer(written, seconds); });
        m_timeButtons->addWidget(button);
    }
    m_timeButtons->addStretch();
}

void frmCook::startTimer(const QString &written, int seconds)
{
    m_timers.append({QStringLiteral("Step %1, %2").arg(m_step + 1).arg(written), seconds});
    m_clock->start();
    showTimers();
}

bool frmCook::ringing() const
{
    return std::any_of(m_timers.begin(), m_timers.end(), [](const Timer &t) { return t.ringing; });
}

void frmCook::acknowledge()
{
    m_timers.removeIf([](const Timer &t) { return t.ringing; });
    showTimers();
}

void frmCook::tick(int seconds)
{
    for (Timer &timer : m_timers) {
        timer.left = std::max(0, timer.left - seconds);
        const bool rang = timer.ringing;
        timer.ringing = timer.left == 0;
        // A cook away from the window hears the ring; one at another window is told as well.
        if (timer.ringing && !rang && (!isVisible() || isMinimized() || !isActiveWindow()))
            TheDesktop().notify(QStringLiteral("Timer done: ") + timer.name, m_recipe.title);
    }
    if (ringing())
        QApplication::beep(); // every second until acknowledged
    if (m_timers.isEmpty())
        m_clock->stop();
    showTimers();
}

void frmCook::showTimers()
{
    lstTimers->clear();
    lstTimers->setVisible(!m_timers.isEmpty());
    for (const Timer &timer : std::as_const(m_timers))
        lstTimers->addItem(timer.ringing ? timer.name + QStringLiteral(": done! (Enter or click to stop)")
                                         : timer.name + QStringLiteral(": ") + clockText(timer.left));
}

void frmCook::applyLook()
{
    setStyleSheet(m_dark
                      ? QStringLiteral("QWidget#frmCook, QListWidget, QLabel { background: #1e1e1e; color: #f0f0f0; }")
                      : QStringLiteral("QWidget#frmCook, QListWidget, QLabel { background: white; color: black; }"));
    applySizes();
}

void frmCook::applySizes()
{
    // The chosen size is for a window of 1000 by 700: a larger screen shows larger type, so that
    // the step reads from as far away.
    const double scale = std::max(0.5, std::min(width() / 1000.0, height() / 700.0));
    const int size = std::max(8, int(m_fontSize * scale));
    QFont large = font();
    large.setPointSize(size);
    lblDirection->setFont(large);
    QFont medium = font();
    medium.setPointSize(std::max(8, size * 2 / 3));
    lblStep->setFont(medium);
    lstIngredients->setFont(medium);
    lstTimers->setFont(medium);
}

void frmCook::keyPressEvent(QKeyEvent *event)
{
    const bool ctrl = event->modifiers() & Qt::ControlModifier;
    switch (event->key()) {
    case Qt::Key_Space:
    case Qt::Key_Right:
        showStep(m_step + 1);
        return;
    case Qt::Key_Left:
        showStep(m_step - 1);
        return;
    case Qt::Key_Home:
        showStep(0);
        return;
    case Qt::Key_End:
        showStep(int(m_recipe.directions.size()) - 1);
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        acknowledge();
        return;
    case Qt::Key_Escape:
        close();
        return;
    case Qt::Key_Plus:
    case Qt::Key_Equal:
    case Qt::Key_Minus:
        if (ctrl) {
            m_fontSize = std::clamp(m_fontSize + (event->key() == Qt::Key_Minus ? -4 : 4), 12, 96);
            applyLook();
            return;
        }
        break;
    case Qt::Key_D:
        if (ctrl) {
            m_dark = !m_dark;
            applyLook();
            return;
        }
        break;
    default:
        break;
    }
    QWidget::keyPressEvent(event);
}

void frmCook::resizeEvent(QResizeEvent *event)
{
    applySizes();
    QWidget::resizeEvent(event);
}

void frmCook::showEvent(QShowEvent *event)
{
    if (!m_screenOn)
        m_screenOn = std::make_unique<ScreenKeptOn>(QStringLiteral("Cooking from a recipe"));
    QWidget::showEvent(event);
}

void frmCook::closeEvent(QCloseEvent *event)
{
    m_screenOn.reset();
    QWidget::closeEvent(event);
}

frmCook::~frmCook() = default;

void ShowCookingMode(qint32 recipeId)
{
    ShowCookingMode(LoadRecipe(recipeId), recipeId);
}

void ShowCookingMode(const RecipeData &recipe, qint32 recipeId)
{
    auto *cook = new frmCook(recipe, recipeId);
    cook->showFullScreen();
}
