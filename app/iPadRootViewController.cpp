#include "iPadRootViewController.h"

#include "ADControlForiPad.h"
#include "FontTable.h"
#include "ImageView.h"
#include "LabelView.h"
#include "StatCore.h"
#include "iPadProcessesViewConroller.h"
#include "iPadTotalViewController.h"

#include <QTimer>

namespace {
constexpr int TitleHeight = 28;
constexpr int SummaryTop = 20;
// UIKit's grey: white at one half.
const QColor FooterTextColor = QColor::fromRgbF(0.5f, 0.5f, 0.5f);
} // namespace

iPadRootViewController::iPadRootViewController(QWidget *parent)
    : QWidget(parent)
{
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
    _totalViewController->initWithFrame(QRect(0, SummaryTop, W, H - SummaryTop - FooterHeight));

    // The band fades as a whole, its text with it.
    _footerLabel = new LabelView(QRect(0, H - FooterHeight, W, FooterHeight), QStringLiteral("Norvik App"),
                                 FontTable::font(QStringLiteral("Helvetica-Bold"), 35), this);
    _footerLabel->setBackgroundColor(Qt::black);
    _footerLabel->setOpacity(0.5);
    _footerLabel->setTextColor(FooterTextColor);
    _footerLabel->setAlignment(Qt::AlignHCenter);

    // The banner slot coincides with the footer band.
    ADControlForiPad::defaultsADForiPad()->addAds(this, float(H - FooterHeight));

    // Prime the sampler so the first tick reports the load over one period, not since boot.
    StatCore::shared()->cpuUsage();

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
    StatCore *core = StatCore::shared();
    _totalViewController->setCpuUsageData(core->cpuUsage());
    _totalViewController->setMemoryUsageData(core->memoryUsage());
    _totalViewController->processesViewController()->setProcData(core->runningProcesses());
}

bool iPadRootViewController::shouldAutorotateToInterfaceOrientation(InterfaceOrientation orientation) const
{
    return orientation == InterfaceOrientation::Portrait;
}
