#include "frmsettings.h"

#include "quantities/measures.h"

#include "core/platform/appsettings.h"
#include "core/ui/controls.h"
#include "core/db/database.h"
#include "core/db/datasources.h"
#include "core/ui/guard.h"
#include "core/platform/modini.h"
#include "core/ui/msgbox.h"
#include "core/platform/platform.h"
#include "core/platform/programdir.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFormLayout>
#include <QFrame>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedWidget>
#include <QTabBar>
#include <QVBoxLayout>

namespace {

const QString kLimitNotice =
    QStringLiteral("You have checked the limit recipe search checkbox.\n\nThis will limit the recipe search to "
                   "return ONLY recipes entered after Vesk was installed.\n\nIf you leave this setting checked "
                   "and have not entered any recipes, the search window will return no recipes!");
const int kFontSizes[] = {6, 7, 8, 9, 10, 11, 12, 14, 16, 18, 20};

QString shippedPath(const char *name)
{
    return JoinPath(ProgramDir(), QLatin1String(name));
}

// The database the program opens: the registered data source's file, else the one the
// set-up creates. Named as it is on disk, where "pantrio.mdb" would be another file.
QString defaultDatabase()
{
    const DataSource source = FindDataSource(kDataSourceName);
    return source.driver == u"QSQLITE" && !source.database.isEmpty() ? source.database : DefaultDatabasePath();
}

QFrame *newFrame(const char *name, QWidget *parent)
{
    auto *frame = new QFrame(parent);
    frame->setObjectName(QLatin1String(name));
    frame->setFrameShape(QFrame::StyledPanel);
    return frame;
}

} // namespace

frmSettings::frmSettings(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmSettings"));
    setWindowTitle(QStringLiteral("Settings"));
    buildLayout();
    connect(cmdClose, &QPushButton::clicked, this, &frmSettings::cmdClose_Click);
    connect(cmdReset, &QPushButton::clicked, this, &frmSettings::cmdReset_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmSettings::cmdCancel_Click);
    connect(tsSettings, &QTabBar::currentChanged, this, &frmSettings::tsSettings_Click);
    connect(cmdBrowseDatabase, &QPushButton::clicked, this, [this] {
        browse(txtDatabase, QStringLiteral("Recipe Database"),
               QStringLiteral("Recipe database (*.MDB *.mdb);;All files (*)"), FileUse::Open);
    });
    connect(cmdBrowseTransfer, &QPushButton::clicked, this, [this] {
        browse(txtTransfer, QStringLiteral("Transfer File"), QStringLiteral("Transfer files (*.txt);;All files (*)"),
               FileUse::Save);
    });
    connect(cmdBrowseFilename, &QPushButton::clicked, this, [this] {
        browse(txtFilename, QStringLiteral("Preview File"),
               QStringLiteral("Rich text (*.rtf);;PDF document (*.pdf);;Plain text (*.txt);;All files (*)"),
               FileUse::Save);
    });
    Form_Load();
}

