// manual: writes the user manual's printable copy. "manual HTML RTF" reads the manual the help
// window shows and writes it as rich text (headings, paragraphs, lists, bold, italic and the
// fixed-width names of files and commands), so that the two never tell different things.

#include <QFile>
#include <QGuiApplication>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextList>
#include <cstdio>

namespace {

QByteArray escaped(const QString &text)
{
    QByteArray out;
    for (const QChar c : text) {
        const ushort u = c.unicode();
        if (u == '\\' || u == '{' || u == '}')
            out += '\\' + QByteArray(1, char(u));
        else if (u == 0x2028 || u == '\n')
            out += "\\line ";
        else if (u < 0x80)
            out += char(u);
        else
            out += "\\u" + QByteArray::number(qint16(u)) + '?';
    }
    return out;
}

QByteArray runs(const QTextBlock &block)
{
    QByteArray out;
    for (auto it = block.begin(); !it.atEnd(); ++it) {
        const QTextFragment fragment = it.fragment();
        const QTextCharFormat format = fragment.charFormat();
        QByteArray open;
        if (format.fontWeight() >= QFont::Bold)
            open += "\\b";
        if (format.fontItalic())
            open += "\\i";
        if (format.fontFixedPitch() || format.fontFamilies().toStringList().contains(QStringLiteral("monospace")))
            open += "\\f1";
        const QByteArray text = escaped(fragment.text());
        out += open.isEmpty() ? text : "{" + open + ' ' + text + '}';
    }
    return out;
}

} // namespace

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    if (argc != 3) {
        std::fputs("usage: manual HTML RTF\n", stderr);
        return 2;
    }
    QFile html(QString::fromLocal8Bit(argv[1]));
    if (!html.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "manual: cannot read %s\n", argv[1]);
        return 1;
    }
    QTextDocument document;
    document.setHtml(QString::fromUtf8(html.readAll()));
    QByteArray rtf = "{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0\\fswiss Liberation Sans;}{\\f1\\fmodern Liberation "
                     "Mono;}}\n\\fs22\n";
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        if (block.text().trimmed().isEmpty())
            continue;
        switch (block.blockFormat().headingLevel()) {
        case 1:
            rtf += "{\\pard\\sa200\\b\\fs36 " + escaped(block.text()) + "\\par}\n";
            break;
        case 2:
            rtf += "{\\pard\\sb120\\sa120\\b\\fs28 " + escaped(block.text()) + "\\par}\n";
            break;
        default:
            if (block.textList())
                rtf += "{\\pard\\li360\\fi-240\\sa80 \\bullet\\tab " + runs(block) + "\\par}\n";
            else
                rtf += "{\\pard\\sa160 " + runs(block) + "\\par}\n";
            break;
        }
    }
    rtf += "}\n";
    QFile out(QString::fromLocal8Bit(argv[2]));
    if (!out.open(QIODevice::WriteOnly) || out.write(rtf) != rtf.size()) {
        std::fprintf(stderr, "manual: cannot write %s\n", argv[2]);
        return 1;
    }
    return 0;
}
