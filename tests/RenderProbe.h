#pragma once

// Small helpers for reading rendered widget pixels in logical coordinates.

#include <QColor>
#include <QImage>
#include <QString>

#include <cmath>
#include <cstdlib>

namespace RenderProbe {

// The colour at a logical point of an image with any device pixel ratio,
// sampled at the centre of the logical pixel, as stored (the renderer's images
// are premultiplied); invalid outside the image.
inline QColor at(const QImage &image, qreal x, qreal y)
{
    const qreal ratio = image.devicePixelRatio();
    const QPoint p(int(std::floor((x + 0.5) * ratio)), int(std::floor((y + 0.5) * ratio)));
    return image.valid(p) ? QColor::fromRgba(image.pixel(p)) : QColor();
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
    return color.isValid() ? QStringLiteral("rgba(%1, %2, %3, %4)")
                                 .arg(color.red())
                                 .arg(color.green())
                                 .arg(color.blue())
                                 .arg(color.alpha())
                           : QStringLiteral("(outside the image)");
}

} // namespace RenderProbe
