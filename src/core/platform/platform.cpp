#include "platform.h"

#include <QCoreApplication>
#include <cmath>
#include <limits>

PlatformError::PlatformError(Code code, QString detail) : m_code(code), m_detail(std::move(detail))
{
    m_what = description().toUtf8();
}

QString PlatformError::description() const
{
    QString text;
    switch (m_code) {
    case Overflow:
        text = QStringLiteral("Overflow");
        break;
    case DivisionByZero:
        text = QStringLiteral("Division by zero");
        break;
    case TypeMismatch:
        text = QStringLiteral("Type mismatch");
        break;
    case FileAccess:
        text = QStringLiteral("Path/File access error");
        break;
    }
    if (!m_detail.isEmpty())
        text += QStringLiteral(": ") + m_detail;
    return text;
}

namespace {

bool isBlank(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r';
}

// Reads the leading number of text (blanks skipped) into out; returns the number of
// non-blank characters consumed and whether digits were found.
struct NumberScan {
    QString digits; // the number without blanks, in C locale form
    int consumedTo = 0; // index in the original text just after the number
    bool hasDigits = false;
};

NumberScan scanNumber(const QString &text)
{
    NumberScan scan;
    int i = 0;
    const int n = text.size();
    auto skipBlanks = [&] {
        while (i < n && isBlank(text[i]))
            ++i;
    };
    auto peek = [&]() -> QChar { return i < n ? text[i] : QChar(); };

    skipBlanks();
    if (peek() == u'+' || peek() == u'-') {
        scan.digits += peek();
        ++i;
    }
    bool seenPoint = false;
    for (;;) {
        skipBlanks();
        const QChar c = peek();
        if (c.isDigit() && c.unicode() < 128) {
            scan.digits += c;
            scan.hasDigits = true;
            ++i;
        } else if (c == u'.' && !seenPoint) {
            seenPoint = true;
            scan.digits += c;
            ++i;
        } else {
            break;
        }
    }
    scan.consumedTo = i;
    if (!scan.hasDigits)
        return scan;
    // An exponent counts only when digits follow it.
    const int save = i;
    skipBlanks();
    const QChar e = peek();
    if (e == u'e' || e == u'E' || e == u'd' || e == u'D') {
        ++i;
        QString exp = QStringLiteral("e");
        skipBlanks();
        if (peek() == u'+' || peek() == u'-') {
            exp += peek();
            ++i;
        }
        bool expDigits = false;
        for (;;) {
            skipBlanks();
            const QChar c = peek();
            if (c.isDigit() && c.unicode() < 128) {
                exp += c;
                expDigits = true;
                ++i;
            } else {
                break;
            }
        }
        if (expDigits) {
            scan.digits += exp;
            scan.consumedTo = i;
            return scan;
        }
    }
    i = save;
    return scan;
}

double toDouble(const NumberScan &scan)
{
    if (!scan.hasDigits)
        return 0.0;
    const double value = std::strtod(scan.digits.toLatin1().constData(), nullptr);
    if (std::isinf(value))
        throw PlatformError(PlatformError::Overflow);
    return value;
}

} // namespace

double Val(const QString &text)
{
    // Most texts read are plain whole numbers (line numbers, identifiers): those are read
    // straight away, exactly as the general reading would.
    if (!text.isEmpty() && text.size() <= 15) {
        qint64 value = 0;
        bool plain = true;
        for (const QChar c : text) {
            if (c < u'0' || c > u'9') {
                plain = false;
                break;
            }
            value = value * 10 + (c.unicode() - u'0');
        }
        if (plain)
            return double(value);
    }
    return toDouble(scanNumber(text));
}

qint16 ToInt16(double value)
{
    const double rounded = std::nearbyint(value); // the default rounding mode: half to even
    if (!(rounded >= -32768.0 && rounded <= 32767.0))
        throw PlatformError(PlatformError::Overflow);
    return static_cast<qint16>(rounded);
}

qint16 Floor16(double value)
{
    return ToInt16(std::floor(value));
}

namespace {

double strictNumber(const QString &text)
{
    const QString trimmed = text.trimmed();
    const NumberScan scan = scanNumber(trimmed);
    if (!scan.hasDigits || scan.consumedTo != trimmed.size())
        throw PlatformError(PlatformError::TypeMismatch);
    return toDouble(scan);
}

} // namespace

qint16 CInt(const QString &text)
{
    return ToInt16(strictNumber(text));
}

qint32 CLng(const QString &text)
{
    return ToInt32(strictNumber(text));
}

qint32 ToInt32(double value)
{
    const double rounded = std::nearbyint(value);
    if (!(rounded >= std::numeric_limits<qint32>::min() && rounded <= std::numeric_limits<qint32>::max()))
        throw PlatformError(PlatformError::Overflow);
    return static_cast<qint32>(rounded);
}

namespace {
qint16 checked16(int value)
{
    if (value < std::numeric_limits<qint16>::min() || value > std::numeric_limits<qint16>::max())
        throw PlatformError(PlatformError::Overflow);
    return static_cast<qint16>(value);
}
} // namespace

qint16 Add16(qint16 a, qint16 b)
{
    return checked16(int(a) + int(b));
}

qint16 Sub16(qint16 a, qint16 b)
{
    return checked16(int(a) - int(b));
}

qint16 Mul16(qint16 a, qint16 b)
{
    return checked16(int(a) * int(b));
}

QString Trim(const QString &text)
{
    qsizetype first = 0;
    qsizetype last = text.size();
    while (first < last && text[first] == u' ')
        ++first;
    while (last > first && text[last - 1] == u' ')
        --last;
    return text.mid(first, last - first);
}

QString Format(qint64 value, const QString &pattern)
{
    const QString sign = value < 0 ? QStringLiteral("-") : QString();
    const qint64 magnitude = value < 0 ? -value : value;
    if (pattern == u"00:00") {
        return sign + QStringLiteral("%1:%2")
                          .arg(magnitude / 100, 2, 10, QLatin1Char('0'))
                          .arg(magnitude % 100, 2, 10, QLatin1Char('0'));
    }
    // A run of zeros: at least that many digits.
    return sign + QString::number(magnitude).rightJustified(pattern.size(), u'0');
}

QString FromStoredUtf8(const char *data, qsizetype size)
{
    if (size >= 3 && data[0] == '\xEF' && data[1] == '\xBB' && data[2] == '\xBF')
        return QChar(0xFEFF) + QString::fromUtf8(data + 3, size - 3);
    return QString::fromUtf8(data, size);
}
