#include "frmresize.h"

#include "cfraction.h"

#include "core/ui/guard.h"
#include "core/ui/msgbox.h"
#include "core/platform/platform.h"

#include <QButtonGroup>
#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <cmath>

namespace {

const QString kZeroOriginal = QStringLiteral("You cannot resize this recipe.  0 is an invalid number!");
const QString kWholeValue = QStringLiteral("You must enter a whole value to resize a recipe to!");
const char *const kSamples[] = {"1/2", "3/4", "1 1/2", "2"};

} // namespace

double WholeCount(const QString &text)
{
    return std::floor(Val(text));
}

frmResize::frmResize(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmResize"));
    setWindowTitle(QStringLiteral("Resize Recipe"));
    setModal(true);

    auto *group = new QButtonGroup(this);
    optResize[0] = new QRadioButton(QStringLiteral("&Servings"), this);
    optResize[1] = new QRadioButton(QStringLiteral("&Fraction"), this);
    for (int i = 0; i < 2; ++i) {
        optResize[i]->setObjectName(QStringLiteral("optResize%1").arg(i));
        group->addButton(optResize[i], i);
    }
    optResize[0]->setChecked(true);
    txtNewServings = new QLineEdit(this);
    txtNewServings->setObjectName(QStringLiteral("txtNewServings"));
    txtOrigServings = new QLineEdit(this);
    txtOrigServings->setObjectName(QStringLiteral("txtOrigServings"));
    txtOrigServings->setEnabled(false);
    Label1[0] = new QLabel(QStringLiteral("New"), this);
    Label1[1] = new QLabel(QStringLiteral("Original"), this);
    Label1[0]->setBuddy(txtNewServings);
    Label1[1]->setBuddy(txtOrigServings);
    Label2 = new QLabel(QStringLiteral("Example Amounts..."), this);
    lblCaption = new QLabel(QStringLiteral("Old Amount      New Amount"), this);
    lblCaption->setObjectName(QStringLiteral("lblCaption"));
    for (int i = 0; i < 8; ++i) {
        lblExample[i] = new QLabel(this);
        lblExample[i]->setObjectName(QStringLiteral("lblExample%1").arg(i));
    }
    for (int i = 0; i < 4; ++i) {
        lblExample[i]->setProperty("tag", QLatin1String(kSamples[i]));
        lblExample[i]->setText(QLatin1String(kSamples[i]));
    }
    cmdResize = new QPushButton(QStringLiteral("&Resize"), this);
    cmdResize->setObjectName(QStringLiteral("cmdResize"));
    cmdResize->setDefault(true);
    cmdCancel = new QPushButton(QStringLiteral("&Cancel"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));

    auto *options = new QHBoxLayout;
    options->addWidget(optResize[0]);
    options->addWidget(optResize[1]);
    options->addStretch();
    auto *counts = new QGridLayout;
    counts->addWidget(Label1[0], 0, 0);
    counts->addWidget(txtNewServings, 0, 1);
    counts->addWidget(Label1[1], 1, 0);
    counts->addWidget(txtOrigServings, 1, 1);
    auto *examples = new QGridLayout;
    examples->addWidget(lblCaption, 0, 0, 1, 2);
    for (int i = 0; i < 4; ++i) {
        examples->addWidget(lblExample[i], i + 1, 0);
        examples->addWidget(lblExample[i + 4], i + 1, 1);
    }
    examples->setColumnMinimumWidth(0, 90);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdResize);
    buttons->addWidget(cmdCancel);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(options);
    layout->addLayout(counts);
    layout->addSpacing(8);
    layout->addWidget(Label2);
    layout->addLayout(examples);
    layout->addStretch();
    layout->addLayout(buttons);

    connect(group, &QButtonGroup::idClicked, this, &frmResize::optResize_Click);
    connect(txtNewServings, &QLineEdit::textChanged, this, &frmResize::UpdateExamples);
    connect(txtOrigServings, &QLineEdit::textChanged, this, &frmResize::UpdateExamples);
    connect(cmdResize, &QPushButton::clicked, this, &frmResize::cmdResize_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmResize::cmdCancel_Click);
}

bool frmResize::event(QEvent *event)
{
    if (event->type() == QEvent::Show && !m_loaded)
        Form_Load();
    return QDialog::event(event);
}

void frmResize::Form_Load()
{
    if (m_loaded)
        return;
    m_loaded = true;
    if (OrigServings != 0) {
        txtOrigServings->setText(QString::number(OrigServings));
    } else {
        optResize[1]->setChecked(true);
        optResize_Click(1);
    }
    // The new count (or numerator) is what the user came to type.
    txtNewServings->setFocus();
}

bool frmResize::fractionMode() const
{
    return optResize[1]->isChecked();
}

void frmResize::optResize_Click(int index)
{
    if (index == 1) {
        Label1[0]->setText(QStringLiteral("Numerator"));
        Label1[1]->setText(QStringLiteral("Denominator"));
        txtOrigServings->setEnabled(true);
    } else {
        Label1[0]->setText(QStringLiteral("New"));
        Label1[1]->setText(QStringLiteral("Original"));
        txtOrigServings->setText(QString::number(OrigServings));
        txtOrigServings->setEnabled(false);
    }
}

void frmResize::UpdateExamples()
{
    Guarded([this] {
        if (WholeCount(txtOrigServings->text()) <= 0 || WholeCount(txtNewServings->text()) <= 0)
            return;
        cFraction factor;
        factor.setNumerator(Floor16(Val(txtNewServings->text())));
        factor.setDenominator(Floor16(Val(txtOrigServings->text())));
        for (int i = 0; i < 4; ++i) {
            const QString tag = lblExample[i]->property("tag").toString();
            cFraction amount;
            amount.setStringValue(tag);
            amount.Multiply(factor);
            lblExample[i]->setText(tag);
            lblExample[i + 4]->setText(amount.StringValue());
        }
    });
}

void frmResize::cmdResize_Click()
{
    Guarded([this] {
        Cancel = false;
        const double original = WholeCount(txtOrigServings->text());
        if (original == 0) {
            MsgBox(kZeroOriginal, Msg::Ok, QStringLiteral("Division by 0"));
        } else if (WholeCount(txtNewServings->text()) <= 0) {
            MsgBox(kWholeValue);
            txtNewServings->setFocus();
        } else if (original > 0) {
            hide();
        } else {
            MsgBox(kWholeValue);
            txtOrigServings->setFocus();
        }
    });
}

void frmResize::cmdCancel_Click()
{
    Cancel = true;
    txtNewServings->setText(QStringLiteral("0"));
    hide();
}

void frmResize::reject()
{
    cmdCancel_Click();
    QDialog::reject();
}
