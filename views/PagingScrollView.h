#pragma once

#include <QElapsedTimer>
#include <QList>
#include <QPointF>
#include <QScrollArea>
#include <QSize>

class QScroller;

// A horizontally paging scroll view: the content is a row of pages one frame wide.
// Every way of turning a page ends on a whole page and moves at most one page at a time:
// a drag or flick (mouse or touch) goes to the page decided by targetPageAfterDrag();
// Left/Right and Page Up/Page Down turn one page, Home/End go to the first/last page and
// Up/Down scroll the page shown; a horizontal wheel, or Shift with the vertical wheel,
// turns one page per notch anywhere over the pages, while the plain vertical wheel only
// scrolls the page under the pointer.
// `didEndDecelerating` is sent when a page turn that the user started has come to rest,
// never after a programmatic scroll.
class PagingScrollView : public QScrollArea {
    Q_OBJECT
public:
    // Where the content was, a moment into a drag: the offset in pixels, at ms since the drag began.
    struct DragSample {
        qint64 ms;
        qreal offset;
    };
    // A drag that ends faster than this, in pixels a second, is a flick: it turns the page
    // in its direction even when it ends short of half a page.
    static constexpr qreal FlickSpeed = 250.0;
    // The speed at release is measured over this much of the drag's end.
    static constexpr qint64 SpeedWindowMs = 100;
    static constexpr int TurnDurationMs = 300; // of an animated page turn, unless set otherwise

    // The page a drag comes to rest on: it started on startPage, and trail holds where the
    // content was, in time order, the last sample taken at release. A flick goes to the
    // next page in its direction; a slower release goes to the page nearest to where it
    // ended; either way no further than one page from startPage, and within the pages.
    static int targetPageAfterDrag(int startPage, const QList<DragSample> &trail, qreal pageWidth, int pageCount);

    explicit PagingScrollView(QWidget *parent = nullptr);

    // The widget that holds the pages; they are placed in it by frame.
    QWidget *contentView() const { return _contentView; }

    QSize contentSize() const;
    void setContentSize(const QSize &size);

    QPointF contentOffset() const;
    void setContentOffset(const QPointF &offset, bool animated);
    // Shows that page: the content offset becomes page times the view's width.
    void scrollToPage(int page, bool animated);

    int numberOfPages() const;
    // The page shown, or the one a page turn in progress is heading to.
    int targetPage() const { return _targetPage; }
    // Turns to that page (clamped to the pages) as the user's own page turn: animated, and
    // reported by didEndDecelerating when it comes to rest.
    void turnToPage(int page);
    int turnDuration() const { return _turnDurationMs; }
    void setTurnDuration(int ms) { _turnDurationMs = ms; }
    // A wheel notch gesture turning the page: horizontal, or vertical with Shift, or any
    // when anyAxis (over a page indicator). Returns whether the event was the pager's.
    bool turnByWheel(QWheelEvent *event, bool anyAxis);

Q_SIGNALS:
    void didEndDecelerating(PagingScrollView *scrollView);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void scrollerStateChanged(int state);
    void recordDragSample();
    void settle();
    void scrollShownPage(bool down);
    void updateSnapPositions();

    QWidget *_contentView = nullptr;
    QScroller *_scroller = nullptr;
    int _targetPage = 0;
    int _turnDurationMs = TurnDurationMs;
    bool _dragging = false;
    bool _userTurn = false; // the motion in progress was started by the user
    bool _jumping = false;  // a programmatic jump is stopping the scroller
    int _dragStartPage = 0;
    QElapsedTimer _dragClock;
    QList<DragSample> _trail;
    int _wheelRemainder = 0;
    bool _wheelTurnedInGesture = false;
};
