#include "WidgetRenderer.h"

#include <QWidget>

#include <cmath>

QImage WidgetRenderer::render(QWidget *widget, qreal devicePixelRatio)
{
    if (!widget || !(devicePixelRatio > 0.0))
        return {};
    widget->ensurePolished();
    const QSize logical = widget->size();
    const QSize pixels(int(std::ceil(logical.width() * devicePixelRatio)),
                       int(std::ceil(logical.height() * devicePixelRatio)));
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(devicePixelRatio);
    image.fill(Qt::transparent);
    if (!image.isNull())
        widget->render(&image, QPoint(), QRegion(), QWidget::DrawWindowBackground | QWidget::DrawChildren);
    return image;
}
