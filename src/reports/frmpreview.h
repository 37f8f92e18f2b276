#pragma once
// The preview window: the composed document page by page, with zoom, Print, Save and Close.

#include "recipeprinter.h"

#include <QWidget>

class QPrinter;
class QPrintPreviewWidget;
class QPushButton;
class QTextDocument;

class frmPreview : public QWidget
{
    Q_OBJECT
public:
    explicit frmPreview(const RecipePrinter &document, QWidget *parent = nullptr);
    ~frmPreview() override;

    QPrintPreviewWidget *pvwPages;
    QPushButton *cmdZoomIn;
    QPushButton *cmdZoomOut;
    QPushButton *cmdFitWidth;
    QPushButton *cmdPrint;
    QPushButton *cmdSave;
    QPushButton *cmdClose;

public Q_SLOTS:
    void cmdPrint_Click();
    void cmdSave_Click();

private:
    void paintPages(QPrinter *printer);

    RecipePrinter m_composed;
    std::unique_ptr<QTextDocument> m_document;
    std::unique_ptr<QPrinter> m_printer;
};
