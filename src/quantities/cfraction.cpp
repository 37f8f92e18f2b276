#include "cfraction.h"

#include "core/platform/voice.h"
#include "core/platform/platform.h"

#include <cmath>
#include <numeric>

namespace {

// The largest I in 1..floor(|d|/2) dividing both |n| and |d|; 0 when there is none.
int commonDivisorUpToHalf(int n, int d)
{
    const int limit = d / 2;
    if (limit < 1)
        return 0;
    const int g = std::gcd(n, d);
    if (g <= limit)
        return g;
    // g exceeds half of d, so g is d itself: every divisor of d divides n, and the largest
    // one within the limit is d over its smallest prime factor.
    for (int p = 2; p * p <= d; ++p) {
        if (d % p == 0)
            return d / p;
    }
    return 1; // d is prime
}

} // namespace

QString cFraction::StringValue() const
{
    QString text;
    if (m_wholeNumber != 0)
        text = QString::number(m_wholeNumber);
    if (m_numerator != 0) {
        text += u' ' + QString::number(m_numerator) + u'/' + QString::number(m_denominator);
        text = Trim(text);
    }
    return text;
}

void cFraction::setStringValue(const QString &text)
{
    m_wholeNumber = 0;
    m_denominator = 1;
    m_numerator = 0;
    const QString s = Trim(text);
    QString rest = s;
    const qsizetype space = s.indexOf(u' ');
    if (space >= 0) {
        m_wholeNumber = Floor16(Val(s.left(space)));
        rest = s.mid(space + 1);
    }
    const qsizetype slash = rest.indexOf(u'/');
    if (slash >= 0) {
        m_denominator = Floor16(Val(rest.mid(slash + 1)));
        m_numerator = Floor16(Val(rest.left(slash)));
    } else if (Val(rest) > 0) {
        // The whole trimmed text, whose blanks the reader skips: "2 3" gives 2 and 23.
        m_numerator = Floor16(Val(s));
    }
    if (m_denominator == 0)
        TheVoice().notice(QStringLiteral("Error parsing string to create fraction!"), QStringLiteral("Error"));
}

void cFraction::MakeTopHeavy()
{
    m_numerator = Add16(Mul16(m_wholeNumber, m_denominator), m_numerator);
    m_wholeNumber = 0;
}

void cFraction::Multiply(cFraction &pFraction)
{
    MakeTopHeavy();
    pFraction.MakeTopHeavy();
    m_numerator = Mul16(m_numerator, pFraction.m_numerator);
    m_denominator = Mul16(m_denominator, pFraction.m_denominator);
    Simplify();
}

void cFraction::Divide(cFraction &pFraction)
{
    MakeTopHeavy();
    pFraction.MakeTopHeavy();
    const qint16 numerator = Mul16(pFraction.m_numerator, m_denominator);
    m_denominator = Mul16(m_numerator, pFraction.m_denominator);
    m_numerator = numerator;
    Simplify();
}

void cFraction::Add(cFraction &pFraction)
{
    MakeTopHeavy();
    pFraction.MakeTopHeavy();
    m_numerator = Add16(Mul16(m_denominator, pFraction.m_numerator), Mul16(pFraction.m_denominator, m_numerator));
    m_denominator = Mul16(m_denominator, pFraction.m_denominator);
    Simplify();
}

void cFraction::Subtract(cFraction &pFraction)
{
    MakeTopHeavy();
    pFraction.MakeTopHeavy();
    m_numerator = Sub16(Mul16(m_numerator, pFraction.m_denominator), Mul16(m_denominator, pFraction.m_numerator));
    m_denominator = Mul16(m_denominator, pFraction.m_denominator);
    Simplify();
}

void cFraction::Simplify()
{
    if (m_numerator == 0 || m_denominator == 0) {
        m_numerator = 0;
        return;
    }
    if (m_numerator >= m_denominator) {
        m_wholeNumber = Floor16(double(m_numerator) / double(m_denominator));
        m_numerator = Sub16(m_numerator, Mul16(m_denominator, m_wholeNumber));
    }
    if (std::abs(int(m_numerator)) < 1)
        return;
    const int divisor = commonDivisorUpToHalf(std::abs(int(m_numerator)), std::abs(int(m_denominator)));
    if (divisor == 0)
        throw PlatformError(PlatformError::DivisionByZero);
    m_numerator = ToInt16(double(m_numerator) / divisor);
    m_denominator = ToInt16(double(m_denominator) / divisor);
}
