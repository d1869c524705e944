#include "iPadRootViewController.h"

#include "ADControlForiPad.h"
#include "ActivationWatch.h"
#include "Device.h"
#include "FocusCycle.h"
#include "FontTable.h"
#include "ImageView.h"
#include "LabelView.h"
#include "OOHistogramView.h"
#include "StatCore.h"
#include "iPadNetworkViewController.h"
#include "iPadProcessesViewConroller.h"
#include "iPadSystemViewController.h"
#include "iPadTotalViewController.h"

#include <QKeyEvent>
#include <QTimer>

#include <cmath>

namespace {
constexpr int TitleHeight = 28;
constexpr int SummaryTop = 20;
// UIKit's grey: white at one half.
const QColor FooterTextColor = QColor::fromRgbF(0.5f, 0.5f, 0.5f);
} // namespace

iPadRootViewController::iPadRootViewController(StatCore *statCore, Device *device, QWidget *parent)
    : QWidget(parent)
    , _statCore(statCore ? statCore : StatCore::shared())
    , _device(device ? device : Device::currentDevice())
{
    setFocusPolicy(Qt::StrongFocus);
}

iPadRootViewController::~iPadRootViewController()
{
    if (_systemStateGetTimer)
        _systemStateGetTimer->stop();
}

void iPadRootViewController::viewDidLoad()
{
    const int W = width();
    const int H = height();

    new ImageView(rect(), QStringLiteral("ipad_bg2.png"), this);

    _titleLabel = new LabelView(QRect(0, 0, W, TitleHeight), QStringLiteral("KOVAR"),
                                FontTable::font(QStringLiteral("CourierNewPS-BoldMT"), 18), this);
    _titleLabel->setAlignment(Qt::AlignHCenter);

    _totalViewController = new iPadTotalViewController(this);
    _totalViewController->setDevice(_device);
    _totalViewController->initWithFrame(QRect(0, SummaryTop, W, H - SummaryTop - FooterHeight));
    _totalViewController->cpuHistogramView()->setSampleInterval(RefreshIntervalMs);
    // The figures the panels show from the start, as on the phone.
    _totalViewController->setMemoryUsageData(_statCore->memoryUsage());
    _totalViewController->setDiskUsageData(_statCore->diskUsage());
    _totalViewController->processesViewController()->setProcData(_statCore->runningProcesses());
    _totalViewController->systemViewController()->setInfoData(_statCore->systemInfo());
    ActivationWatch::onEveryActivation(this, [this] {
        reloadNetworkData();
        refreshDiskUsage();
    });
    _diskRefreshTimer = new QTimer(this);
    _diskRefreshTimer->setInterval(DiskRefreshIntervalMs);
    connect(_diskRefreshTimer, &QTimer::timeout, this, [this] {
        if (isVisible() && !window()->isMinimized())
            refreshDiskUsage();
    });
    _diskRefreshTimer->start();

    // The band fades as a whole, its text with it.
    _footerLabel = new LabelView(QRect(0, H - FooterHeight, W, FooterHeight), QStringLiteral("Norvik App"),
                                 FontTable::font(QStringLiteral("Helvetica-Bold"), 35), this);
    _footerLabel->setBackgroundColor(Qt::black);
    _footerLabel->setOpacity(0.5);
    _footerLabel->setTextColor(FooterTextColor);
    _footerLabel->setAlignment(Qt::AlignHCenter);

    // The banner slot coincides with the footer band.
    ADControlForiPad::defaultsADForiPad()->addAds(this, float(H - FooterHeight));

    // Prime the sampler so the first tick reports the load over one period, not since boot;
    // until then the CPU figures read as for an empty record, as on the phone.
    _statCore->cpuUsage();
    _totalViewController->setCpuUsageData(CpuUsageData{0, 0, 0, std::nan("")});

    _systemStateGetTimer = new QTimer(this);
    _systemStateGetTimer->setInterval(RefreshIntervalMs);
    connect(_systemStateGetTimer, &QTimer::timeout, this, &iPadRootViewController::refreshSystemState);
    _systemStateGetTimer->start();

    // The root may already be on screen when it is built; children added to a visible
    // widget stay hidden until shown.
    for (QWidget *child : findChildren<QWidget *>(Qt::FindDirectChildrenOnly))
        child->show();
}

void iPadRootViewController::refreshSystemState()
{
    _totalViewController->setCpuUsageData(_statCore->cpuUsage());
    _totalViewController->setMemoryUsageData(_statCore->memoryUsage());
    _totalViewController->processesViewController()->setProcData(_statCore->runningProcesses());
}

void iPadRootViewController::refreshDiskUsage()
{
    _totalViewController->setDiskUsageData(_statCore->diskUsage());
}

void iPadRootViewController::reloadNetworkData()
{
    _totalViewController->networkViewController()->setInfoData(_statCore->networkInfo());
}

void iPadRootViewController::keyPressEvent(QKeyEvent *event)
{
    if (!_totalViewController || !_totalViewController->processesViewController()->handleKey(event))
        event->ignore();
}

bool iPadRootViewController::shouldAutorotateToInterfaceOrientation(InterfaceOrientation orientation) const
{
    return orientation == InterfaceOrientation::Portrait;
}

bool iPadRootViewController::focusNextPrevChild(bool next)
{
    // Round this screen's own widgets, whatever window shows it.
    return FocusCycle::step(this, next);
}