void frmSettings::buildLayout()
{
    tsSettings = new QTabBar(this);
    tsSettings->setObjectName(QStringLiteral("tsSettings"));
    tsSettings->addTab(QStringLiteral("&Printing"));
    tsSettings->addTab(QStringLiteral("&Files"));
    tsSettings->addTab(QStringLiteral("&Actions"));
    tsSettings->setExpanding(false);

    fraPrint = newFrame("fraPrint", this);
    cboFontSize = new QComboBox(fraPrint);
    cboFontSize->setObjectName(QStringLiteral("cboFontSize"));
    cboFontSize->setEditable(true);
    cboFontSize->setValidator(new QIntValidator(1, 72, cboFontSize));
    for (int size : kFontSizes)
        cboFontSize->addItem(QString::number(size));
    chkNewPage = new QCheckBox(QStringLiteral("Start each recipe on its own page"), fraPrint);
    chkNewPage->setObjectName(QStringLiteral("chkNewPage"));
    chkSpaceBetween = new QCheckBox(QStringLiteral("Print a blank line between each recipe direction"), fraPrint);
    chkSpaceBetween->setObjectName(QStringLiteral("chkSpaceBetween"));
    chkPageNumbers =
        new QCheckBox(QStringLiteral("Print the Table of Contents and number the recipes to match"), fraPrint);
    chkPageNumbers->setObjectName(QStringLiteral("chkPageNumbers"));
    cboMeasures = new QComboBox(fraPrint);
    cboMeasures->setObjectName(QStringLiteral("cboMeasures"));
    cboMeasures->addItems(
        {QStringLiteral("as written"), QStringLiteral("in US measures"), QStringLiteral("in metric measures")});
    chkCombine = new QCheckBox(QStringLiteral("Sum the needed amounts of measures that convert into one"), fraPrint);
    chkCombine->setObjectName(QStringLiteral("chkCombine"));
    {
        auto *layout = new QVBoxLayout(fraPrint);
        // A box with its label before it.
        const auto labelled = [&](const QString &caption, QComboBox *box) {
            auto *row = new QHBoxLayout;
            auto *label = new QLabel(caption, fraPrint);
            label->setBuddy(box);
            row->addWidget(label);
            row->addWidget(box);
            row->addStretch();
            layout->addLayout(row);
        };
        labelled(QStringLiteral("Base font si&ze of the printed recipes (points):"), cboFontSize);
        layout->addWidget(chkNewPage);
        layout->addWidget(chkSpaceBetween);
        layout->addWidget(chkPageNumbers);
        labelled(QStringLiteral("Show a&mounts and temperatures of recipes:"), cboMeasures);
        layout->addWidget(chkCombine);
        layout->addStretch();
    }

    fraFile = newFrame("fraFile", this);
    // A file name with its Browse button beside it.
    auto fileBox = [this](const char *name, const QString &caption, QPushButton *&browse, QVBoxLayout *layout) {
        auto *box = new QLineEdit(fraFile);
        box->setObjectName(QLatin1String(name));
        auto *label = new QLabel(caption, fraFile);
        label->setBuddy(box);
        browse = new QPushButton(QStringLiteral("&Browse..."), fraFile);
        browse->setObjectName(QStringLiteral("cmdBrowse") + QLatin1String(name).mid(3));
        browse->setAutoDefault(false);
        auto *row = new QHBoxLayout;
        row->addWidget(box, 1);
        row->addWidget(browse);
        layout->addWidget(label);
        layout->addLayout(row);
        return box;
    };
    {
        auto *layout = new QVBoxLayout(fraFile);
        txtDatabase =
            fileBox("txtDatabase", QStringLiteral("Path the the database (used for creating/restoring from backups)"),
                    cmdBrowseDatabase, layout);
        txtTransfer = fileBox("txtTransfer", QStringLiteral("Filename used for recipe transfers (importing/exporting)"),
                              cmdBrowseTransfer, layout);
        txtFilename = fileBox("txtFilename",
                              QStringLiteral("Filename used to save the previewed text (*.rtf will save in Rich Text)"),
                              cmdBrowseFilename, layout);
        auto *kinds = new QLabel(QStringLiteral("A name ending in .rtf saves rich text, .pdf a PDF document, any other "
                                                "name plain text."),
                                 fraFile);
        kinds->setWordWrap(true);
        kinds->setEnabled(false);
        layout->addWidget(kinds);
        layout->addStretch();
    }

    fraAction = newFrame("fraAction", this);
    chkSeek =
        new QCheckBox(QStringLiteral("Complete the typed text from the list in the drop-down selections"), fraAction);
    chkSeek->setObjectName(QStringLiteral("chkSeek"));
    chkSeekAmount =
        new QCheckBox(QStringLiteral("Complete the typed text in the amount drop-down of the recipe entry"), fraAction);
    chkSeekAmount->setObjectName(QStringLiteral("chkSeekAmount"));
    auto optionPair = [this](const char *name, const QString &first, const QString &second,
                             std::array<QRadioButton *, 2> &options) {
        auto *group = new QButtonGroup(this);
        options[0] = new QRadioButton(first, fraAction);
        options[1] = new QRadioButton(second, fraAction);
        for (int i = 0; i < 2; ++i) {
            options[i]->setObjectName(QLatin1String(name) + QString::number(i));
            group->addButton(options[i], i);
        }
    };
    // Option 0 is the "True" of its setting; the options are listed the other way round.
    optionPair("optSearch", QStringLiteral("View/Print the selected recipe"),
               QStringLiteral("Edit/Copy the selected recipe"), optSearch);
    optionPair("optAdd", QStringLiteral("Standard Form - all data viewed at once on one screen"),
               QStringLiteral("Tabbed Form - data viewed in sections seperated by tabs"), optAdd);
    chkLimit =
        new QCheckBox(QStringLiteral("Limit search to ONLY return recipes entered after Vesk installation"), fraAction);
    chkLimit->setObjectName(QStringLiteral("chkLimit"));
    {
        auto *layout = new QVBoxLayout(fraAction);
        layout->addWidget(chkSeek);
        layout->addWidget(chkSeekAmount);
        layout->addSpacing(6);
        layout->addWidget(new QLabel(QStringLiteral("Double Clicking a Recipe on the Search Screen will:"), fraAction));
        layout->addWidget(optSearch[1]);
        layout->addWidget(optSearch[0]);
        layout->addSpacing(6);
        layout->addWidget(new QLabel(QStringLiteral("Recipes will be added and edited through:"), fraAction));
        layout->addWidget(optAdd[1]);
        layout->addWidget(optAdd[0]);
        layout->addSpacing(6);
        layout->addWidget(chkLimit);
        layout->addStretch();
    }

    cmdClose = new QPushButton(QStringLiteral("&Save && Close"), this);
    cmdClose->setObjectName(QStringLiteral("cmdClose"));
    cmdClose->setDefault(true);
    cmdReset = new QPushButton(QStringLiteral("&Reset"), this);
    cmdReset->setObjectName(QStringLiteral("cmdReset"));
    cmdCancel = new QPushButton(QStringLiteral("&Cancel"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdClose);
    buttons->addWidget(cmdReset);
    buttons->addWidget(cmdCancel);

    // One frame shows at a time, in a space as large as the largest: the dialog keeps its
    // size whichever tab is chosen.
    m_frames = new QStackedWidget(this);
    m_frames->addWidget(fraPrint);
    m_frames->addWidget(fraFile);
    m_frames->addWidget(fraAction);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(tsSettings);
    layout->setSpacing(0);
    layout->addWidget(m_frames, 1);
    layout->addSpacing(10);
    layout->addLayout(buttons);
    tsSettings_Click();
}

void frmSettings::SetTab(int tab)
{
    tsSettings->setCurrentIndex(std::clamp(tab, 1, 3) - 1);
    tsSettings_Click();
}

void frmSettings::tsSettings_Click()
{
    m_frames->setCurrentIndex(tsSettings->currentIndex());
}

void frmSettings::browse(QLineEdit *box, const QString &title, const QString &filter, FileUse use)
{
    const QString chosen = AskFileName(title, box->text(), filter, use);
    if (!chosen.isEmpty())
        box->setText(QDir::toNativeSeparators(chosen));
}

void frmSettings::Form_Load()
{
    gSettings = ReadAppSettings(IniPath(), {shippedPath("recipes.rtf"), defaultDatabase()});
    const AppSettings &s = gSettings;
    cboFontSize->setCurrentText(QString::number(s.BaseFontSize));
    chkNewPage->setChecked(s.NewPage);
    chkSpaceBetween->setChecked(s.BlankLines);
    chkPageNumbers->setChecked(s.PageNumbers);
    txtTransfer->setText(s.Transfer);
    txtFilename->setText(s.Preview);
    txtDatabase->setText(s.Database);
    optSearch[s.RecipeView ? 0 : 1]->setChecked(true);
    chkSeek->setChecked(s.Seek);
    chkSeekAmount->setChecked(s.SeekAmount);
    optAdd[s.StandardAdd ? 0 : 1]->setChecked(true);
    chkLimit->setChecked(s.OnlyNewRecipes);
    cboMeasures->setCurrentIndex(int(MeasureSystemFromText(s.ShowMeasures)));
    chkCombine->setChecked(s.CombineMeasures);
}

void frmSettings::readControls()
{
    AppSettings &s = gSettings;
    const int fontSize = cboFontSize->currentText().toInt();
    s.BaseFontSize = fontSize > 0 ? fontSize : 9;
    s.NewPage = chkNewPage->isChecked();
    s.BlankLines = chkSpaceBetween->isChecked();
    s.PageNumbers = chkPageNumbers->isChecked();
    s.Transfer = txtTransfer->text();
    s.Preview = txtFilename->text();
    s.Database = txtDatabase->text();
    s.RecipeView = optSearch[0]->isChecked();
    s.Seek = chkSeek->isChecked();
    s.SeekAmount = chkSeekAmount->isChecked();
    s.StandardAdd = optAdd[0]->isChecked();
    s.OnlyNewRecipes = chkLimit->isChecked();
    s.ShowMeasures = MeasureSystemText(MeasureSystem(cboMeasures->currentIndex()));
    s.CombineMeasures = chkCombine->isChecked();
}

void frmSettings::cmdClose_Click()
{
    Guarded([this] {
        if (chkLimit->isChecked())
            MsgBox(kLimitNotice, Msg::Information, QStringLiteral("Confirmation"));
        readControls();
        WriteAppSettings(IniPath(), gSettings);
        accept();
    });
}

void frmSettings::cmdReset_Click()
{
    cboFontSize->setCurrentText(QStringLiteral("9"));
    chkNewPage->setChecked(true);
    chkSpaceBetween->setChecked(true);
    cboMeasures->setCurrentIndex(0);
    chkCombine->setChecked(false);
    chkPageNumbers->setChecked(false);
    txtFilename->setText(shippedPath("recipes.rtf"));
    txtTransfer->setText(DefaultTransferPath());
    txtDatabase->setText(defaultDatabase());
    optSearch[0]->setChecked(true);
    chkSeek->setChecked(true);
    chkSeekAmount->setChecked(false);
    chkLimit->setChecked(false);
    optAdd[1]->setChecked(true);
}

void frmSettings::cmdCancel_Click()
{
    reject();
}

void LoadSettings()
{
    frmSettings dialog;
}

void ShowSettings(int tab)
{
    static QPointer<frmSettings> open;
    ShowOnly(open)->SetTab(tab);
}
