#pragma once

#include <QPointF>
#include <QScrollArea>
#include <QSize>

class QScroller;

// A horizontally paging scroll view: the content is a row of pages one frame wide;
// a mouse drag or touch swipe flicks and snaps to a page, a wheel turn moves one page.
// `didEndDecelerating` is sent when a user's swipe has come to rest, never after a
// programmatic scroll.
class PagingScrollView : public QScrollArea {
    Q_OBJECT
public:
    explicit PagingScrollView(QWidget *parent = nullptr);

    // The widget that holds the pages; they are placed in it by frame.
    QWidget *contentView() const { return _contentView; }

    QSize contentSize() const;
    void setContentSize(const QSize &size);

    QPointF contentOffset() const;
    void setContentOffset(const QPointF &offset, bool animated);
    // Shows that page: the content offset becomes page times the view's width.
    void scrollToPage(int page, bool animated);

Q_SIGNALS:
    void didEndDecelerating(PagingScrollView *scrollView);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    void updateSnapPositions();

    QWidget *_contentView = nullptr;
    QScroller *_scroller = nullptr;
    bool _userDragged = false;
    int _wheelRemainder = 0;
};
