#include "SummaryPanels.h"

#include "Device.h"
#include "FittedBytes.h"
#include "FontTable.h"
#include "Formatting.h"
#include "HistogramItem.h"
#include "ImageView.h"
#include "LabelView.h"
#include "OOHistogramView.h"
#include "OOPieChartView.h"
#include "OORectView.h"
#include "OOStateBarView.h"
#include "PanelView.h"
#include "PieChartItem.h"
#include "StateBarItem.h"
#include "SummaryColors.h"

#include <QFontMetricsF>
#include <QtMath>

#include <cmath>
#include <limits>

using namespace SummaryColors;

namespace {

LabelView *label(QWidget *parent, const QRect &frame, const QString &text, int size,
                 Qt::Alignment alignment = Qt::AlignLeft)
{
    auto *view = new LabelView(frame, text, FontTable::font(QStringLiteral("CourierNewPS-BoldMT"), size), parent);
    view->setAlignment(alignment);
    return view;
}

// A figure, read with the caption drawn beside it.
LabelView *rightLabel(QWidget *parent, const QRect &frame, const char *text, int size, const QString &caption)
{
    LabelView *view = label(parent, frame, QString::fromLatin1(text), size, Qt::AlignRight);
    view->setCaption(caption);
    return view;
}

OORectView *legendSquare(QWidget *parent, const QRect &frame, const Rgb &color, int type = 0)
{
    auto *square = new OORectView(frame, parent);
    square->setType(type);
    square->setRectColor(color.color());
    return square;
}

PieChartItem pieItem(quint64 value, const Rgb &color)
{
    return PieChartItem(value, color.red, color.green, color.blue, 1.0f);
}

StateBarItem barItem(double value, const Rgb &color)
{
    return StateBarItem(value, color.red, color.green, color.blue, 1.0f);
}

void rule(QWidget *parent, const QRect &frame)
{
    new PanelView(frame, Qt::white, 0, parent);
}

void glassOverlay(QWidget *parent, const QRect &frame, const QString &image)
{
    new ImageView(frame, image, parent);
}

// A figure is never cut: a right-aligned label whose text outgrows its frame
// widens to the left, into the blank beside its caption.
void setWholeText(LabelView *label, const QString &text)
{
    label->setText(text);
    // Whole pixels of a fractional advance: an int advance rounded down still elides.
    const int needed = qCeil(QFontMetricsF(label->font()).horizontalAdvance(text));
    if (needed > label->width()) {
        QRect frame = label->geometry();
        frame.setLeft(frame.right() + 1 - needed);
        label->setGeometry(frame);
    }
}

// What a bar's red or orange tells a sighted user, for one who cannot see it.
QString warningInWords(const Rgb &color, const QString &criticalText, const QString &warningText)
{
    if (color == critical)
        return QStringLiteral("Critical: ") + criticalText;
    if (color == warning)
        return QStringLiteral("Warning: ") + warningText;
    return {};
}

} // namespace

SummaryPanels::SummaryPanels(QWidget *parent)
    : QWidget(parent)
{
}

void SummaryPanels::setDevice(Device *device)
{
    _device = device;
}

void SummaryPanels::buildPanels(QWidget *container, const SummaryLayout &layout)
{
    buildCpuPanel(container, layout);
    buildMemoryPanel(container, layout);
    buildDiskPanel(container, layout);
    buildBatteryPanel(container, layout);
    batteryChanged();
}

QWidget *SummaryPanels::addPanel(QWidget *container, const SummaryLayout &layout, const SummaryLayout::Panel &frames,
                                 const QString &title)
{
    auto *panel = new QWidget(container);
    panel->setGeometry(frames.frame);
    // A reader walking the panel hears its title first, then its captions and figures.
    panel->setAccessibleName(title);
    QColor fill(Qt::black);
    fill.setAlphaF(0.4f);
    new PanelView(QRect(QPoint(), frames.frame.size()).marginsRemoved(frames.background), fill, 7, panel);
    LabelView *titleLabel = label(panel, layout.titleFrame, title, layout.titleSize);
    titleLabel->setShadow(Qt::black, QPointF(2, 2));
    titleLabel->setReadAs(QAccessible::Heading);
    return panel;
}

