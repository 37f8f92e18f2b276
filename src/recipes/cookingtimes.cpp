#include "cookingtimes.h"

#include <QRegularExpression>

namespace {

// "1 1/2", "1/2", "1.5", "25": the number of units.
double amountOf(const QString &text)
{
    static const QRegularExpression mixed(QStringLiteral("^(?:(\\d+)\\s+)?(\\d+)/(\\d+)$"));
    if (const QRegularExpressionMatch m = mixed.match(text); m.hasMatch()) {
        const double den = m.captured(3).toDouble();
        return den > 0 ? m.captured(1).toDouble() + m.captured(2).toDouble() / den : 0;
    }
    return text.toDouble();
}

} // namespace

QList<CookingTime> FindCookingTimes(const QString &direction)
{
    static const QRegularExpression time(
        QStringLiteral("(\\d+(?:\\s+\\d+/\\d+|/\\d+|\\.\\d+)?)(?:\\s*(?:-|–|to)\\s*(\\d+(?:\\.\\d+)?))?\\s*"
                       "(hours?|hrs?|minutes?|mins?|seconds?|secs?)\\b"),
        QRegularExpression::CaseInsensitiveOption);
    QList<CookingTime> found;
    for (auto it = time.globalMatch(direction); it.hasNext();) {
        const QRegularExpressionMatch m = it.next();
        const QString unit = m.captured(3).toLower();
        const int perUnit = unit.startsWith(u'h') ? 3600 : unit.startsWith(u'm') ? 60 : 1;
        const int seconds = int(amountOf(m.captured(1)) * perUnit + 0.5);
        if (seconds > 0 && seconds <= 48 * 3600)
            found.append({m.captured(0), seconds});
    }
    return found;
}
