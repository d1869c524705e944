#include "PageTableView.h"

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