void SummaryPanels::buildCpuPanel(QWidget *container, const SummaryLayout &l)
{
    QWidget *panel = addPanel(container, l, l.cpuPanel, QStringLiteral("CPU Usage"));
    new PanelView(l.histogram, Qt::black, 0, panel); // the histogram's black ground
    _cpuHistogramView = new OOHistogramView(l.histogram, panel);
    _cpuHistogramView->setItemRectWidth(2);
    _cpuHistogramView->setItemRectHeight(2);
    _cpuHistogramView->setAccessibleName(QStringLiteral("CPU history"));
    glassOverlay(panel, l.histogram, QStringLiteral("histogram_glass_effect.png"));

    const Rgb legend[] = {cpuUser, cpuSystem, cpuIdle};
    const char *names[] = {"User", "System", "Idle"};
    for (int i = 0; i < 3; ++i) {
        legendSquare(panel, l.cpuLegends[i], legend[i]);
        label(panel, l.cpuCaptions[i], QString::fromLatin1(names[i]), l.labelSize);
    }
    label(panel, l.usageCaption, QStringLiteral("Usage"), l.usageCaptionSize);
    rule(panel, l.cpuRule);
    _cpuUser = rightLabel(panel, l.cpuValues[0], "0.0%", l.labelSize, QStringLiteral("User"));
    _cpuSystem = rightLabel(panel, l.cpuValues[1], "0.0%", l.labelSize, QStringLiteral("System"));
    _cpuIdle = rightLabel(panel, l.cpuValues[2], "0.0%", l.labelSize, QStringLiteral("Idle"));
    _cpuUsage = rightLabel(panel, l.cpuUsage, "0.0%", l.cpuUsageSize, QStringLiteral("Usage"));
}

void SummaryPanels::buildMemoryPanel(QWidget *container, const SummaryLayout &l)
{
    QWidget *panel = addPanel(container, l, l.memoryPanel, QStringLiteral("Memory Usage"));
    _memoryPieChartView = new OOPieChartView(l.pieChart, panel);
    _memoryPieChartView->setAccessibleName(QStringLiteral("Memory"));

    const Rgb legend[] = {memoryWiredLegend, memoryActive, memoryInactive, memoryFree};
    const char *names[] = {"Wired", "Active", "Inactive", "Free"};
    for (int i = 0; i < 4; ++i) {
        legendSquare(panel, l.memoryLegends[i], legend[i]);
        label(panel, l.memoryCaptions[i], QString::fromLatin1(names[i]), l.labelSize);
    }
    _memoryPieChartView->setItemNames(
        {QStringLiteral("Wired"), QStringLiteral("Active"), QStringLiteral("Inactive"), QStringLiteral("Free")});
    label(panel, l.totalCaption, QStringLiteral("Total"), l.labelSize);
    _memoryWired = rightLabel(panel, l.memoryValues[0], "  0.0%   0MB", l.labelSize, QStringLiteral("Wired"));
    _memoryActive = rightLabel(panel, l.memoryValues[1], "  0.0%   0MB", l.labelSize, QStringLiteral("Active"));
    _memoryInactive = rightLabel(panel, l.memoryValues[2], "  0.0%   0MB", l.labelSize, QStringLiteral("Inactive"));
    _memoryFree = rightLabel(panel, l.memoryValues[3], "  0.0%   0MB", l.labelSize, QStringLiteral("Free"));
    _memoryTotal = rightLabel(panel, l.memoryTotal, "0MB", l.labelSize, QStringLiteral("Total"));
    rule(panel, l.memoryRule);
    label(panel, l.userCaption, QStringLiteral("User Memory"), l.labelSize);
    label(panel, l.physicalCaption, QStringLiteral("Physical Memory"), l.labelSize);
    _memoryUser = rightLabel(panel, l.memoryUser, "0MB", l.labelSize, QStringLiteral("User Memory"));
    _memoryPhysical = rightLabel(panel, l.memoryPhysical, "0MB", l.labelSize, QStringLiteral("Physical Memory"));
}

void SummaryPanels::buildDiskPanel(QWidget *container, const SummaryLayout &l)
{
    QWidget *panel = addPanel(container, l, l.diskPanel, QStringLiteral("Disk Usage"));
    _diskStateBarView = new OOStateBarView(l.diskBar, panel);
    _diskStateBarView->setAccessibleName(QStringLiteral("Disk used"));
    glassOverlay(panel, l.diskBar, QStringLiteral("statebar_glass_effect.png"));
    _diskUsedColorRectView = legendSquare(panel, l.diskUsedLegend, low);
    legendSquare(panel, l.diskFreeLegend, memoryFree);
    label(panel, l.usedCaption, QStringLiteral("Used"), l.labelSize);
    label(panel, l.freeCaption, QStringLiteral("Free"), l.labelSize);
    label(panel, l.totalSpaceCaption, QStringLiteral("Total Disk Space"), l.labelSize);
    _diskUsed = rightLabel(panel, l.diskUsed, "  0.0%    0.00GB", l.labelSize, QStringLiteral("Used"));
    _diskFree = rightLabel(panel, l.diskFree, "  0.0%    0.00GB", l.labelSize, QStringLiteral("Free"));
    _diskTotalSpace = rightLabel(panel, l.diskTotalSpace, "0.00GB", l.labelSize, QStringLiteral("Total Disk Space"));
    rule(panel, l.diskRule);
}

