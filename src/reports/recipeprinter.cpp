#include "recipeprinter.h"

#include "frmpreview.h"
#include "rtfwriter.h"

#include "core/platform/atomicfile.h"
#include "core/platform/platform.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPageLayout>
#include <QPrinter>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextOption>

namespace {

// One tab stop past the longest label ("Prep Time:"), so the values line up.
constexpr double kTabStop = 110;

std::function<void(const RecipePrinter &)> &previewSink()
{
    static std::function<void(const RecipePrinter &)> sink;
    return sink;
}

QTextCharFormat charFormat(const PrintRun &run)
{
    QTextCharFormat format;
    QFont font(run.font);
    font.setStyleHint(QFont::TypeWriter);
    font.setPointSizeF(run.size > 0 ? run.size : 1);
    font.setBold(run.bold);
    font.setItalic(run.italic);
    format.setFont(font);
    format.setForeground(QColor(int(run.rgb & 0xff), int((run.rgb >> 8) & 0xff), int((run.rgb >> 16) & 0xff)));
    return format;
}

} // namespace

QString PrintLine::text() const
{
    QString all;
    for (const PrintRun &run : runs)
        all += run.text;
    return all;
}

void SetPrintPreviewSink(std::function<void(const RecipePrinter &)> sink)
{
    previewSink() = std::move(sink);
}

void RecipePrinter::AddText(const QString &text, const QString &font, double size, bool bold, bool italic, bool further,
                            quint32 rgb)
{
    Q_UNUSED(further); // accepted for the callers' sake; it changes nothing
    if (m_current.runs.isEmpty()) {
        m_current.newPage = m_pageBreakPending;
        m_pageBreakPending = false;
    }
    m_current.runs.append({text, font, size, bold, italic, rgb});
}

void RecipePrinter::AddLine(const QString &text, const QString &font, double size, bool bold, bool italic, bool further,
                            quint32 rgb)
{
    AddText(text, font, size, bold, italic, further, rgb);
    m_lines.append(m_current);
    m_current = PrintLine();
}

void RecipePrinter::StartPage()
{
    m_pageBreakPending = true;
}

QList<PrintLine> RecipePrinter::lines() const
{
    QList<PrintLine> all = m_lines;
    if (!m_current.runs.isEmpty())
        all.append(m_current);
    return all;
}

QString RecipePrinter::plainText() const
{
    QString text;
    for (const PrintLine &line : lines()) {
        if (line.newPage)
            text += u'\f';
        text += line.text() + u'\n';
    }
    return text;
}

std::unique_ptr<QTextDocument> RecipePrinter::toDocument() const
{
    auto document = std::make_unique<QTextDocument>();
    document->setUndoRedoEnabled(false);
    QTextOption option = document->defaultTextOption();
    option.setTabStopDistance(kTabStop);
    document->setDefaultTextOption(option);
    QTextCursor cursor(document.get());
    bool first = true;
    for (const PrintLine &line : lines()) {
        QTextBlockFormat block;
        if (line.newPage)
            block.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
        // A label or step number, a tab, then text: a long text wraps under itself.
        if (line.text().contains(u'\t')) {
            block.setLeftMargin(kTabStop);
            block.setTextIndent(-kTabStop);
        }
        const QTextCharFormat lineFormat = charFormat(line.runs.isEmpty() ? PrintRun() : line.runs.last());
        if (first) {
            cursor.setBlockFormat(block);
            cursor.setBlockCharFormat(lineFormat);
            first = false;
        } else {
            cursor.insertBlock(block, lineFormat);
        }
        for (const PrintRun &run : line.runs) {
            if (!run.text.isEmpty())
                cursor.insertText(run.text, charFormat(run));
        }
    }
    return document;
}

bool RecipePrinter::Save(QString *error) const
{
    auto fail = [&](const QString &why) {
        if (error)
            *error = why;
        return false;
    };
    if (m_fileName.trimmed().isEmpty())
        return fail(QStringLiteral("No file name is set for saving the preview."));
    const QFileInfo info(m_fileName);
    if (!info.absoluteDir().exists())
        return fail(QStringLiteral("The folder %1 does not exist.").arg(info.absolutePath()));
    const QString suffix = info.suffix().toLower();
    // The file is replaced in one step: a failed or interrupted save keeps the last one.
    const QString cannot = QStringLiteral("%1 cannot be written.").arg(m_fileName);
    try {
        if (suffix == u"pdf") {
            const QString copy = CopyBeside(m_fileName);
            QFile probe(copy);
            if (!probe.open(QIODevice::WriteOnly))
                return fail(QStringLiteral("%1 cannot be written: %2").arg(m_fileName, probe.errorString()));
            probe.close();
            QPrinter printer(QPrinter::HighResolution);
            printer.setOutputFormat(QPrinter::PdfFormat);
            printer.setOutputFileName(copy);
            printer.setPageMargins(QMarginsF(20, 20, 20, 20), QPageLayout::Millimeter);
            PrintDocument(*toDocument(), printer);
            RenameOver(copy, m_fileName);
        } else {
            ReplaceFile(m_fileName, suffix == u"rtf" ? WriteRtf(lines()) : plainText().toUtf8());
        }
    } catch (const PlatformError &) {
        return fail(cannot);
    }
    return true;
}

void PrintDocument(QTextDocument &document, QPrinter &printer)
{
    // The document measures in pixels of 96 to the inch; the paper in points.
    document.setPageSize(printer.pageLayout().paintRect(QPageLayout::Point).size() * (96.0 / 72.0));
    document.print(&printer);
}

void RecipePrinter::Show()
{
    if (previewSink()) {
        previewSink()(*this);
        return;
    }
    auto *preview = new frmPreview(*this);
    preview->setAttribute(Qt::WA_DeleteOnClose);
    preview->show();
}

QString PadText(const QString &text, int width, const QString &mode)
{
    if (text.size() >= width)
        return text.left(width);
    const int missing = width - int(text.size());
    if (mode == u"Center") {
        const int before = missing / 2;
        return QString(before, u' ') + text + QString(missing - before, u' ');
    }
    if (mode == u"Right")
        return QString(missing, u' ') + text;
    return text + QString(missing, u' ');
}
