#include "stem.h"

QString StripToDelimiter(const QString &text)
{
    qsizetype cut = text.size();
    qsizetype bound = text.size();
    for (const QChar delimiter : {u',', u'-', u'(', u'/'}) {
        const qsizetype p = text.indexOf(delimiter) + 1; // from 1; 0 when absent
        if (p > 0 && p < bound) {
            bound = p - 1;
            cut = std::min(cut, p - 1);
        }
    }
    const qsizetype p = text.toUpper().indexOf(QStringLiteral(" OR ")) + 1;
    if (p > 0 && p < bound)
        cut = std::min(cut, p);
    if (cut < 3)
        cut = text.size();
    return text.left(cut).trimmed();
}
