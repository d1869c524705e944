#include "StartTimeFormatter.h"

#include <unicode/udat.h>

StartTimeFormatter::StartTimeFormatter(const QByteArray &locale, const QString &timeZone)
{
    static_assert(sizeof(UChar) == sizeof(char16_t));
    UErrorCode status = U_ZERO_ERROR;
    const UChar *zone = timeZone.isEmpty() ? nullptr : reinterpret_cast<const UChar *>(timeZone.utf16());
    UDateFormat *format = udat_open(UDAT_MEDIUM, UDAT_MEDIUM, locale.isEmpty() ? nullptr : locale.constData(), zone,
                                    zone ? int32_t(timeZone.size()) : -1, nullptr, -1, &status);
    if (U_FAILURE(status)) {
        if (format)
            udat_close(format);
        return;
    }
    _format = format;
}

StartTimeFormatter::~StartTimeFormatter()
{
    if (_format)
        udat_close(static_cast<UDateFormat *>(_format));
}

QString StartTimeFormatter::format(qint64 secondsSinceEpoch) const
{
    if (!_format)
        return QString();
    constexpr qint64 firstSecondOfYear1 = -62135596800;
    constexpr qint64 lastSecondOfYear9999 = 253402300799;
    if (secondsSinceEpoch < firstSecondOfYear1 || secondsSinceEpoch > lastSecondOfYear9999)
        return QStringLiteral("");
    UChar buffer[128];
    UErrorCode status = U_ZERO_ERROR;
    const UDate when = double(secondsSinceEpoch) * 1000.0;
    const int32_t length = udat_format(static_cast<const UDateFormat *>(_format), when, buffer,
                                       int32_t(std::size(buffer)), nullptr, &status);
    if (U_FAILURE(status) || length <= 0)
        return QString();
    return QString::fromUtf16(reinterpret_cast<const char16_t *>(buffer), length);
}
