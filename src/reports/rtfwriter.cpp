#include "rtfwriter.h"

#include <QStringList>

namespace {

QByteArray escape(const QString &text)
{
    QByteArray out;
    for (const QChar c : text) {
        const ushort u = c.unicode();
        if (c == u'\\' || c == u'{' || c == u'}') {
            out += '\\';
            out += char(u);
        } else if (c == u'\t') {
            out += "\\tab ";
        } else if (c == u'\n') {
            out += "\\line ";
        } else if (c == u'\r') {
            continue;
        } else if (u < 0x80) {
            out += char(u);
        } else {
            // A signed 16-bit number, then '?' for readers without Unicode.
            out += "\\u" + QByteArray::number(qint16(u)) + '?';
        }
    }
    return out;
}

int halfPoints(double size)
{
    return std::max(1, int(size * 2 + 0.5));
}

} // namespace

QByteArray WriteRtf(const QList<PrintLine> &lines)
{
    QStringList fonts;
    QList<quint32> colours {0};
    for (const PrintLine &line : lines) {
        for (const PrintRun &run : line.runs) {
            if (!fonts.contains(run.font))
                fonts.append(run.font);
            if (!colours.contains(run.rgb))
                colours.append(run.rgb);
        }
    }
    if (fonts.isEmpty())
        fonts.append(QStringLiteral("Courier New"));

    QByteArray rtf = "{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1\n{\\fonttbl";
    for (qsizetype i = 0; i < fonts.size(); ++i)
        rtf += "{\\f" + QByteArray::number(i) + "\\fmodern " + escape(fonts[i]) + ";}";
    rtf += "}\n{\\colortbl;";
    for (quint32 rgb : colours) {
        rtf += "\\red" + QByteArray::number(rgb & 0xff) + "\\green" + QByteArray::number((rgb >> 8) & 0xff) + "\\blue" +
               QByteArray::number((rgb >> 16) & 0xff) + ';';
    }
    // Page: A4 with 2 cm margins (1134 twips).
    rtf += "}\n\\paperw11906\\paperh16838\\margl1134\\margr1134\\margt1134\\margb1134\n";
    for (const PrintLine &line : lines) {
        if (line.newPage)
            rtf += "\\page\n";
        rtf += "\\pard\\plain";
        if (line.runs.isEmpty())
            rtf += "\\fs20";
        for (const PrintRun &run : line.runs) {
            rtf += "{\\f" + QByteArray::number(fonts.indexOf(run.font)) + "\\fs" +
                   QByteArray::number(halfPoints(run.size)) + "\\cf" + QByteArray::number(colours.indexOf(run.rgb) + 1);
            if (run.bold)
                rtf += "\\b";
            if (run.italic)
                rtf += "\\i";
            rtf += ' ' + escape(run.text) + '}';
        }
        // An empty line keeps its size, so a blank has the height it was given.
        if (!line.runs.isEmpty())
            rtf += "\\fs" + QByteArray::number(halfPoints(line.size()));
        rtf += "\\par\n";
    }
    rtf += "}\n";
    return rtf;
}
