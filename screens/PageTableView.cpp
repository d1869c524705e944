#include "PageTableView.h"

#include "FocusRing.h"

#include <QFocusEvent>
#include <QPainter>
#include <QScrollBar>
#include <QScroller>

PageTableView::PageTableView(QAbstractItemModel *model, QAbstractItemDelegate *delegate, QWidget *parent)
    : QListView(parent)
{
    setModel(model);
    setItemDelegate(delegate);
    setSelectionMode(QAbstractItemView::NoSelection);
    setFocusPolicy(Qt::NoFocus);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setAttribute(Qt::WA_TranslucentBackground);
    viewport()->setAutoFillBackground(false);
    QScroller::grabGesture(viewport(), QScroller::LeftMouseButtonGesture);
}

void PageTableView::updateGeometries()
{
    QListView::updateGeometries();
    // Scrolling by the pixel, the list would step by its first row's height: the Network
    // list starts with an untitled section of no height, and so would never move.
    verticalScrollBar()->setSingleStep(ScrollStep);
}

void PageTableView::paintEvent(QPaintEvent *event)
{
    QListView::paintEvent(event);
    if (!_keyboardFocus || !hasFocus() || !currentIndex().isValid())
        return;
    QPainter painter(viewport());
    FocusRing::paint(painter, QRectF(visualRect(currentIndex())).adjusted(1, 1, -1, -1), 4);
}

void PageTableView::focusInEvent(QFocusEvent *event)
{
    _keyboardFocus = FocusRing::cameByKeyboard(event->reason(), _keyboardFocus);
    QListView::focusInEvent(event);
    viewport()->update();
}

void PageTableView::focusOutEvent(QFocusEvent *event)
{
    QListView::focusOutEvent(event);
    viewport()->update();
}
