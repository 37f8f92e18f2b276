#pragma once
// MealMaster: the plain-text format in which households keep and swap recipe collections.
//
// A recipe runs from a header line ("MMMMM----- Recipe via Meal-Master ..." or
// "---------- Recipe via Meal-Master ...") to an end line ("MMMMM" or "-----"). Between them:
// Title:, Categories: and Yield: (or Servings:) lines; ingredient lines in fixed columns
// (amount in columns 1-7, a measure code in 9-10, the text from 12; a line whose text starts
// with "-" continues the line above; a second column may start at column 41); then the
// directions, one paragraph a step.

#include "recipes/recipedata.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <any>

class QIODevice;

// The two-letter measure codes and the household's names for them.
class MeasureCodes
{
public:
    // The names the household uses (its measure list): a code reads as the household's spelling
    // of one of its names when the list has one.
    explicit MeasureCodes(const QStringList &householdMeasures = {});
    // The measure for a code ("---" for none); an unknown code reads as it stands.
    QString name(const QString &code) const;
    // The code that reads back as exactly this measure; "" when none does.
    QString code(const QString &measure) const;
    // The household's measure a text starts with, followed by a blank; "" when none.
    QString leadingMeasure(const QString &text) const;

private:
    QHash<QString, QString> m_names; // code -> measure
    QHash<QString, QString> m_codes; // measure -> code
    QStringList m_household;
};

// The text of a file's bytes, decided once for the whole file: UTF-8 when every byte sequence
// is, else the DOS code page 437 when it uses the bytes 0x80-0x9F (its accented letters),
// else Latin-1.
enum class MealMasterEncoding { Utf8, Cp437, Latin1 };
MealMasterEncoding DetectMealMasterEncoding(QIODevice &file);
QString DecodeMealMasterLine(const QByteArray &line, MealMasterEncoding encoding);

struct MealMasterRecipe {
    RecipeData recipe;
    // Why it cannot be taken in; "" when it can.
    QString problem;
    // Where it stands in the file, header to end line, in bytes.
    qint64 begin = 0;
    qint64 end = 0;
    // What the importer made of it while reading (see MealMasterFeed).
    std::any prepared;
};

// Reads the recipes of a file one at a time, a block at a time, without holding the file. The
// reader owns the device's position.
class MealMasterReader
{
public:
    MealMasterReader(QIODevice &file, const MeasureCodes &codes);
    // The next recipe; false at the end of the file.
    bool next(MealMasterRecipe &out);
    // How far the reading has come, in bytes.
    qint64 position() const;

    // Lines longer than this end the recipe they stand in as rejected.
    static constexpr qsizetype kLongestLine = 1 << 20;

private:
    struct Line {
        QString text;
        qint64 begin = 0;
        bool tooLong = false;
    };
    bool readLine(Line &line);
    void parse(const QList<Line> &lines, MealMasterRecipe &out) const;

    QIODevice &m_file;
    QByteArray m_buffer; // a block of the file, read from m_bufferStart
    qint64 m_bufferStart = 0;
    qsizetype m_at = 0;
    const MeasureCodes &m_codes;
    MealMasterEncoding m_encoding;
    bool m_pending = false;
    Line m_next;
    QList<Line> m_lines; // the recipe's, kept for the next one's room
};

// The ingredient of one column of an ingredient line; ok is false when the text is not one.
struct MealMasterIngredient {
    bool ok = false;
    QString amount;
    QString code;
    QString text;
};
MealMasterIngredient ParseMealMasterIngredient(const QString &column);

// A recipe as MealMaster lines, header to end line, each at most 80 columns (a single word
// longer than a line's room stands whole). The cabinet names are not written: the format has
// no place for them.
QStringList FormatMealMaster(const RecipeData &recipe, const MeasureCodes &codes);

// The cabinet name an imported ingredient gets: the words before a ",", ";", "(", "/" or " or ",
// hyphenated words kept whole; the whole text when that leaves fewer than three letters.
QString MealMasterCabinetName(const QString &ingredient);
