#include "PanelView.h"

#include <QPainter>

PanelView::PanelView(QWidget *parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

PanelView::PanelView(const QRect &frame, const QColor &fill, qreal cornerRadius, QWidget *parent)
    : PanelView(parent)
{
    setGeometry(frame);
    _fill = fill;
    _cornerRadius = cornerRadius;
}

void PanelView::setFillColor(const QColor &color)
{
    if (color == _fill)
        return;
    _fill = color;
    update();
}

void PanelView::setCornerRadius(qreal radius)
{
    _cornerRadius = radius;
    update();
}

void PanelView::paintEvent(QPaintEvent *)
{
    if (_fill.alpha() == 0)
        return;
    QPainter painter(this);
    if (_cornerRadius <= 0) {
        painter.fillRect(rect(), _fill);
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(_fill);
    painter.drawRoundedRect(QRectF(rect()), _cornerRadius, _cornerRadius);
}
