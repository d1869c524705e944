#include "UnitFormatter.h"

#include <QByteArray>

#include <climits>
#include <cmath>
#include <cstdio>

namespace {

// Truncation toward zero into a signed 32-bit integer that saturates instead of
// overflowing, so that huge values still count as "at least one unit".
qint32 truncateToInt32(double value)
{
    if (std::isnan(value))
        return 0;
    if (value >= double(INT_MAX))
        return INT_MAX;
    if (value <= double(INT_MIN))
        return INT_MIN;
    return qint32(value);
}

// snprintf, not QString::number: the C library rounds exact halves to even.
QString printFixed(double value, int decimals)
{
    char buffer[512];
    std::snprintf(buffer, sizeof buffer, "%.*f", decimals, value);
    return QString::fromLatin1(buffer);
}

int decimalsFor(int decmal)
{
    return (decmal >= 0 && decmal <= 3) ? decmal : 0;
}

bool isBlank(QChar c)
{
    return c == u' ' || c == u'\t';
}

// Leading blanks, an optional sign, then digits; saturates like the platform's
// string-to-integer conversion does.
qint64 longLongValue(const QString &s)
{
    qsizetype i = 0;
    while (i < s.size() && s.at(i).isSpace())
        ++i;
    bool negative = false;
    if (i < s.size() && (s.at(i) == u'+' || s.at(i) == u'-')) {
        negative = s.at(i) == u'-';
        ++i;
    }
    quint64 magnitude = 0;
    bool overflow = false;
    for (; i < s.size() && s.at(i) >= u'0' && s.at(i) <= u'9'; ++i) {
        const unsigned digit = s.at(i).unicode() - u'0';
        if (magnitude > (quint64(LLONG_MAX) + 1 - digit) / 10)
            overflow = true;
        else
            magnitude = magnitude * 10 + digit;
    }
    if (negative) {
        if (overflow || magnitude > quint64(LLONG_MAX) + 1)
            return LLONG_MIN;
        return magnitude == quint64(LLONG_MAX) + 1 ? LLONG_MIN : -qint64(magnitude);
    }
    if (overflow || magnitude > quint64(LLONG_MAX))
        return LLONG_MAX;
    return qint64(magnitude);
}

// The numeric prefix of s as a double, independent of the process locale.
double doubleValue(const QString &s)
{
    qsizetype i = 0;
    while (i < s.size() && s.at(i).isSpace())
        ++i;
    const qsizetype start = i;
    if (i < s.size() && (s.at(i) == u'+' || s.at(i) == u'-'))
        ++i;
    while (i < s.size() && s.at(i).isDigit())
        ++i;
    if (i < s.size() && s.at(i) == u'.') {
        ++i;
        while (i < s.size() && s.at(i).isDigit())
            ++i;
    }
    bool ok = false;
    const double value = s.mid(start, i - start).toLatin1().toDouble(&ok);
    return ok ? value : 0.0;
}

QString printLongLong(qint64 value)
{
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%lld", static_cast<long long>(value));
    return QString::fromLatin1(buffer);
}

} // namespace

QString UnitFormatter::byteToKiloMegaGigaWithByte(double bytes, int decmal, bool unitSpace)
{
    const int decimals = decimalsFor(decmal);
    QString number;
    QString unit;
    const double g = bytes / (1024.0 * 1024.0 * 1024.0);
    const double m = bytes / (1024.0 * 1024.0);
    const double k = bytes / 1024.0;
    if (truncateToInt32(g) > 0) {
        number = printFixed(g, decimals);
        unit = QStringLiteral("GB");
    } else if (truncateToInt32(m) > 0) {
        number = printFixed(m, decimals);
        unit = QStringLiteral("MB");
    } else if (truncateToInt32(k) > 0) {
        number = printFixed(k, decimals);
        unit = QStringLiteral("KB");
    } else {
        number = printFixed(bytes, 0);
        unit = QStringLiteral("Byte");
    }
    if (unitSpace)
        unit.prepend(u' ');
    return stringByCommifyWithString(number, unit);
}

QString UnitFormatter::hzToKiloMegaGigaWithHz(double hz, int decmal, bool unitSpace)
{
    const int decimals = decimalsFor(decmal);
    QString number;
    QString unit;
    const double g = hz / 1000000000.0;
    const double m = hz / 1000000.0;
    const double k = hz / 1000.0;
    if (truncateToInt32(g) > 0) {
        number = printFixed(g, decimals);
        unit = QStringLiteral("GHz");
    } else if (m > 0.0) {
        number = printFixed(m, decimals);
        unit = QStringLiteral("MHz");
    } else if (k > 0.0) {
        number = printFixed(k, decimals);
        unit = QStringLiteral("KHz");
    } else {
        number = printFixed(hz, 0);
        unit = QStringLiteral("Hz");
    }
    if (unitSpace)
        unit.prepend(u' ');
    return number + unit;
}

QString UnitFormatter::stringByCommifyWithString(const QString &string)
{
    if (string.isNull())
        return {};
    if (string.isEmpty())
        return QStringLiteral("");

    QString t = string;
    if (t.startsWith(u'+'))
        t.remove(0, 1);
    t = stringByTrimmingSpaceWithString(t);

    const qsizetype point = t.indexOf(u'.');
    QString working;
    if (point >= 0) {
        const qint64 n = longLongValue(t);
        const QString fraction = t.mid(point);
        const double d = doubleValue(t);
        // "-0.25": the integer part alone would lose the sign.
        if (d + 1.0 < 1.0 && n == 0)
            working = QStringLiteral("-0") + fraction;
        else
            working = printLongLong(n) + fraction;
    }

    const qint64 integer = longLongValue(string);
    const QString intText = printLongLong(integer);
    const qsizetype digits = intText.size() - (integer < 0 ? 1 : 0);
    if (digits - 1 < 3)
        return point >= 0 ? working : intText;

    const qsizetype commas = (digits - 1) / 3;
    QString result;
    qsizetype offset;
    if (point < 0) {
        result = intText;
        offset = -3;
    } else {
        result = working;
        offset = intText.size() - 3 - working.size();
    }
    for (qsizetype i = 0; i < commas; ++i) {
        const qsizetype at = result.size() + offset;
        if (at < 0 || at > result.size())
            break; // input whose text and value disagree; keep what we have
        result.insert(at, u',');
        offset -= 4;
    }
    return result;
}

QString UnitFormatter::stringByCommifyWithString(const QString &string, const QString &unit)
{
    return stringByCommifyWithString(string) + unit;
}

QString UnitFormatter::stringByTrimmingSpaceWithString(const QString &string)
{
    if (string.isNull())
        return {};
    if (string.isEmpty())
        return QStringLiteral("");
    qsizetype start = 0;
    while (start < string.size() && isBlank(string.at(start)))
        ++start;
    if (start == string.size())
        return QStringLiteral("");
    qsizetype trailing = 0;
    while (isBlank(string.at(string.size() - 1 - trailing)))
        ++trailing;
    return string.mid(start, string.size() - start - trailing);
}
