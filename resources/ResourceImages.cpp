#include "ResourceImages.h"

QPixmap ResourceImages::pixmap(const QString &name)
{
    QPixmap pixmap(QStringLiteral(":/images/") + name);
    if (!pixmap.isNull())
        pixmap.setDevicePixelRatio(PixelRatio);
    return pixmap;
}
