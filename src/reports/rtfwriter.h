#pragma once
// Our small rich-text writer: fonts, sizes, bold, italic, colours and page breaks, as word
// processors read them.

#include "recipeprinter.h"

#include <QByteArray>

QByteArray WriteRtf(const QList<PrintLine> &lines);
