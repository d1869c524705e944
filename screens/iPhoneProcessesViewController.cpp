#include "iPhoneProcessesViewController.h"

#include "FontTable.h"
#include "Formatting.h"
#include "LabelView.h"

namespace {
constexpr ListPage::Insets PhoneProcessesInsets = [] {
    ListPage::Insets insets = ListPage::PhoneInsets;
    insets.titleFrame = QRect(15, 10, 200, 20);
    return insets;
}();

// UIKit's orange: RGB 1.0, 0.5, 0.0.
const QColor Orange = QColor::fromRgbF(1.0f, 0.5f, 0.0f);
} // namespace

iPhoneProcessesViewController::iPhoneProcessesViewController(QWidget *parent)
    : ProcessesPage({PhoneProcessesInsets,
                     QRect(15, 40, 135, 15),
                     {QRect(15, 60, 55, 20), QRect(70, 60, 185, 20), QRect(255, 60, 50, 20)},
                     Qt::AlignLeft},
                    ProcessCellDelegate::PhoneCell, parent)
{
}

void iPhoneProcessesViewController::viewDidLoad()
{
    ProcessesPage::viewDidLoad();
    _cpuUsage = new LabelView(QRect(150, 40, 155, 15), QStringLiteral("CPU Usage:  0.0%"),
                              FontTable::font(QStringLiteral("CourierNewPS-BoldMT"), 15), baseView());
    _cpuUsage->setTextColor(Orange);
    _cpuUsage->setAlignment(Qt::AlignRight);
    _cpuUsage->show();
}

void iPhoneProcessesViewController::setCpuUsageData(const CpuUsageData &cpuUsageData)
{
    if (!_cpuUsage)
        return;
    _cpuUsage->setText(Formatting::print("CPU Usage:%5.1f%%", cpuUsageData.usage));
}

void iPhoneProcessesViewController::setFrameForAd()
{
    layoutForSize();
}

QString iPhoneProcessesViewController::cpuUsageText() const
{
    return _cpuUsage ? _cpuUsage->text() : QString();
}
