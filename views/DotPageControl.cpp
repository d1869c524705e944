#include "DotPageControl.h"

#include <QAccessible>
#include <QPainter>

#include <algorithm>

const QColor DotPageControl::CurrentDotColor = Qt::white;
const QColor DotPageControl::OtherDotColor = QColor(255, 255, 255, 77);

DotPageControl::DotPageControl(const QRect &frame, int numberOfPages, QWidget *parent)
    : QWidget(parent)
    , _numberOfPages(std::max(0, numberOfPages))
{
    setGeometry(frame);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void DotPageControl::setCurrentPage(int page)
{
    if (page < 0 || page >= _numberOfPages || page == _currentPage)
        return;
    _currentPage = page;
    update();
    if (QAccessible::isActive()) {
        QAccessibleEvent event(this, QAccessible::Selection);
        event.setChild(page);
        QAccessible::updateAccessibility(&event);
    }
}

void DotPageControl::requestPage(int page)
{
    if (page >= 0 && page < _numberOfPages)
        Q_EMIT pageRequested(page);
}

QRectF DotPageControl::dotRect(int page) const
{
    const qreal rowWidth = _numberOfPages * DotDiameter + std::max(0, _numberOfPages - 1) * DotSpacing;
    const qreal left = (width() - rowWidth) / 2.0 + page * (DotDiameter + DotSpacing);
    return QRectF(left, (height() - DotDiameter) / 2.0, DotDiameter, DotDiameter);
}

void DotPageControl::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    for (int page = 0; page < _numberOfPages; ++page) {
        painter.setBrush(page == _currentPage ? CurrentDotColor : OtherDotColor);
        painter.drawEllipse(dotRect(page));
    }
}
