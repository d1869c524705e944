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
    m_rectColor = color;
    update();
}

void OORectView::paintEvent(QPaintEvent *)
{
    if (m_type != Rectangle && m_type != Ellipse)
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal w = width();
    const qreal h = height();
    const qreal b = m_border;

    QPainterPath fill;
    QPainterPath outline;
    const QRectF bounds(0.0, 0.0, w, h);
    // Half the outline's width in from the edge keeps it inside the bounds.
    const QRectF inset(b / 2.0, b / 2.0, w - b, h - b);
    if (m_type == Rectangle) {
        fill.addRect(bounds);
        outline.addRect(inset);
    } else {
        fill.addEllipse(bounds);
        outline.addEllipse(inset);
    }
    if (m_rectColor.isValid())
        painter.fillPath(fill, m_rectColor);

    const QPen pen(Qt::white, b, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin);
    DropShadow::strokePath(painter, outline, pen, QPointF(2.0, 2.0), 2.0);
}
