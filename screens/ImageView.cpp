#include "ImageView.h"

#include "ResourceImages.h"

#include <QPainter>

ImageView::ImageView(const QRect &frame, const QString &imageName, QWidget *parent)
    : QWidget(parent)
    , _imageName(imageName)
    , _image(ResourceImages::pixmap(imageName))
{
    setGeometry(frame);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void ImageView::paintEvent(QPaintEvent *)
{
    if (!_image.isNull() && _image.devicePixelRatio() != ResourceImages::keptScale())
        _image = ResourceImages::pixmap(_imageName);
    if (_image.isNull())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(QRectF(rect()), _image, QRectF(_image.rect()));
}