void SummaryPanels::buildBatteryPanel(QWidget *container, const SummaryLayout &l)
{
    if (_device) {
        connect(_device, &Device::batteryLevelDidChange, this, &SummaryPanels::batteryChanged);
        connect(_device, &Device::batteryStateDidChange, this, &SummaryPanels::batteryChanged);
    }
    QWidget *panel = addPanel(container, l, l.batteryPanel, QStringLiteral("Battery"));
    _batteryStateBarView = new OOStateBarView(l.batteryBar, panel);
    _batteryStateBarView->setAccessibleName(QStringLiteral("Battery level"));
    glassOverlay(panel, l.batteryBar, QStringLiteral("statebar_glass_effect.png"));
    _batteryLevelColorRectView = legendSquare(panel, l.batteryLevelLegend, initialBatteryLevel);
    _batteryStateColorRectView = legendSquare(panel, l.batteryStateLegend, critical, 1);
    label(panel, l.levelCaption, QStringLiteral("Level"), l.labelSize);
    _batteryLevel = label(panel, l.batteryLevel, l.batteryLevelInitialText, l.batteryLevelSize);
    _batteryLevel->setCaption(QStringLiteral("Level"));
    _batteryState = label(panel, l.batteryState, QString(), l.labelSize);
    _batteryState->setCaption(QStringLiteral("State"));
}

void SummaryPanels::setCpuUsageData(const CpuUsageData &cpu)
{
    if (!_cpuHistogramView)
        return;
    _cpuHistogramView->addItemData(HistogramItem::initWithUser(qint32(cpu.user), qint32(cpu.system), qint32(cpu.idle)));
    // Summed as 32-bit integers, as the tick deltas are.
    const double sum = double(std::int32_t(cpu.user + cpu.idle + cpu.system));
    // No tick at all has no shares: "nan", as the handheld printed it; x86's own 0/0 is a
    // NaN with its sign set, which printf writes "-nan".
    const auto share = [sum](quint32 ticks) {
        return sum != 0 ? ticks / sum * 100 : std::numeric_limits<double>::quiet_NaN();
    };
    _cpuUser->setText(Formatting::print("%5.1f%%", share(cpu.user)));
    _cpuSystem->setText(Formatting::print("%5.1f%%", share(cpu.system)));
    _cpuIdle->setText(Formatting::print("%5.1f%%", share(cpu.idle)));
    _cpuUsage->setText(Formatting::print("%5.1f%%", cpu.usage));
}

void SummaryPanels::setMemoryUsageData(const MemoryUsageData &memory)
{
    if (!_memoryPieChartView)
        return;
    _memoryPieChartView->addItemData0(pieItem(memory.wired, memoryWiredSegment), pieItem(memory.active, memoryActive),
                                      pieItem(memory.inactive, memoryInactive), pieItem(memory.free, memoryFree));
    // Five-character size fields, as "%5.5s" would give, that never cut a figure.
    auto size = [](quint64 bytes) { return FittedBytes::text(double(bytes), 0, 5); };
    setWholeText(_memoryWired, Formatting::print("%5.1f%% ", memory.wiredPercent) + size(memory.wired));
    setWholeText(_memoryActive, Formatting::print("%5.1f%% ", memory.activePercent) + size(memory.active));
    setWholeText(_memoryInactive, Formatting::print("%5.1f%% ", memory.inactivePercent) + size(memory.inactive));
    setWholeText(_memoryFree, Formatting::print("%5.1f%% ", memory.freePercent) + size(memory.free));
    setWholeText(_memoryTotal, size(memory.total));
    setWholeText(_memoryUser, size(memory.user));
    setWholeText(_memoryPhysical, size(memory.physical));
}

