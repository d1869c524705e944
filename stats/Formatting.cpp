#include "Formatting.h"

#include "StringPrivate.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <locale.h>

namespace {

// Truncation toward zero that saturates instead of overflowing, as the unit
// choice needs (a value of 2^31 units or more still counts as "at least one").
qint32 saturatingTruncate(double value)
{
    if (std::isnan(value))
        return 0;
    if (value >= 2147483647.0)
        return INT_MAX;
    if (value <= -2147483648.0)
        return INT_MIN;
    return qint32(value);
}

const char *decimalFormat(int decmal)
{
    switch (decmal) {
    case 1:
        return "%.1f";
    case 2:
        return "%.2f";
    case 3:
        return "%.3f";
    default:
        return "%.0f";
    }
}

QString withUnitSpace(const char *unit, bool unitSpace)
{
    const QString text = QString::fromLatin1(unit);
    return unitSpace ? QLatin1Char(' ') + text : text;
}

// The C locale of this thread's printf, made once; uselocale() leaves other threads
// and the process's own locale (the start times' date style follows it) alone.
locale_t cLocale()
{
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", locale_t(nullptr));
    return locale;
}

} // namespace

namespace Formatting {

QString print(const char *format, ...)
{
    char buffer[512];
    const locale_t previous = uselocale(cLocale());
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(buffer, sizeof buffer, format, arguments);
    va_end(arguments);
    uselocale(previous);
    if (length < 0)
        return QString();
    return QString::fromLatin1(buffer, std::min<int>(length, int(sizeof buffer) - 1));
}

QString byteToKiloMegaGigaWithByte(double byte, int decmal, bool unitSpace)
{
    const char *format = decimalFormat(decmal);
    QString number;
    const char *unit;
    if (const double g = byte / (1024.0 * 1024.0 * 1024.0); saturatingTruncate(g) > 0) {
        number = print(format, g);
        unit = "GB";
    } else if (const double m = byte / (1024.0 * 1024.0); saturatingTruncate(m) > 0) {
        number = print(format, m);
        unit = "MB";
    } else if (const double k = byte / 1024.0; saturatingTruncate(k) > 0) {
        number = print(format, k);
        unit = "KB";
    } else {
        number = print("%.0f", byte);
        unit = "Byte";
    }
    return StringPrivate::stringByCommifyWithString(number, withUnitSpace(unit, unitSpace));
}

QString hzToKiloMegaGigaWithHz(double hz, int decmal, bool unitSpace)
{
    const char *format = decimalFormat(decmal);
    QString number;
    const char *unit;
    if (const double g = hz / 1000000000.0; saturatingTruncate(g) > 0) {
        number = print(format, g);
        unit = "GHz";
    } else if (const double m = hz / 1000000.0; m > 0.0) {
        // Every positive frequency below 1 GHz shows in MHz, even below 1 MHz.
        number = print(format, m);
        unit = "MHz";
    } else if (const double k = hz / 1000.0; k > 0.0) {
        number = print(format, k);
        unit = "KHz";
    } else {
        number = print("%.0f", hz);
        unit = "Hz";
    }
    return number + withUnitSpace(unit, unitSpace);
}

} // namespace Formatting
