#include "PagingScrollView.h"

#include "FocusRing.h"

#include <QApplication>
#include <QKeyEvent>
#include <QScrollBar>
#include <QScroller>
#include <QScrollerProperties>
#include <QWheelEvent>
#include <QWindow>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {
constexpr int WheelNotch = 120; // angle delta units of one notch
} // namespace

int PagingScrollView::targetPageAfterDrag(int startPage, const QList<DragSample> &trail, qreal pageWidth, int pageCount)
{
    const int lastPage = std::max(0, pageCount - 1);
    if (trail.isEmpty() || pageWidth <= 0)
        return std::clamp(startPage, 0, lastPage);
    const DragSample &release = trail.last();
    // The speed over the end of the drag; a finger held still before it lifts has none.
    const auto from = std::find_if(trail.cbegin(), trail.cend(), [&release](const DragSample &sample) {
        return release.ms - sample.ms <= SpeedWindowMs;
    });
    const qreal speed = release.ms > from->ms ? (release.offset - from->offset) * 1000.0 / qreal(release.ms - from->ms)
                                              : 0.0;
    const qreal position = release.offset / pageWidth;
    int page = int(std::lround(position));
    if (speed >= FlickSpeed)
        page = int(std::ceil(position));
    else if (speed <= -FlickSpeed)
        page = int(std::floor(position));
    page = std::clamp(page, startPage - 1, startPage + 1);
    return std::clamp(page, 0, lastPage);
}

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
    // The pager takes the keys that turn pages; the pages themselves take no focus.
    setFocusPolicy(Qt::StrongFocus);
    new FocusRing(this);

    _scroller = QScroller::scroller(viewport());
    QScroller::grabGesture(viewport(), QScroller::LeftMouseButtonGesture);
    QScrollerProperties properties = _scroller->scrollerProperties();
    // Bounce at the ends like the handheld's pager, but never drift vertically.
    properties.setScrollMetric(QScrollerProperties::HorizontalOvershootPolicy,
                               QVariant::fromValue(QScrollerProperties::OvershootWhenScrollable));
    properties.setScrollMetric(QScrollerProperties::VerticalOvershootPolicy,
                               QVariant::fromValue(QScrollerProperties::OvershootAlwaysOff));
    properties.setScrollMetric(QScrollerProperties::SnapTime, TurnDurationMs / 1000.0);
    _scroller->setScrollerProperties(properties);

    connect(_scroller, &QScroller::stateChanged, this, [this](QScroller::State state) { scrollerStateChanged(state); });
    connect(horizontalScrollBar(), &QScrollBar::valueChanged, this, [this] {
        if (_dragging)
            recordDragSample();
    });
    // Sideways wheel turns are taken as they reach the window (see eventFilter).
    qApp->installEventFilter(this);
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
    const int pageWidth = viewport()->width();
    _targetPage = pageWidth > 0 ? std::clamp(int(std::lround(offset.x() / pageWidth)), 0, numberOfPages() - 1) : 0;
    _userTurn = false;
    if (animated) {
        _scroller->scrollTo(offset, _turnDurationMs);
        return;
    }
    _jumping = true;
    _scroller->stop();
    _jumping = false;
    horizontalScrollBar()->setValue(int(std::lround(offset.x())));
    verticalScrollBar()->setValue(int(std::lround(offset.y())));
}

void PagingScrollView::scrollToPage(int page, bool animated)
{
    setContentOffset(QPointF(qreal(page) * width(), 0), animated);
}

int PagingScrollView::numberOfPages() const
{
    const int pageWidth = viewport()->width();
    return pageWidth > 0 ? std::max(1, int(std::lround(qreal(_contentView->width()) / pageWidth))) : 1;
}

void PagingScrollView::turnToPage(int page)
{
    _targetPage = std::clamp(page, 0, numberOfPages() - 1);
    _userTurn = true;
    const QPointF to(qreal(_targetPage) * viewport()->width(), 0);
    if (_scroller->state() == QScroller::Inactive && contentOffset() == to) {
        settle();
        return;
    }
    _scroller->scrollTo(to, _turnDurationMs);
    // Already there but still gliding (a flick let go right on the page): stop the glide.
    if (_scroller->state() == QScroller::Scrolling && _scroller->finalPosition() != to)
        _scroller->stop();
}

bool PagingScrollView::turnByWheel(QWheelEvent *event, bool anyAxis)
{
    const QPoint delta = event->angleDelta();
    const bool horizontal = std::abs(delta.x()) > std::abs(delta.y());
    if (!horizontal && !anyAxis && !(event->modifiers() & Qt::ShiftModifier))
        return false;
    event->accept();
    if (event->phase() == Qt::ScrollBegin || event->phase() == Qt::ScrollEnd) {
        _wheelRemainder = 0;
        _wheelTurnedInGesture = false;
    }
    // A touchpad swipe is one gesture of many small deltas: it turns one page.
    if (_wheelTurnedInGesture)
        return true;
    const int turn = horizontal ? delta.x() : delta.y();
    // Turning back drops what was turned the other way.
    if ((turn > 0) != (_wheelRemainder > 0))
        _wheelRemainder = 0;
    _wheelRemainder += turn;
    if (std::abs(_wheelRemainder) < WheelNotch)
        return true;
    // Positive deltas point left or up, towards the earlier pages.
    const int step = _wheelRemainder > 0 ? -1 : 1;
    _wheelRemainder = 0;
    _wheelTurnedInGesture = event->phase() != Qt::NoScrollPhase;
    turnToPage(_targetPage + step);
    return true;
}

