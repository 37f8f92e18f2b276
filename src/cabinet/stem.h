#pragma once
// The stem rule that makes a short cabinet name from an ingredient text.

#include <QString>

// The stem of an ingredient text: cut at the first ",", "-", "(", "/" or " or " (any case),
// trimmed; the whole text, trimmed, when the stem would be shorter than three characters.
QString StripToDelimiter(const QString &text);
