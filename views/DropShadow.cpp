#include "DropShadow.h"

#include <QCache>
#include <QDataStream>
#include <QIODevice>
#include <QImage>
#include <QPaintEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPainterPathStroker>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace {

// The shadows are of outlines that seldom change (frames, rings, bars), while blurring costs more
// than all the rest of a chart's drawing, the more so on dense or zoomed screens: each blurred
// image is kept for the next paint, keyed by the shape, its place, the scale and the blur.
constexpr qsizetype ShadowCacheBytes = 4 * 1024 * 1024;

QCache<QByteArray, QImage> &shadowCache()
{
    static QCache<QByteArray, QImage> cache(ShadowCacheBytes);
    return cache;
}

QByteArray shadowKey(const QPainterPath &area, qreal areaOpacity, qreal scale, qreal sigma)
{
    QByteArray key;
    key.reserve(area.elementCount() * 20 + 32);
    QDataStream stream(&key, QIODevice::WriteOnly);
    stream << areaOpacity << scale << sigma << qint32(area.fillRule());
    for (int i = 0; i < area.elementCount(); ++i) {
        const QPainterPath::Element e = area.elementAt(i);
        stream << qint8(e.type) << e.x << e.y;
    }
    return key;
}

// How many device pixels one logical unit spans on the painter's target,
// including the device pixel ratio of an image or widget backing store.
qreal deviceScale(const QPainter &painter)
{
    const QTransform t = painter.deviceTransform();
    qreal scale = std::sqrt(t.m11() * t.m11() + t.m12() * t.m12());
    if (!(scale > 0.0))
        scale = 1.0;
    return scale;
}

// Box widths whose threefold repetition approximates a Gaussian of sigma.
std::array<int, 3> boxRadii(qreal sigma)
{
    const qreal ideal = std::sqrt(12.0 * sigma * sigma / 3.0 + 1.0);
    int lower = int(std::floor(ideal));
    if (lower % 2 == 0)
        --lower;
    const int upper = lower + 2;
    const qreal m = std::round((12.0 * sigma * sigma - 3.0 * lower * lower - 12.0 * lower - 9.0)
                               / (-4.0 * lower - 4.0));
    std::array<int, 3> radii{};
    for (int i = 0; i < 3; ++i)
        radii[size_t(i)] = ((i < m ? lower : upper) - 1) / 2;
    return radii;
}

void boxBlurLine(const float *src, float *dst, int length, int stride, int radius)
{
    if (radius <= 0) {
        for (int i = 0; i < length; ++i)
            dst[i * stride] = src[i * stride];
        return;
    }
    const float scale = 1.0f / float(2 * radius + 1);
    float sum = 0.0f;
    // Pixels outside the image are transparent.
    for (int i = 0; i <= radius && i < length; ++i)
        sum += src[i * stride];
    for (int i = 0; i < length; ++i) {
        dst[i * stride] = sum * scale;
        const int entering = i + radius + 1;
        const int leaving = i - radius;
        if (entering < length)
            sum += src[entering * stride];
        if (leaving >= 0)
            sum -= src[leaving * stride];
    }
}

void gaussianBlurAlpha(QImage &image, qreal sigma)
{
    const int w = image.width();
    const int h = image.height();
    if (w == 0 || h == 0 || sigma <= 0.0)
        return;
    std::vector<float> a(size_t(w) * size_t(h));
    std::vector<float> b(a.size());
    for (int y = 0; y < h; ++y) {
        const QRgb *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < w; ++x)
            a[size_t(y) * size_t(w) + size_t(x)] = float(qAlpha(line[x]));
    }
    for (int radius : boxRadii(sigma)) {
        for (int y = 0; y < h; ++y)
            boxBlurLine(a.data() + size_t(y) * size_t(w), b.data() + size_t(y) * size_t(w), w, 1, radius);
        for (int x = 0; x < w; ++x)
            boxBlurLine(b.data() + x, a.data() + x, h, w, radius);
    }
    for (int y = 0; y < h; ++y) {
        QRgb *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < w; ++x) {
            const int alpha = std::clamp(int(std::lround(a[size_t(y) * size_t(w) + size_t(x)])), 0, 255);
            line[x] = qRgba(0, 0, 0, alpha); // black, so premultiplied and plain agree
        }
    }
}

} // namespace

void DropShadow::paintShadow(QPainter &painter, const QPainterPath &area, qreal areaOpacity, QPointF offset, qreal blur)
{
    if (area.isEmpty() || areaOpacity <= 0.0)
        return;
    const qreal scale = deviceScale(painter);
    const qreal sigma = std::max<qreal>(blur, 0.0) * 0.5;
    const qreal margin = std::ceil(3.0 * sigma) + 1.0;
    const QRectF shape = area.boundingRect();
    // Whole logical units, so that the shadow image lands on whole device pixels.
    const QRectF bounds(QPointF(std::floor(shape.left() - margin), std::floor(shape.top() - margin)),
                        QPointF(std::ceil(shape.right() + margin), std::ceil(shape.bottom() + margin)));
    const QSize pixels(int(std::ceil(bounds.width() * scale)), int(std::ceil(bounds.height() * scale)));
    if (pixels.isEmpty())
        return;

    const QByteArray key = shadowKey(area, areaOpacity, scale, sigma);
    QImage image;
    if (const QImage *kept = shadowCache().object(key)) {
        image = *kept;
    } else {
        image = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        {
            QPainter shadowPainter(&image);
            shadowPainter.setRenderHint(QPainter::Antialiasing);
            shadowPainter.scale(scale, scale);
            shadowPainter.translate(-bounds.topLeft());
            shadowPainter.fillPath(area, QColor::fromRgbF(0.0, 0.0, 0.0, std::clamp(areaOpacity, 0.0, 1.0)));
        }
        gaussianBlurAlpha(image, sigma * scale);
        // Shared, not copied; an image larger than the whole cache is simply not kept.
        shadowCache().insert(key, new QImage(image), std::max<qsizetype>(1, image.sizeInBytes()));
    }

    painter.save();
    painter.setOpacity(painter.opacity() * Opacity);
    painter.drawImage(bounds.translated(offset), image);
    painter.restore();
}

void DropShadow::fillPath(QPainter &painter, const QPainterPath &path, const QBrush &brush, QPointF offset, qreal blur)
{
    paintShadow(painter, path, brush.color().alphaF(), offset, blur);
    painter.fillPath(path, brush);
}

void DropShadow::strokePath(QPainter &painter, const QPainterPath &path, const QPen &pen, QPointF offset, qreal blur)
{
    QPainterPathStroker stroker(pen);
    paintShadow(painter, stroker.createStroke(path), pen.color().alphaF(), offset, blur);
    painter.strokePath(path, pen);
}
