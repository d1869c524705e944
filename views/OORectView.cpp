#include "OORectView.h"

#include "DropShadow.h"

#include <QPainter>
#include <QPainterPath>

namespace {

enum SwatchType : qint32 { Rectangle = 0, Ellipse = 1 };

} // namespace

OORectView::OORectView(const QRect &frame, QWidget *parent)
    : QWidget(parent)
{
    if (frame.isValid())
        setGeometry(frame);
    setAutoFillBackground(false);
}

void OORectView::setRectColor(const QColor &color)
{
    _rectColor = color;
    update();
}

void OORectView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    paintSwatch(painter, QRectF(rect()), _type, _rectColor, _border);
}

void OORectView::paintSwatch(QPainter &painter, const QRectF &frame, qint32 type, const QColor &color, float border)
{
    if (type != Rectangle && type != Ellipse)
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(frame.topLeft());
    const qreal w = frame.width();
    const qreal h = frame.height();
    const qreal b = border;

    QPainterPath fill;
    QPainterPath outline;
    const QRectF bounds(0.0, 0.0, w, h);
    // Half the outline's width in from the edge keeps it inside the bounds.
    const QRectF inset(b / 2.0, b / 2.0, w - b, h - b);
    if (type == Rectangle) {
        fill.addRect(bounds);
        outline.addRect(inset);
    } else {
        fill.addEllipse(bounds);
        outline.addEllipse(inset);
    }
    if (color.isValid())
        painter.fillPath(fill, color);

    const QPen pen(Qt::white, b, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin);
    DropShadow::strokePath(painter, outline, pen, QPointF(2.0, 2.0), 2.0);
    painter.restore();
}