void SummaryPanels::setDiskUsageData(const DiskUsageData &disk)
{
    if (!_diskStateBarView)
        return;
    const double used = disk.totalSize - disk.freeSize;
    const double usedPct = used / disk.totalSize * 100;
    const double freePct = disk.freeSize / disk.totalSize * 100;
    const Rgb level = diskLevelColor(usedPct);
    _diskStateBarView->addItemData0(barItem(used, level), barItem(disk.freeSize, memoryFree));
    _diskUsedColorRectView->setRectColor(level.color());
    _diskStateBarView->setAccessibleDescription(
        warningInWords(level, QStringLiteral("the disk is almost full"), QStringLiteral("the disk is filling up")));
    // Nine-character fields, as "%9.9s" would give; 1 TB and more grow the field.
    auto size = [](double bytes) { return FittedBytes::text(bytes, 2, 9); };
    setWholeText(_diskUsed, Formatting::print("%5.1f%% ", usedPct) + size(used));
    setWholeText(_diskFree, Formatting::print("%5.1f%% ", freePct) + size(disk.freeSize));
    setWholeText(_diskTotalSpace, size(disk.totalSize));
}

void SummaryPanels::batteryChanged()
{
    if (!_batteryStateBarView)
        return;
    const float level = _device ? _device->batteryLevel() : -1.0f;
    const int state = _device ? int(_device->batteryState()) : 0;
    // The level is a binary fraction: 0.3f times 100 is a hair above 30. Round off that
    // representation error so that a battery at exactly 30 % is treated as 30.
    const float L = level < 0 ? level * 100.0f : float(std::round(double(level) * 10000.0) / 100.0);

    _batteryLevel->setText(state != 0 ? Formatting::print("%.0f%%", double(L)) : QStringLiteral("Unknown"));
    const Rgb levelColor = batteryLevelColor(L);
    _batteryLevelColorRectView->setRectColor(levelColor.color());
    _batteryStateBarView->setAccessibleDescription(warningInWords(
        levelColor, QStringLiteral("the battery is almost empty"), QStringLiteral("the battery is low")));
    const double bar = L < 0 ? 0.0 : double(L);
    _batteryStateBarView->addItemData0(barItem(bar, levelColor), barItem(100.0 - bar, memoryFree));

    Rgb stateColor = levelColor;
    switch (state) {
    case 0:
        _batteryState->setText(QStringLiteral("Unknown"));
        stateColor = unknown;
        break;
    case 1:
        _batteryState->setText(QStringLiteral("Unplugged"));
        stateColor = critical;
        break;
    case 2:
        _batteryState->setText(QStringLiteral("Charging"));
        stateColor = warning;
        break;
    case 3:
        _batteryState->setText(QStringLiteral("Full"));
        stateColor = good;
        break;
    default:
        break;
    }
    _batteryStateColorRectView->setRectColor(stateColor.color());
}

#define KOVAR_TEXT_ACCESSOR(name, member)                                                                              \
    QString SummaryPanels::name() const                                                                                \
    {                                                                                                                  \
        return member ? member->text() : QString();                                                                    \
    }
KOVAR_TEXT_ACCESSOR(cpuUserText, _cpuUser)
KOVAR_TEXT_ACCESSOR(cpuSystemText, _cpuSystem)
KOVAR_TEXT_ACCESSOR(cpuIdleText, _cpuIdle)
KOVAR_TEXT_ACCESSOR(cpuUsageText, _cpuUsage)
KOVAR_TEXT_ACCESSOR(memoryWiredText, _memoryWired)
KOVAR_TEXT_ACCESSOR(memoryActiveText, _memoryActive)
KOVAR_TEXT_ACCESSOR(memoryInactiveText, _memoryInactive)
KOVAR_TEXT_ACCESSOR(memoryFreeText, _memoryFree)
KOVAR_TEXT_ACCESSOR(memoryTotalText, _memoryTotal)
KOVAR_TEXT_ACCESSOR(memoryUserText, _memoryUser)
KOVAR_TEXT_ACCESSOR(memoryPhysicalText, _memoryPhysical)
KOVAR_TEXT_ACCESSOR(diskUsedText, _diskUsed)
KOVAR_TEXT_ACCESSOR(diskFreeText, _diskFree)
KOVAR_TEXT_ACCESSOR(diskTotalSpaceText, _diskTotalSpace)
KOVAR_TEXT_ACCESSOR(batteryLevelText, _batteryLevel)
KOVAR_TEXT_ACCESSOR(batteryStateText, _batteryState)
#undef KOVAR_TEXT_ACCESSOR
