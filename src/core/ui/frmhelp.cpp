#include "frmhelp.h"

#include "controls.h"
#include "msgbox.h"
#include "periphery.h"

#include <QFile>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QSplitter>
#include <QTextBlock>
#include <QAbstractTextDocumentLayout>
#include <QScrollBar>
#include <QTextBrowser>
#include <QVBoxLayout>

frmHelp::frmHelp(QWidget *parent) : QWidget(parent, Qt::Window)
{
    setObjectName(QStringLiteral("frmHelp"));
    setWindowTitle(QStringLiteral("Mirepan User Manual"));
    setAttribute(Qt::WA_DeleteOnClose);
    lstContents = Named(new QListWidget(this), "lstContents");
    txtManual = Named(new QTextBrowser(this), "txtManual");
    QFile manual(QStringLiteral(":/mirepan/manual/manual.html"));
    if (manual.open(QIODevice::ReadOnly))
        txtManual->setHtml(QString::fromUtf8(manual.readAll()));
    txtFind = Named(new QLineEdit(this), "txtFind");
    cmdFindNext = Named(new QPushButton(QStringLiteral("Find &Next"), this), "cmdFindNext");
    cmdPrint = Named(new QPushButton(QStringLiteral("&Print..."), this), "cmdPrint");
    cmdOpenRtf = Named(new QPushButton(QStringLiteral("Open as &RTF"), this), "cmdOpenRtf");
    cmdClose = Named(new QPushButton(QStringLiteral("&Close"), this), "cmdClose");

    // The contents are the manual's chapters, each leading to its place.
    for (QTextBlock block = txtManual->document()->begin(); block.isValid(); block = block.next()) {
        if (block.blockFormat().headingLevel() == 2) {
            auto *item = new QListWidgetItem(block.text(), lstContents);
            item->setData(Qt::UserRole, block.position());
        }
    }
    connect(lstContents, &QListWidget::currentRowChanged, this, &frmHelp::showSection);
    connect(txtFind, &QLineEdit::returnPressed, this, &frmHelp::findNext);
    connect(cmdFindNext, &QPushButton::clicked, this, &frmHelp::findNext);
    connect(cmdOpenRtf, &QPushButton::clicked, this, [] { OpenUserManual(); });
    connect(cmdClose, &QPushButton::clicked, this, &QWidget::close);
    connect(cmdPrint, &QPushButton::clicked, this, [this] {
        QPrinter printer(QPrinter::HighResolution);
        QPrintDialog dialog(&printer, this);
        ShowModal(&dialog);
        if (dialog.result() == QDialog::Accepted)
            txtManual->document()->print(&printer);
    });

    auto *find = new QHBoxLayout;
    auto *findLabel = new QLabel(QStringLiteral("&Find:"), this);
    findLabel->setBuddy(txtFind);
    find->addWidget(findLabel);
    find->addWidget(txtFind, 1);
    find->addWidget(cmdFindNext);
    auto *splitter = new QSplitter(this);
    splitter->addWidget(lstContents);
    splitter->addWidget(txtManual);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({220, 600});
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(cmdPrint);
    buttons->addWidget(cmdOpenRtf);
    buttons->addStretch();
    buttons->addWidget(cmdClose);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(find);
    layout->addWidget(splitter, 1);
    layout->addLayout(buttons);
    FitToScreen(this, 860, 640);
}

bool frmHelp::findNext()
{
    const QString text = txtFind->text();
    if (text.isEmpty())
        return false;
    if (txtManual->find(text))
        return true;
    // From the top again.
    QTextCursor top = txtManual->textCursor();
    top.movePosition(QTextCursor::Start);
    txtManual->setTextCursor(top);
    return txtManual->find(text);
}

void frmHelp::showSection(int row)
{
    if (QListWidgetItem *item = lstContents->item(row)) {
        const QTextBlock heading = txtManual->document()->findBlock(item->data(Qt::UserRole).toInt());
        QTextCursor at(heading);
        txtManual->setTextCursor(at);
        // The chapter's heading at the top of the view, not merely somewhere in it.
        const QRectF place = txtManual->document()->documentLayout()->blockBoundingRect(heading);
        txtManual->verticalScrollBar()->setValue(int(place.top()));
    }
}

void ShowUserManual()
{
    static QPointer<frmHelp> window;
    if (!window)
        window = new frmHelp;
    window->show();
    window->raise();
    window->activateWindow();
}
