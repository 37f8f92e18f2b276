#pragma once
// RecipePrinter: composes styled lines into pages, previews them, prints them and saves them.
//
// Callers add runs of text, each in its own font, size, weight, slant and colour, to the
// current line (AddText) or end the line with one (AddLine); StartPage begins a new page.

#include <QList>
#include <QString>

#include <functional>
#include <memory>

class QPrinter;
class QTextDocument;

struct PrintRun {
    QString text;
    QString font;
    double size = 10;
    bool bold = false;
    bool italic = false;
    quint32 rgb = 0; // red + 256 * green + 65536 * blue
};

struct PrintLine {
    QList<PrintRun> runs;
    bool newPage = false; // the line begins a new page
    // The size of an empty line's blank.
    double size() const { return runs.isEmpty() ? 10 : runs.last().size; }
    QString text() const;
};

class RecipePrinter
{
public:
    void SetFileName(const QString &fileName) { m_fileName = fileName; }
    QString fileName() const { return m_fileName; }
    void AddText(const QString &text, const QString &font, double size, bool bold, bool italic, bool further = false,
                 quint32 rgb = 0);
    void AddLine(const QString &text, const QString &font, double size, bool bold, bool italic, bool further = false,
                 quint32 rgb = 0);
    void StartPage();
    // Shows the preview window with its print and save commands (or hands the document to
    // the installed sink).
    void Show();

    // The composed lines; a line still being built is included.
    QList<PrintLine> lines() const;
    // The whole document as plain text, a page break as a form feed.
    QString plainText() const;
    // The document laid out for a page (fonts, sizes, colours, page breaks).
    std::unique_ptr<QTextDocument> toDocument() const;
    // Saves to the file name: rich text for ".rtf", PDF for ".pdf", plain text otherwise.
    // False, with the reason, when the file cannot be written.
    bool Save(QString *error = nullptr) const;

private:
    QString m_fileName;
    QList<PrintLine> m_lines;
    PrintLine m_current;
    bool m_pageBreakPending = false;
};

// Tests capture documents here instead of a preview window being shown.
void SetPrintPreviewSink(std::function<void(const RecipePrinter &)> sink);

// Fits a text to a fixed width of the fixed-width font: cut when longer; filled with spaces
// when shorter, in front ("Right"), on both sides ("Center") or behind (anything else).
QString PadText(const QString &text, int width, const QString &mode);

// Prints the document on the printer's pages. It is laid out in pages of the printer's paper
// first: a document laid out for the screen gets page numbers of the toolkit's own.
void PrintDocument(QTextDocument &document, QPrinter &printer);
