#pragma once
// The numeric conversions and run-time errors every part of Mirepan shares.
//
// Amounts, servings, times and identifiers are typed as text and read with the lenient
// reader Val, or converted strictly where a command insists on a number. Arithmetic on
// amounts is done in 16-bit signed integers; leaving that range, dividing by zero or
// converting a non-number is a PlatformError, which ends the current command with a
// message (see guard.h) and never the program.

#include <QString>
#include <exception>

class PlatformError : public std::exception
{
public:
    enum Code { Overflow = 6, DivisionByZero = 11, TypeMismatch = 13, FileAccess = 75 };

    explicit PlatformError(Code code, QString detail = {});

    Code code() const { return m_code; }
    // The user-facing description, such as "Overflow" or "Type mismatch".
    QString description() const;
    const char *what() const noexcept override { return m_what.constData(); }

private:
    Code m_code;
    QString m_detail;
    QByteArray m_what;
};

// The leading number of a text: blanks (spaces, tabs, line breaks) anywhere are skipped, an
// optional sign, digits, one decimal point and an exponent (E or D) are read as far as they
// form a number; a text with no leading number gives 0 ("12abc" 12, "2 3" 23, "abc" 0).
// A number too large for a double is an Overflow.
double Val(const QString &text);

// Round half to even into a signed 16-bit value; Overflow outside -32768..32767.
qint16 ToInt16(double value);
// Round half to even into a signed 32-bit value; Overflow outside its range.
qint32 ToInt32(double value);
// The largest whole number not above the value, as a signed 16-bit value (Overflow outside).
qint16 Floor16(double value);
// Strict conversion of a text to a 16-bit whole number: the whole text, trimmed, must be a
// number (a decimal rounds half to even); anything else is a TypeMismatch.
qint16 CInt(const QString &text);
// The same into 32 bits.
qint32 CLng(const QString &text);

// 16-bit signed arithmetic that raises Overflow instead of wrapping.
qint16 Add16(qint16 a, qint16 b);
qint16 Sub16(qint16 a, qint16 b);
qint16 Mul16(qint16 a, qint16 b);

// The text without the spaces at either end (tabs and line breaks stay, as the platform's
// Trim leaves them).
QString Trim(const QString &text);
// Text stored as UTF-8 (a database field): a leading U+FEFF is part of the text, not a
// byte-order mark to drop as QString::fromUtf8 does.
QString FromStoredUtf8(const char *data, qsizetype size);

// Number formats used by the program: "00" (at least two digits), "0000000" (seven digits),
// and "00:00" (hours and minutes from the last two digits: 130 gives 01:30, 12345 123:45).
QString Format(qint64 value, const QString &pattern);
