#include "iPhoneRootViewController.h"

#include "ADControl.h"
#include "ActivationWatch.h"
#include "Device.h"
#include "FocusCycle.h"
#include "FontTable.h"
#include "ImageView.h"
#include "LabelView.h"
#include "OOHistogramView.h"
#include "OOPageCellButton.h"
#include "OOPageControl.h"
#include "PagingScrollView.h"
#include "StatCore.h"
#include "iPhoneNetworkViewController.h"
#include "iPhoneProcessesViewController.h"
#include "iPhoneSystemViewController.h"
#include "iPhoneTotalViewController.h"

#include <QKeyEvent>
#include <QTimer>
#include <QWheelEvent>

#include <cmath>

iPhoneRootViewController::iPhoneRootViewController(StatCore *statCore, Device *device, QWidget *parent)
    : QWidget(parent)
    , _statCore(statCore ? statCore : StatCore::shared())
    , _device(device ? device : Device::currentDevice())
{
}

iPhoneRootViewController::~iPhoneRootViewController()
{
    if (_systemStateGetTimer)
        _systemStateGetTimer->stop();
    if (_pageControl)
        _pageControl->setDelegate(nullptr);
}

void iPhoneRootViewController::viewDidLoad()
{
    const int W = width();
    const int H = height();

    new ImageView(rect(), QStringLiteral("bg.png"), this);

    auto *title = new LabelView(QRect(8, 4, 40, 15), QStringLiteral("KOVAR"),
                                FontTable::font(QStringLiteral("CourierNewPS-BoldMT"), 12), this);
    title->setAlignment(Qt::AlignHCenter);

    _pageControl = new OOPageControl(QRect(50, 0, W - 50, 20), 4, this);
    _pageControl->setDelegate(this);
    _pageControl->setCurrentPage(0);
    _pageControl->setTitles(
        {QStringLiteral("Summary"), QStringLiteral("Processes"), QStringLiteral("System"), QStringLiteral("Network")});
    // From the keyboard or a screen reader's tab list, as a tap on the tab would.
    connect(_pageControl, &OOPageControl::pageRequested, this,
            [this](int page) { buttonWasTouchUpInside(_tabButtons.value(page)); });

    _mainScrollView = new PagingScrollView(this);
    _mainScrollView->setGeometry(0, 0, W, H);
    _mainScrollView->setContentSize(QSize(4 * W, _mainScrollView->height()));
    connect(_mainScrollView, &PagingScrollView::didEndDecelerating, this,
            &iPhoneRootViewController::scrollViewDidEndDecelerating);
    _mainScrollView->setAccessibleName(_pageControl->title(0));

    QWidget *pages = _mainScrollView->contentView();
    _totalViewController = new iPhoneTotalViewController(pages);
    _totalViewController->setGeometry(0, 0, W, H);
    _totalViewController->setDevice(_device);
    _totalViewController->viewDidLoad();
    _totalViewController->cpuHistogramView()->setSampleInterval(RefreshIntervalMs);
    _processesViewController = new iPhoneProcessesViewController(pages);
    _processesViewController->setGeometry(W, 0, W, H);
    _processesViewController->viewDidLoad();
    _systemViewController = new iPhoneSystemViewController(pages);
    _systemViewController->setGeometry(2 * W, 0, W, H);
    _systemViewController->viewDidLoad();
    _networkViewController = new iPhoneNetworkViewController(pages);
    _networkViewController->setGeometry(3 * W, 0, W, H);
    _networkViewController->viewDidLoad();

    // The figures the pages show from the start: memory, the disk (read when the Summary
    // page is built), the process list and the system facts.
    _totalViewController->setMemoryUsageData(_statCore->memoryUsage());
    _totalViewController->setDiskUsageData(_statCore->diskUsage());
    _processesViewController->setProcData(_statCore->runningProcesses());
    _systemViewController->setInfoData(_statCore->systemInfo());
    ActivationWatch::onEveryActivation(this, [this] {
        reloadNetworkData();
        refreshDiskUsage();
    });
    _diskRefreshTimer = new QTimer(this);
    _diskRefreshTimer->setInterval(DiskRefreshIntervalMs);
    connect(_diskRefreshTimer, &QTimer::timeout, this, [this] {
        const bool shown = _shownPage == 0 && isVisible() && !window()->isMinimized();
        if (shown)
            refreshDiskUsage();
        else
            _diskStale = true;
    });
    _diskRefreshTimer->start();

    // Prime the sampler so the first tick reports the load over one period, not since boot.
    // Until that period ends nothing is known of the CPU: the figures read as for an empty
    // record, not as 0.0 % idle beside 0.0 % busy.
    _statCore->cpuUsage();
    const CpuUsageData nothingYet{0, 0, 0, std::nan("")};
    _totalViewController->setCpuUsageData(nothingYet);
    _processesViewController->setCpuUsageData(nothingYet);

    _systemStateGetTimer = new QTimer(this);
    _systemStateGetTimer->setInterval(RefreshIntervalMs);
    connect(_systemStateGetTimer, &QTimer::timeout, this, &iPhoneRootViewController::refreshSystemState);
    _systemStateGetTimer->start();

    ADControl *banners = ADControl::defaultsAD();
    connect(banners, &ADControl::ReceiveAd, this, &iPhoneRootViewController::receiveAd);
    // The banner slot: 50 points above the foot.
    banners->addAds(this, float(H - BannerHeight));

    // Each tab covers a quarter of the page control. A quarter need not be a whole
    // pixel (67.5 on a 320-point screen), so the edges are rounded and the tabs still tile.
    const qreal q = (W - 50) / 4.0;
    for (int i = 0; i < 4; ++i) {
        auto *button = new OOPageCellButton(this);
        const int left = int(std::lround(50 + i * q));
        const int right = int(std::lround(50 + (i + 1) * q));
        button->setGeometry(left, 0, right - left, 20);
        button->setProperty("frame", QRectF(50 + i * q, 0, q, 20));
        button->setProperty("tag", i);
        button->setAccessibleName(_pageControl->title(i));
        connect(button, &QAbstractButton::clicked, this, [this, button] { buttonWasTouchUpInside(button); });
        _tabButtons << button;
    }

    // The root may already be on screen when it is built; children added to a visible
    // widget stay hidden until shown.
    for (QWidget *child : findChildren<QWidget *>(Qt::FindDirectChildrenOnly))
        child->show();
    // The keys start on the pages, as they always did; Tab goes round to the titles.
    _mainScrollView->setFocus(Qt::OtherFocusReason);
}

