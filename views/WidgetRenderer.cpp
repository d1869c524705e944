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
    // A window would fill its background even when the widget does not ask
    // for it; only widgets that fill their own background get one here, so
    // that transparent charts come out transparent.
    QWidget::RenderFlags flags = QWidget::DrawChildren;
    if (widget->autoFillBackground())
        flags |= QWidget::DrawWindowBackground;
    if (!image.isNull())
        widget->render(&image, QPoint(), QRegion(), flags);
    return image;
}
