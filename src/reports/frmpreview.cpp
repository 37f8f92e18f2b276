#include "frmpreview.h"

#include "core/ui/controls.h"
#include "core/ui/msgbox.h"

#include <QDir>
#include <QFileInfo>

#include <QHBoxLayout>
#include <QPageLayout>
#include <QPrintDialog>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QPushButton>
#include <QTextDocument>
#include <QVBoxLayout>

frmPreview::frmPreview(const RecipePrinter &document, QWidget *parent)
    : QWidget(parent, Qt::Window)
    , m_composed(document)
    , m_document(document.toDocument())
    , m_printer(std::make_unique<QPrinter>(QPrinter::HighResolution))
{
    setObjectName(QStringLiteral("frmPreview"));
    setWindowTitle(QStringLiteral("Print Preview"));
    m_printer->setPageMargins(QMarginsF(20, 20, 20, 20), QPageLayout::Millimeter);

    pvwPages = new QPrintPreviewWidget(m_printer.get(), this);
    pvwPages->setObjectName(QStringLiteral("pvwPages"));
    connect(pvwPages, &QPrintPreviewWidget::paintRequested, this, &frmPreview::paintPages);
    cmdZoomIn = new QPushButton(QStringLiteral("Zoom &In"), this);
    cmdZoomOut = new QPushButton(QStringLiteral("Zoom &Out"), this);
    cmdFitWidth = new QPushButton(QStringLiteral("Fit &Width"), this);
    cmdPrint = new QPushButton(QStringLiteral("&Print..."), this);
    cmdSave = new QPushButton(QStringLiteral("&Save"), this);
    cmdSave->setToolTip(QStringLiteral("Save as %1").arg(document.fileName()));
    cmdClose = new QPushButton(QStringLiteral("&Close"), this);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(cmdZoomIn);
    buttons->addWidget(cmdZoomOut);
    buttons->addWidget(cmdFitWidth);
    buttons->addSpacing(12);
    buttons->addWidget(cmdPrint);
    buttons->addWidget(cmdSave);
    buttons->addStretch();
    buttons->addWidget(cmdClose);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(pvwPages, 1);
    layout->addLayout(buttons);
    FitToScreen(this, 760, 900); // the pages scroll: the buttons stay on screen

    connect(cmdZoomIn, &QPushButton::clicked, pvwPages, [this] { pvwPages->zoomIn(); });
    connect(cmdZoomOut, &QPushButton::clicked, pvwPages, [this] { pvwPages->zoomOut(); });
    connect(cmdFitWidth, &QPushButton::clicked, pvwPages, &QPrintPreviewWidget::fitToWidth);
    connect(cmdPrint, &QPushButton::clicked, this, &frmPreview::cmdPrint_Click);
    connect(cmdSave, &QPushButton::clicked, this, &frmPreview::cmdSave_Click);
    connect(cmdClose, &QPushButton::clicked, this, &QWidget::close);
}

frmPreview::~frmPreview() = default;

void frmPreview::paintPages(QPrinter *printer)
{
    PrintDocument(*m_document, *printer);
}

void frmPreview::cmdPrint_Click()
{
    // The pages are already on screen: straight to the choice of printer.
    QPrintDialog dialog(m_printer.get(), this);
    dialog.setObjectName(QStringLiteral("dlgPrint"));
    ShowModal(&dialog);
    if (dialog.result() == QDialog::Accepted)
        paintPages(m_printer.get());
}

void frmPreview::cmdSave_Click()
{
    // Where to is the user's choice, starting in the folder saved to last.
    static QString lastFolder;
    const QFileInfo suggested(m_composed.fileName());
    const QString folder = lastFolder.isEmpty() ? suggested.absolutePath() : lastFolder;
    const QString file =
        AskFileName(QStringLiteral("Save Recipes"), QDir(folder).filePath(suggested.fileName()),
                    QStringLiteral("Rich text (*.rtf);;PDF document (*.pdf);;Plain text (*.txt)"), FileUse::Export);
    if (file.isEmpty())
        return;
    lastFolder = QFileInfo(file).absolutePath();
    m_composed.SetFileName(file);
    QString error;
    if (!m_composed.Save(&error)) {
        MsgBox(error, Msg::Critical, QStringLiteral("Error"));
        return;
    }
    MsgBox(QStringLiteral("Saved as: ") + m_composed.fileName(), Msg::Information, QStringLiteral("Information"));
}
