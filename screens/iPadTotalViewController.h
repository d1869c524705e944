#pragma once

#include "InterfaceOrientation.h"
#include "SummaryPanels.h"

class DotPageControl;
class PagingScrollView;
class iPadNetworkViewController;
class iPadProcessesViewConroller;
class iPadSystemViewController;

// The tablet's main area: the four Summary panels in two columns, the processes panel
// under the memory panel, and beside it a two-page pager (system, network) with its
// dot indicator.
class iPadTotalViewController : public SummaryPanels {
    Q_OBJECT
public:
    explicit iPadTotalViewController(QWidget *parent = nullptr);

    // Takes that frame in the parent and builds everything in it.
    void initWithFrame(const QRect &frame);

    // The pager came to rest after a swipe: the indicator shows the page.
    void scrollViewDidEndDecelerating(PagingScrollView *scrollView);

    bool shouldAutorotateToInterfaceOrientation(InterfaceOrientation orientation) const;

    DotPageControl *pageControl() const { return _pageControl; }
    PagingScrollView *pager() const { return _pager; }
    iPadProcessesViewConroller *processesViewController() const { return _processesViewController; }
    iPadSystemViewController *systemViewController() const { return _systemViewController; }
    iPadNetworkViewController *networkViewController() const { return _networkViewController; }

private:
    DotPageControl *_pageControl = nullptr;
    PagingScrollView *_pager = nullptr;
    iPadProcessesViewConroller *_processesViewController = nullptr;
    iPadSystemViewController *_systemViewController = nullptr;
    iPadNetworkViewController *_networkViewController = nullptr;
};
