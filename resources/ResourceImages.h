#pragma once

#include <QPixmap>
#include <QString>

// The application's images ("bg.png", "ipad_bg2.png", ...), stored at twice
// their size in logical pixels so that they stay sharp on 2x screens.
class ResourceImages {
public:
    static constexpr qreal PixelRatio = 2.0;

    // The image under :/images/ with its pixel ratio set, so that its
    // deviceIndependentSize() is its size in logical pixels; null if unknown.
    // Decoded once and shared, at no more pixels than the screens need: on 1x
    // screens a quarter of what is stored.
    static QPixmap pixmap(const QString &name);

    // The scale images are kept at: the highest pixel ratio of the application's
    // screens (1 without an application), at most PixelRatio; 0 restores that default.
    // For renderers that draw at a scale no screen has.
    static void setKeptScale(qreal scale);
    static qreal keptScale();
};
