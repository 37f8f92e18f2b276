#pragma once
// cFraction: an amount written as text ("1 1/2", "3/4", "2") and exact arithmetic on it.
//
// Three signed 16-bit fields, each with its own sign: the value is
// WholeNumber + Numerator / Denominator. Products and sums leave the 16-bit range as an
// Overflow (a PlatformError), never by wrapping. Formatting neither simplifies nor
// normalises: "2" parses to 2/1 and prints "2/1" until arithmetic has run.

#include <QString>

class cFraction
{
public:
    qint16 Numerator() const { return m_numerator; }
    void setNumerator(qint16 value) { m_numerator = value; }
    qint16 Denominator() const { return m_denominator; }
    void setDenominator(qint16 value) { m_denominator = value; }
    qint16 WholeNumber() const { return m_wholeNumber; }
    void setWholeNumber(qint16 value) { m_wholeNumber = value; }

    // The amount as text: the whole number, then " numerator/denominator" when there is a
    // fractional part; "" when both are 0.
    QString StringValue() const;
    // Parses an amount. A zero denominator ("1/0") shows "Error parsing string to create
    // fraction!" and keeps the parsed fields.
    void setStringValue(const QString &text);

    // Each operation first makes both this and the argument top-heavy (the argument is
    // changed too), then reduces the result with Simplify.
    void Multiply(cFraction &pFraction);
    // This becomes pFraction divided by this.
    void Divide(cFraction &pFraction);
    void Add(cFraction &pFraction);
    // This minus pFraction.
    void Subtract(cFraction &pFraction);
    // Folds the whole number into the numerator; the whole part's sign is not carried.
    void MakeTopHeavy();
    // Turns a top-heavy fraction into a mixed number reduced by the largest common divisor
    // up to half the denominator. A denominator of magnitude 1 with a remaining numerator is
    // a DivisionByZero.
    void Simplify();

private:
    qint16 m_numerator = 0;
    qint16 m_denominator = 0;
    qint16 m_wholeNumber = 0;
};
