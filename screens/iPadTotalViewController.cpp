#include "iPadTotalViewController.h"

#include "DotPageControl.h"
#include "PagingScrollView.h"
#include "iPadNetworkViewController.h"
#include "iPadProcessesViewConroller.h"
#include "iPadSystemViewController.h"

namespace {
// Under the memory panel, and under the battery panel (7 and 17 points below it).
constexpr int ProcessesTop = 397;
constexpr int PageControlTop = 254;
constexpr int PagerTop = 264;
} // namespace

iPadTotalViewController::iPadTotalViewController(QWidget *parent)
    : SummaryPanels(parent)
{
}

void iPadTotalViewController::initWithFrame(const QRect &frame)
{
    setGeometry(frame);
    const int W = frame.width();
    const int H = frame.height();
    buildPanels(this, SummaryLayout::tablet(W));

    _processesViewController = new iPadProcessesViewConroller(this);
    _processesViewController->initWithFrame(QRect(0, ProcessesTop, W / 2, H - ProcessesTop));

    _pageControl = new DotPageControl(QRect(W - 40, PageControlTop, 30, 10), 2, this);
    _pageControl->setCurrentPage(0);

    _pager = new PagingScrollView(this);
    _pager->setGeometry(W / 2, PagerTop, W / 2, H - PagerTop);
    _pager->setContentSize(QSize(2 * _pager->width(), _pager->height()));
    connect(_pager, &PagingScrollView::didEndDecelerating, this,
            &iPadTotalViewController::scrollViewDidEndDecelerating);

    const QSize page = _pager->size();
    _systemViewController = new iPadSystemViewController(_pager->contentView());
    _systemViewController->initWithFrame(QRect(QPoint(0, 0), page));
    _networkViewController = new iPadNetworkViewController(_pager->contentView());
    _networkViewController->initWithFrame(QRect(QPoint(page.width(), 0), page));

    // The dots read as the pages' titles; a reader's tab turns the pager as a swipe would.
    _pageControl->setTitles({_systemViewController->title(), _networkViewController->title()});
    connect(_pageControl, &DotPageControl::pageRequested, _pager, &PagingScrollView::turnToPage);
    _pager->setAccessibleName(_pageControl->titles().value(0));
    // The keys start on the pager, as they always did; Tab goes on to the process list.
    _pager->setFocus(Qt::OtherFocusReason);
}

void iPadTotalViewController::scrollViewDidEndDecelerating(PagingScrollView *scrollView)
{
    // The pager is half the panel wide, so half the panel's width is one page.
    const double pageWidth = width() / 2.0;
    if (scrollView != _pager || pageWidth <= 0)
        return;
    _pageControl->setCurrentPage(int(scrollView->contentOffset().x() / pageWidth));
    // The pager is read as the page it shows when the focus comes to it.
    _pager->setAccessibleName(_pageControl->titles().value(_pageControl->currentPage()));
}

bool iPadTotalViewController::shouldAutorotateToInterfaceOrientation(InterfaceOrientation orientation) const
{
    return orientation == InterfaceOrientation::Portrait;
}