void iPhoneRootViewController::refreshSystemState()
{
    const CpuUsageData cpu = _statCore->cpuUsage();
    _totalViewController->setCpuUsageData(cpu);
    _processesViewController->setCpuUsageData(cpu);
    _totalViewController->setMemoryUsageData(_statCore->memoryUsage());
    _processesViewController->setProcData(_statCore->runningProcesses());
}

void iPhoneRootViewController::refreshDiskUsage()
{
    _totalViewController->setDiskUsageData(_statCore->diskUsage());
    _diskStale = false;
}

void iPhoneRootViewController::showingPage(int page)
{
    _pageControl->setCurrentPage(page);
    // The pager is read as the page it shows when the focus comes to it.
    _mainScrollView->setAccessibleName(_pageControl->title(page));
    _shownPage = page;
    if (page == 0 && _diskStale)
        refreshDiskUsage();
}

void iPhoneRootViewController::reloadNetworkData()
{
    _networkViewController->setInfoData(_statCore->networkInfo());
}

void iPhoneRootViewController::buttonWasTouchUpInside(QAbstractButton *sender)
{
    if (!sender)
        return;
    const int page = sender->property("tag").toInt();
    showingPage(page);
    _mainScrollView->scrollToPage(page, true);
}

void iPhoneRootViewController::scrollViewDidEndDecelerating(PagingScrollView *scrollView)
{
    if (scrollView != _mainScrollView || width() <= 0)
        return;
    showingPage(int(scrollView->contentOffset().x() / width()));
}

void iPhoneRootViewController::pageControlClicked(OOPageControl *, int)
{
}

void iPhoneRootViewController::wheelEvent(QWheelEvent *event)
{
    // Over the titles the wheel turns pages, as over a tab bar, in either axis.
    if (event->position().y() >= TitleBarHeight || !_mainScrollView || !_mainScrollView->turnByWheel(event, true))
        event->ignore();
}

void iPhoneRootViewController::keyPressEvent(QKeyEvent *event)
{
    if (_shownPage != 1 || !_processesViewController || !_processesViewController->handleKey(event))
        event->ignore();
}

void iPhoneRootViewController::receiveAd(const QVariantMap &)
{
    if (_mainScrollView->height() != height())
        return;
    const int shortened = height() - BannerHeight;
    _mainScrollView->setGeometry(_mainScrollView->x(), _mainScrollView->y(), _mainScrollView->width(), shortened);
    _mainScrollView->setContentSize(QSize(4 * _mainScrollView->width(), shortened));
    // The pages follow the pager's height, as views that stretch with their parent do.
    for (QWidget *page :
         {static_cast<QWidget *>(_totalViewController), static_cast<QWidget *>(_processesViewController),
          static_cast<QWidget *>(_systemViewController), static_cast<QWidget *>(_networkViewController)})
        page->resize(page->width(), shortened);
    _totalViewController->setFrameForAd();
    _processesViewController->setFrameForAd();
    _systemViewController->setFrameForAd();
    _networkViewController->setFrameForAd();
}

bool iPhoneRootViewController::focusNextPrevChild(bool next)
{
    // Round this screen's own widgets, whatever window shows it.
    return FocusCycle::step(this, next);
}
