#pragma once

#include <QPixmap>
#include <QString>

// The application's images ("bg.png", "ipad_bg2.png", ...), stored at twice
// their size in logical pixels so that they stay sharp on 2x screens.
class ResourceImages
{
public:
    static constexpr qreal PixelRatio = 2.0;

    // The image under :/images/ with its pixel ratio set, so that its
    // deviceIndependentSize() is its size in logical pixels; null if unknown.
    static QPixmap pixmap(const QString &name);
};
