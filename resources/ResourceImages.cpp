#include "ResourceImages.h"

#include <QGuiApplication>
#include <QImage>
#include <QImageReader>
#include <QPixmapCache>

#include <algorithm>

namespace {
qreal keptScaleOverride = 0.0;
} // namespace

void ResourceImages::setKeptScale(qreal scale)
{
    keptScaleOverride = scale;
}

qreal ResourceImages::keptScale()
{
    const qreal screens = keptScaleOverride > 0.0 ? keptScaleOverride : qGuiApp ? qGuiApp->devicePixelRatio() : 1.0;
    return std::clamp(screens, 1.0, PixelRatio);
}

QPixmap ResourceImages::pixmap(const QString &name)
{
    const qreal scale = keptScale();
    const QString key = QStringLiteral("kovar-image:%1@%2").arg(name).arg(scale);
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap))
        return pixmap;
    // Decoded straight into an image: QPixmap(file) would keep a cached copy of its own,
    // and setting the pixel ratio on that shared copy would detach a second one. Named
    // as PNG, without detection, so that Qt's own decoder reads it without loading every
    // image plugin to ask it first.
    QImageReader reader(QStringLiteral(":/images/") + name, "png");
    reader.setAutoDetectImageFormat(false);
    QImage image = reader.read();
    if (image.isNull())
        return {};
    if (scale < PixelRatio)
        image = image.scaled((QSizeF(image.size()) * scale / PixelRatio).toSize(), Qt::IgnoreAspectRatio,
                             Qt::SmoothTransformation);
    image.setDevicePixelRatio(scale);
    pixmap = QPixmap::fromImage(std::move(image));
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}
