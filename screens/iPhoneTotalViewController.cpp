#include "iPhoneTotalViewController.h"

#include <QScrollArea>
#include <QScroller>

namespace {
constexpr int ContentHeight = 520;
}

iPhoneTotalViewController::iPhoneTotalViewController(QWidget *parent)
    : SummaryPanels(parent)
{
}

void iPhoneTotalViewController::viewDidLoad()
{
    const int W = width();
    const int H = height();

    _scrollView = new QScrollArea(this);
    _scrollView->setGeometry(0, 20, W, H - 20);
    _scrollView->setFrameShape(QFrame::NoFrame);
    // The pager keeps the keyboard; Up and Down reach this page through it.
    _scrollView->setFocusPolicy(Qt::NoFocus);
    _scrollView->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    _scrollView->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    _scrollView->setAttribute(Qt::WA_TranslucentBackground);
    _scrollView->viewport()->setAutoFillBackground(false);
    auto *content = new QWidget;
    content->resize(W, ContentHeight);
    _scrollView->setWidget(content);
    content->setAutoFillBackground(false); // setWidget() made it opaque

    QScroller::grabGesture(_scrollView->viewport(), QScroller::LeftMouseButtonGesture);

    buildPanels(content, SummaryLayout::phone(W));
}

void iPhoneTotalViewController::setFrameForAd()
{
    if (_scrollView)
        _scrollView->setGeometry(0, 20, width(), height() - 20);
}
