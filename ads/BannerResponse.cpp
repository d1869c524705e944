#include "BannerResponse.h"

#include "BoundedFetch.h"

#include <QBuffer>
#include <QImageReader>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>

#include <algorithm>
#include <cmath>

namespace {

bool fail(GADRequestError *error, GADRequestError::Code code, const QString &description)
{
    if (error) {
        error->code = code;
        error->localizedDescription = description;
    }
    return false;
}

} // namespace

namespace BannerResponse {

std::optional<Description> parseDescription(const QByteArray &json, int minRefresh, int maxRefresh, int defaultRefresh,
                                            GADRequestError *error)
{
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(json, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        fail(error, GADRequestError::InvalidResponse,
             QStringLiteral("The banner description is not JSON: %1").arg(parseError.errorString()));
        return std::nullopt;
    }
    if (!document.isObject()) {
        fail(error, GADRequestError::InvalidResponse, QStringLiteral("The banner description is not an object"));
        return std::nullopt;
    }
    const QJsonObject object = document.object();
    const QJsonValue imageValue = object.value(QLatin1String("image"));
    const QJsonValue clickValue = object.value(QLatin1String("click"));
    const QJsonValue refreshValue = object.value(QLatin1String("refresh"));
    if (!imageValue.isString() || !clickValue.isString()) {
        fail(error, GADRequestError::InvalidResponse,
             QStringLiteral("The banner description lacks an \"image\" or \"click\" text"));
        return std::nullopt;
    }
    Description description;
    description.image = QUrl(imageValue.toString(), QUrl::StrictMode);
    description.click = QUrl(clickValue.toString(), QUrl::StrictMode);
    if (!BoundedFetch::isWebUrl(description.image) || !BoundedFetch::isWebUrl(description.click)) {
        fail(error, GADRequestError::InvalidResponse,
             QStringLiteral("The banner's image or click address is not an http(s) address"));
        return std::nullopt;
    }
    description.refreshSeconds = defaultRefresh;
    if (!refreshValue.isUndefined()) {
        if (!refreshValue.isDouble()) {
            fail(error, GADRequestError::InvalidResponse, QStringLiteral("\"refresh\" is not a number"));
            return std::nullopt;
        }
        // Clamp before converting: the server's number may be far outside int.
        const double seconds = std::round(refreshValue.toDouble());
        description.refreshSeconds = int(std::clamp(seconds, double(minRefresh), double(maxRefresh)));
    }
    return description;
}

QImage decodeImage(const QByteArray &bytes, int maxSide, const QSize &keepAtMost, GADRequestError *error)
{
    QByteArray data = bytes;
    QBuffer buffer(&data);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    const QByteArray format = reader.format();
    if (format != "png" && format != "jpeg" && format != "jpg" && format != "gif") {
        fail(error, GADRequestError::InvalidImage, QStringLiteral("The banner image is not PNG, JPEG or GIF"));
        return {};
    }
    const QSize size = reader.size();
    if (!size.isValid() || size.isEmpty()) {
        fail(error, GADRequestError::InvalidImage, QStringLiteral("The banner image has no size"));
        return {};
    }
    if (size.width() > maxSide || size.height() > maxSide) {
        fail(error, GADRequestError::TooLarge,
             QStringLiteral("The banner image is %1 x %2 pixels, too large").arg(size.width()).arg(size.height()));
        return {};
    }
    // The limit is process-wide: lower it for a banner's sake, never raise a stricter
    // one. It is in megabytes: room for the largest image accepted, 32 bits a pixel.
    const int limitMB = int(std::max<qint64>(1, qint64(maxSide) * maxSide * 4 / (1024 * 1024)));
    const int allocationLimit = QImageReader::allocationLimit();
    if (allocationLimit == 0 || allocationLimit > limitMB)
        QImageReader::setAllocationLimit(limitMB);
    QImage decoded = reader.read();
    if (decoded.isNull()) {
        fail(error, GADRequestError::InvalidImage,
             QStringLiteral("The banner image does not decode: %1").arg(reader.errorString()));
        return {};
    }
    if (keepAtMost.isValid() && !keepAtMost.isEmpty()
        && (decoded.width() > keepAtMost.width() || decoded.height() > keepAtMost.height())) {
        // A sliver (4096 x 1) would round to no pixel at all on one side.
        const QSize fitted = decoded.size().scaled(keepAtMost, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
        decoded = decoded.scaled(fitted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    }
    return decoded;
}

} // namespace BannerResponse