void PagingScrollView::resizeEvent(QResizeEvent *event)
{
    QScrollArea::resizeEvent(event);
    updateSnapPositions();
}

void PagingScrollView::wheelEvent(QWheelEvent *event)
{
    // What is left is a vertical turn that no page wanted: it never turns a page, and it
    // stops here rather than reaching whatever lies under the pager.
    event->accept();
}

void PagingScrollView::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_PageUp:
        turnToPage(_targetPage - 1);
        break;
    case Qt::Key_Right:
    case Qt::Key_PageDown:
        turnToPage(_targetPage + 1);
        break;
    case Qt::Key_Home:
        turnToPage(0);
        break;
    case Qt::Key_End:
        turnToPage(numberOfPages() - 1);
        break;
    case Qt::Key_Up:
    case Qt::Key_Down:
        scrollShownPage(event->key() == Qt::Key_Down);
        break;
    default:
        event->ignore();
        return;
    }
    event->accept();
}

bool PagingScrollView::eventFilter(QObject *watched, QEvent *event)
{
    // Taken on its way into the window, before the page under the pointer gets it (a list
    // would scroll sideways, or by pages with Shift) and before a page turn in progress,
    // which swallows the wheel over its pages, can. In a zoomed window the top-level widget
    // is offered the wheel first in the window's stead.
    if (event->type() == QEvent::Wheel && (watched == window()->windowHandle() || watched == window())) {
        auto *wheel = static_cast<QWheelEvent *>(event);
        const QWidget *under = window()->childAt(wheel->position().toPoint());
        if (under && (under == viewport() || viewport()->isAncestorOf(under)))
            return turnByWheel(wheel, false);
    }
    return QScrollArea::eventFilter(watched, event);
}

void PagingScrollView::scrollerStateChanged(int state)
{
    if (_jumping)
        return;
    switch (state) {
    case QScroller::Dragging:
        _dragging = true;
        _userTurn = true;
        _dragStartPage = _targetPage;
        _trail.clear();
        _dragClock.start();
        recordDragSample();
        break;
    case QScroller::Scrolling:
    case QScroller::Inactive:
        if (_dragging) {
            _dragging = false;
            recordDragSample(); // where the finger lifted
            const int page = targetPageAfterDrag(_dragStartPage, _trail, viewport()->width(), numberOfPages());
            // The scroller is still in the middle of changing state: turn once it is done.
            QMetaObject::invokeMethod(
                this, [this, page] { turnToPage(page); }, Qt::QueuedConnection);
        } else if (state == QScroller::Inactive) {
            settle();
        }
        break;
    default:
        break;
    }
}

void PagingScrollView::recordDragSample()
{
    _trail.append({_dragClock.elapsed(), qreal(horizontalScrollBar()->value())});
    // Only the end of a drag counts; a long drag keeps no long history.
    while (_trail.size() > 2 && _trail.last().ms - _trail.at(1).ms > SpeedWindowMs)
        _trail.removeFirst();
}

void PagingScrollView::settle()
{
    if (_dragging || _scroller->state() != QScroller::Inactive)
        return;
    const QPointF to(qreal(_targetPage) * viewport()->width(), 0);
    // A tap that stopped a page turn half-way must not leave the pages stranded.
    if (contentOffset() != to) {
        _scroller->scrollTo(to, _turnDurationMs);
        return;
    }
    if (std::exchange(_userTurn, false))
        Q_EMIT didEndDecelerating(this);
}

void PagingScrollView::scrollShownPage(bool down)
{
    // The largest list or panel that can scroll on the page shown.
    const QRect shown(QPoint(_targetPage * viewport()->width(), 0), viewport()->size());
    QAbstractScrollArea *target = nullptr;
    int largest = 0;
    for (QAbstractScrollArea *area : _contentView->findChildren<QAbstractScrollArea *>()) {
        const QRect visible = QRect(area->mapTo(_contentView, QPoint(0, 0)), area->size()) & shown;
        const int size = visible.width() * visible.height();
        if (area->isVisibleTo(_contentView) && area->verticalScrollBar()->maximum() > 0 && size > largest) {
            target = area;
            largest = size;
        }
    }
    if (target)
        target->verticalScrollBar()->triggerAction(down ? QAbstractSlider::SliderSingleStepAdd
                                                        : QAbstractSlider::SliderSingleStepSub);
}

void PagingScrollView::updateSnapPositions()
{
    const int pageWidth = viewport()->width();
    if (pageWidth > 0)
        _scroller->setSnapPositionsX(0, pageWidth);
    _scroller->setSnapPositionsY(QList<qreal>{0});
}
