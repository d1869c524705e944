#pragma once

// Small helpers for reading rendered widget pixels in logical coordinates.

#include <QColor>
#include <QImage>
#include <QPoint>
#include <QString>

#include <cmath>
#include <cstdlib>

namespace RenderProbe {

// The colour at a logical point of an image with any device pixel ratio,
// sampled at the centre of the logical pixel, un-premultiplied.
inline QColor at(const QImage &image, qreal x, qreal y)
{
    const qreal ratio = image.devicePixelRatio();
    const int px = int(std::floor((x + 0.5) * ratio));
    const int py = int(std::floor((y + 0.5) * ratio));
    if (!image.valid(px, py))
        return QColor();
    return QColor::fromRgba(image.pixel(px, py));
}

inline bool near(const QColor &color, const QColor &expected, int tolerance = 24)
{
    return color.isValid() && std::abs(color.red() - expected.red()) <= tolerance
        && std::abs(color.green() - expected.green()) <= tolerance
        && std::abs(color.blue() - expected.blue()) <= tolerance
        && std::abs(color.alpha() - expected.alpha()) <= tolerance;
}

inline QString describe(const QColor &color)
{
    if (!color.isValid())
        return QStringLiteral("(outside the image)");
    return QStringLiteral("rgba(%1, %2, %3, %4)")
        .arg(color.red())
        .arg(color.green())
        .arg(color.blue())
        .arg(color.alpha());
}

} // namespace RenderProbe
