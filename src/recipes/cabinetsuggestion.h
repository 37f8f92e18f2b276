#pragma once
// Suggesting short cabinet names for an ingredient as written in a recipe.

#include <QString>
#include <QStringList>

// The words of an ingredient text worth looking up (three letters or more, apostrophes and
// surrounding punctuation dropped), each followed by its singular when that differs:
// "Onions, chopped" gives Onions, Onion, chopped.
QStringList CabinetSearchForms(const QString &itemText);
// The query for cabinet items that contain any of the forms, for a recipe type code; empty
// when there is nothing to look up.
QString CabinetSuggestionSql(const QStringList &forms, const QString &typeCode);
