#include "StringPrivate.h"

#include <cstdlib>
#include <locale.h>

namespace {

// Leading white space skipped, optional sign, digits up to the first other
// character; saturates on overflow.
long long longLongValue(const QString &s)
{
    const QByteArray bytes = s.toUtf8();
    return std::strtoll(bytes.constData(), nullptr, 10);
}

// Read as C reads it: the figures always have "." before their decimals, whatever
// LC_NUMERIC says.
double doubleValue(const QString &s)
{
    static const locale_t cLocale = newlocale(LC_ALL_MASK, "C", locale_t(nullptr));
    const QByteArray bytes = s.toUtf8();
    return strtod_l(bytes.constData(), nullptr, cLocale);
}

QString printInteger(long long value, const QString &suffix = QString())
{
    return QString::number(value) + suffix;
}

bool isBlank(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\t');
}

} // namespace

QString StringPrivate::stringByCommifyWithString(const QString &s)
{
    if (s.isNull())
        return QString();
    if (s.isEmpty())
        return QStringLiteral("");

    const QString t = stringByTrimmingSpaceWithString(s.startsWith(QLatin1Char('+')) ? s.mid(1) : s);

    // The fraction is kept verbatim; only the integer digits are grouped.
    QString working;
    const qsizetype point = t.indexOf(QLatin1Char('.'));
    const bool hasPoint = point >= 0;
    if (hasPoint) {
        const long long n = longLongValue(t);
        const QString fraction = t.mid(point);
        const double d = doubleValue(t);
        // "-0.25" has the integer part 0, which would lose its sign.
        if (d + 1.0 < 1.0 && n == 0)
            working = QLatin1Char('-') + printInteger(0, fraction);
        else
            working = printInteger(n, fraction);
    }

    const long long value = longLongValue(s);
    const QString intText = printInteger(value);
    const qsizetype digits = intText.size() - (value < 0 ? 1 : 0);
    if (digits - 1 < 3)
        return hasPoint ? working : intText;

    const qsizetype commas = (digits - 1) / 3;
    QString result = hasPoint ? working : intText;
    qsizetype offset = hasPoint ? intText.size() - 3 - working.size() : -3;
    for (qsizetype i = 0; i < commas; ++i) {
        // Odd inputs (junk before the number) can push the index outside; never write there.
        const qsizetype at = qBound<qsizetype>(0, result.size() + offset, result.size());
        result.insert(at, QLatin1Char(','));
        offset -= 4;
    }
    return result;
}

QString StringPrivate::stringByCommifyWithString(const QString &s, const QString &unit)
{
    const QString grouped = stringByCommifyWithString(s);
    return grouped + unit;
}

QString StringPrivate::stringByTrimmingSpaceWithString(const QString &s)
{
    if (s.isNull())
        return QString();
    if (s.isEmpty())
        return QStringLiteral("");

    qsizetype start = 0;
    while (start < s.size() && isBlank(s.at(start)))
        ++start;
    if (start == s.size())
        return QStringLiteral("");
    qsizetype trailing = 0;
    while (isBlank(s.at(s.size() - 1 - trailing)))
        ++trailing;
    return s.mid(start, s.size() - start - trailing);
}
