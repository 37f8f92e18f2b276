#pragma once
// The tools that keep the cabinet in step with the recipes: cleaning removes items no
// ingredient names, refreshing adds every cabinet name the recipes use, repairing shortens the
// ingredients' cabinet names to a compact stem. Each asks first and works under the progress
// window.

#include <QString>

void CleanCabinet();
void RefreshCabinet();
void RepairCabinet();
// The stem of an ingredient text: cut at the first ",", "-", "(", "/" or " or " (any case),
// trimmed; the whole text, trimmed, when the stem would be shorter than three characters.
QString StripToDelimiter(const QString &text);
