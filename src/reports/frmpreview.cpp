#include "frmpreview.h"

#include "core/msgbox.h"

#include <QHBoxLayout>
#include <QPageLayout>
#include <QPrintPreviewDialog>
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
    cmdPrint = new QPushButton(QStringLiteral("&Print..."), this);
    cmdSave = new QPushButton(QStringLiteral("&Save"), this);
    cmdSave->setToolTip(QStringLiteral("Save as %1").arg(document.fileName()));
    cmdClose = new QPushButton(QStringLiteral("&Close"), this);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(cmdPrint);
    buttons->addWidget(cmdSave);
    buttons->addStretch();
    buttons->addWidget(cmdClose);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(pvwPages, 1);
    layout->addLayout(buttons);
    resize(760, 900);

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
    QPrintPreviewDialog dialog(m_printer.get(), this);
    connect(&dialog, &QPrintPreviewDialog::paintRequested, this, &frmPreview::paintPages);
    dialog.exec();
}

void frmPreview::cmdSave_Click()
{
    QString error;
    if (!m_composed.Save(&error)) {
        MsgBox(error, Msg::Critical, QStringLiteral("Error"));
        return;
    }
    MsgBox(QStringLiteral("Saved as: ") + m_composed.fileName(), Msg::Information, QStringLiteral("Information"));
}
