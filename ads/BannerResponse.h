#pragma once

#include "GADRequestError.h"

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QUrl>

#include <optional>

// The two bodies an ad server sends, read as the banner reads them: neither is
// trusted, and every way they can be wrong is an error, never a crash.
namespace BannerResponse {

struct Description {
    QUrl image;
    QUrl click;
    int refreshSeconds = 0;
};

// The banner description: {"image": url, "click": url, "refresh": seconds}, both
// addresses http(s), the refresh bounded to [minRefresh, maxRefresh] (defaultRefresh
// when absent). nullopt with *error filled in when it is not that.
std::optional<Description> parseDescription(const QByteArray &json, int minRefresh, int maxRefresh, int defaultRefresh,
                                            GADRequestError *error);

// The banner image, PNG, JPEG or GIF of at most maxSide pixels a side, decoded and
// scaled down to fit within keepAtMost when larger (a banner is never shown above its
// frame at the screen's scale). A null image with *error filled in when it is not.
QImage decodeImage(const QByteArray &bytes, int maxSide, const QSize &keepAtMost, GADRequestError *error);

} // namespace BannerResponse
