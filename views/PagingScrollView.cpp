#include "PagingScrollView.h"

#include <QScrollBar>
#include <QScroller>
#include <QScrollerProperties>
#include <QWheelEvent>

#include <cmath>

PagingScrollView::PagingScrollView(QWidget *parent)
    : QScrollArea(parent)
    , _contentView(new QWidget)
{
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWidgetResizable(false);
    setAttribute(Qt::WA_TranslucentBackground);
    viewport()->setAutoFillBackground(false);
    setWidget(_contentView);
    // setWidget() makes the content opaque; the pages lie over the root's background.
    _contentView->setAutoFillBackground(false);

    _scroller = QScroller::scroller(viewport());
    QScroller::grabGesture(viewport(), QScroller::LeftMouseButtonGesture);
    QScrollerProperties properties = _scroller->scrollerProperties();
    // Bounce at the ends like the handheld's pager, but never drift vertically.
    properties.setScrollMetric(QScrollerProperties::HorizontalOvershootPolicy,
                               QVariant::fromValue(QScrollerProperties::OvershootWhenScrollable));
    properties.setScrollMetric(QScrollerProperties::VerticalOvershootPolicy,
                               QVariant::fromValue(QScrollerProperties::OvershootAlwaysOff));
    properties.setScrollMetric(QScrollerProperties::SnapTime, 0.3);
    _scroller->setScrollerProperties(properties);

    connect(_scroller, &QScroller::stateChanged, this, [this](QScroller::State state) {
        if (state == QScroller::Dragging) {
            _userDragged = true;
        } else if (state == QScroller::Inactive && _userDragged) {
            _userDragged = false;
            Q_EMIT didEndDecelerating(this);
        }
    });
}

QSize PagingScrollView::contentSize() const
{
    return _contentView->size();
}

void PagingScrollView::setContentSize(const QSize &size)
{
    _contentView->resize(size);
    updateSnapPositions();
}

QPointF PagingScrollView::contentOffset() const
{
    return QPointF(horizontalScrollBar()->value(), verticalScrollBar()->value());
}

void PagingScrollView::setContentOffset(const QPointF &offset, bool animated)
{
    if (animated) {
        _scroller->scrollTo(offset, 300);
        return;
    }
    _scroller->stop();
    horizontalScrollBar()->setValue(int(std::lround(offset.x())));
    verticalScrollBar()->setValue(int(std::lround(offset.y())));
}

void PagingScrollView::scrollToPage(int page, bool animated)
{
    setContentOffset(QPointF(qreal(page) * width(), 0), animated);
}

void PagingScrollView::resizeEvent(QResizeEvent *event)
{
    QScrollArea::resizeEvent(event);
    updateSnapPositions();
}

void PagingScrollView::wheelEvent(QWheelEvent *event)
{
    // One notch (120 units), in either axis, turns one page.
    const QPoint delta = event->angleDelta();
    _wheelRemainder += std::abs(delta.x()) > std::abs(delta.y()) ? delta.x() : delta.y();
    const int pageWidth = viewport()->width();
    if (pageWidth <= 0 || std::abs(_wheelRemainder) < 120) {
        event->accept();
        return;
    }
    const int step = _wheelRemainder > 0 ? -1 : 1;
    _wheelRemainder = 0;
    const int pages = std::max(1, _contentView->width() / pageWidth);
    const int current = int(std::lround(contentOffset().x() / pageWidth));
    const int target = std::clamp(current + step, 0, pages - 1);
    if (target != current) {
        _userDragged = true; // ends like a swipe, so the page indicator follows
        _scroller->scrollTo(QPointF(target * pageWidth, 0), 250);
    }
    event->accept();
}

void PagingScrollView::updateSnapPositions()
{
    const int pageWidth = viewport()->width();
    if (pageWidth > 0)
        _scroller->setSnapPositionsX(0, pageWidth);
    _scroller->setSnapPositionsY(QList<qreal>{0});
}
