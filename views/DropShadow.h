#pragma once

#include <QBrush>
#include <QPen>
#include <QPointF>

class QPainter;
class QPainterPath;

// The drop shadow every chart casts under its white outlines: a blurred copy
// of the painted shape, offset down and to the right, in black at one third
// opacity, painted before the shape itself. The blur is a Gaussian whose
// standard deviation is half the blur value, computed at the device's pixel
// density so that it stays soft and smooth at any device pixel ratio.
class DropShadow {
public:
    static constexpr qreal Opacity = 1.0 / 3.0;

    // Fills path with brush after painting the shadow of that fill.
    static void fillPath(QPainter &painter, const QPainterPath &path, const QBrush &brush, QPointF offset, qreal blur);
    // Strokes path with pen after painting the shadow of that stroke.
    static void strokePath(QPainter &painter, const QPainterPath &path, const QPen &pen, QPointF offset, qreal blur);
    // Only the shadow of an area covered at the given opacity (0..1).
    static void paintShadow(QPainter &painter, const QPainterPath &area, qreal areaOpacity, QPointF offset, qreal blur);
};
