#include "iPhoneTotalViewController.h"

#include "Device.h"
#include "FontTable.h"
#include "HistogramItem.h"
#include "ImageView.h"
#include "LabelView.h"
#include "OOHistogramView.h"
#include "OOPieChartView.h"
#include "OORectView.h"
#include "OOStateBarView.h"
#include "PanelView.h"
#include "PieChartItem.h"
#include "StatCore.h"
#include "StateBarItem.h"
#include "SummaryColors.h"

#include <QScrollArea>
#include <QScroller>

#include <cmath>
#include <cstdio>

using namespace SummaryColors;

namespace {

constexpr int ContentHeight = 520;

QFont courier(int size)
{
    return FontTable::font(QStringLiteral("CourierNewPS-BoldMT"), size);
}

LabelView *label(QWidget *parent, const QRect &frame, const QString &text, int size = 13,
                 Qt::Alignment alignment = Qt::AlignLeft)
{
    auto *view = new LabelView(frame, text, courier(size), parent);
    view->setAlignment(alignment);
    return view;
}

LabelView *rightLabel(QWidget *parent, const QRect &frame, const char *text, int size = 13)
{
    return label(parent, frame, QString::fromLatin1(text), size, Qt::AlignRight);
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

// snprintf, not Qt's number printing: halves round to even as the figures always have.
template<typename... Args>
QString format(const char *pattern, Args... args)
{
    char text[96];
    std::snprintf(text, sizeof text, pattern, args...);
    return QString::fromLatin1(text);
}

QByteArray bytesText(double bytes, int decmal)
{
    return StatCore::byteToKiloMegaGigaWithByte(bytes, decmal, false).toLatin1();
}

} // namespace

iPhoneTotalViewController::iPhoneTotalViewController(QWidget *parent)
    : QWidget(parent)
{
}

void iPhoneTotalViewController::setDevice(Device *device)
{
    _device = device;
}

void iPhoneTotalViewController::viewDidLoad()
{
    const int W = width();
    const int H = height();
    if (!_device)
        _device = Device::currentDevice();

    _scrollView = new QScrollArea(this);
    _scrollView->setGeometry(0, 20, W, H - 20);
    _scrollView->setFrameShape(QFrame::NoFrame);
    _scrollView->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    _scrollView->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    _scrollView->setAttribute(Qt::WA_TranslucentBackground);
    _scrollView->viewport()->setAutoFillBackground(false);
    auto *content = new QWidget;
    content->resize(W, ContentHeight);
    _scrollView->setWidget(content);
    content->setAutoFillBackground(false); // setWidget() made it opaque

    QScroller::grabGesture(_scrollView->viewport(), QScroller::LeftMouseButtonGesture);

    buildCpuPanel(content);
    buildMemoryPanel(content);
    setMemoryUsageData(StatCore::shared()->memoryUsage());
    buildDiskPanel(content);
    setDiskUsageData(StatCore::shared()->diskUsage());
    buildBatteryPanel(content);
    batteryChanged();
}

QWidget *iPhoneTotalViewController::addPanel(QWidget *content, int y, int height, const QString &title)
{
    auto *panel = new QWidget(content);
    panel->setGeometry(0, y, width(), height);
    QColor fill(Qt::black);
    fill.setAlphaF(0.4f);
    new PanelView(QRect(5, 5, width() - 10, height - 5), fill, 7, panel);
    LabelView *titleLabel = label(panel, QRect(15, 10, 200, 20), title, 19);
    titleLabel->setShadow(Qt::black, QPointF(2, 2));
    return panel;
}

void iPhoneTotalViewController::buildCpuPanel(QWidget *content)
{
    QWidget *panel = addPanel(content, 0, 120, QStringLiteral("CPU Usage"));
    new PanelView(QRect(15, 35, 150, 75), Qt::black, 0, panel); // the histogram's black ground
    _cpuHistogramView = new OOHistogramView(QRect(15, 35, 150, 75), panel);
    _cpuHistogramView->setItemRectWidth(2);
    _cpuHistogramView->setItemRectHeight(2);
    glassOverlay(panel, QRect(15, 35, 150, 75), QStringLiteral("histogram_glass_effect.png"));

    legendSquare(panel, QRect(175, 35, 15, 15), cpuUser);
    legendSquare(panel, QRect(175, 55, 15, 15), cpuSystem);
    legendSquare(panel, QRect(175, 75, 15, 15), cpuIdle);
    label(panel, QRect(195, 35, 55, 15), QStringLiteral("User"));
    label(panel, QRect(195, 55, 55, 15), QStringLiteral("System"));
    label(panel, QRect(195, 75, 55, 15), QStringLiteral("Idle"));
    label(panel, QRect(175, 100, 65, 15), QStringLiteral("Usage"), 15);
    rule(panel, QRect(175, 95, 130, 1));
    _cpuUser = rightLabel(panel, QRect(250, 35, 55, 15), "0.0%");
    _cpuSystem = rightLabel(panel, QRect(250, 55, 55, 15), "0.0%");
    _cpuIdle = rightLabel(panel, QRect(250, 75, 55, 15), "0.0%");
    _cpuUsage = rightLabel(panel, QRect(240, 100, 65, 15), "0.0%", 15);
}

void iPhoneTotalViewController::buildMemoryPanel(QWidget *content)
{
    QWidget *panel = addPanel(content, 120, 175, QStringLiteral("Memory Usage"));
    _memoryPieChartView = new OOPieChartView(QRect(15, 35, 90, 90), panel);

    const Rgb legend[] = {memoryWiredLegend, memoryActive, memoryInactive, memoryFree};
    const char *names[] = {"Wired", "Active", "Inactive", "Free"};
    for (int i = 0; i < 4; ++i) {
        legendSquare(panel, QRect(115, 35 + 20 * i, 15, 15), legend[i]);
        label(panel, QRect(135, 35 + 20 * i, 70, 15), QString::fromLatin1(names[i]));
    }
    label(panel, QRect(115, 115, 120, 15), QStringLiteral("Total"));
    _memoryWired = rightLabel(panel, QRect(205, 35, 100, 15), "  0.0%   0MB");
    _memoryActive = rightLabel(panel, QRect(205, 55, 100, 15), "  0.0%   0MB");
    _memoryInactive = rightLabel(panel, QRect(205, 75, 100, 15), "  0.0%   0MB");
    _memoryFree = rightLabel(panel, QRect(205, 95, 100, 15), "  0.0%   0MB");
    _memoryTotal = rightLabel(panel, QRect(235, 115, 70, 15), "0MB");
    rule(panel, QRect(115, 135, 190, 1));
    label(panel, QRect(115, 140, 120, 15), QStringLiteral("User Memory"));
    label(panel, QRect(115, 155, 120, 15), QStringLiteral("Physical Memory"));
    _memoryUser = rightLabel(panel, QRect(235, 140, 70, 15), "0MB");
    _memoryPhysical = rightLabel(panel, QRect(235, 155, 70, 15), "0MB");
}

void iPhoneTotalViewController::buildDiskPanel(QWidget *content)
{
    const int W = width();
    QWidget *panel = addPanel(content, 295, 130, QStringLiteral("Disk Usage"));
    _diskStateBarView = new OOStateBarView(QRect(15, 35, W - 25, 27), panel);
    glassOverlay(panel, QRect(15, 35, W - 25, 27), QStringLiteral("statebar_glass_effect.png"));
    _diskUsedColorRectView = legendSquare(panel, QRect(15, 65, 15, 15), low);
    legendSquare(panel, QRect(15, 85, 15, 15), memoryFree);
    label(panel, QRect(35, 65, 135, 15), QStringLiteral("Used"));
    label(panel, QRect(35, 85, 135, 15), QStringLiteral("Free"));
    label(panel, QRect(15, 110, 155, 15), QStringLiteral("Total Disk Space"));
    _diskUsed = rightLabel(panel, QRect(170, 65, 135, 15), "  0.0%    0.00GB");
    _diskFree = rightLabel(panel, QRect(170, 85, 135, 15), "  0.0%    0.00GB");
    _diskTotalSpace = rightLabel(panel, QRect(170, 110, 135, 15), "0.00GB");
    rule(panel, QRect(15, 105, 290, 1));
}

void iPhoneTotalViewController::buildBatteryPanel(QWidget *content)
{
    const int W = width();
    if (_device) {
        connect(_device, &Device::batteryLevelDidChange, this, &iPhoneTotalViewController::batteryChanged);
        connect(_device, &Device::batteryStateDidChange, this, &iPhoneTotalViewController::batteryChanged);
    }
    QWidget *panel = addPanel(content, 425, 90, QStringLiteral("Battery"));
    _batteryStateBarView = new OOStateBarView(QRect(15, 35, W - 25, 27), panel);
    glassOverlay(panel, QRect(15, 35, W - 25, 27), QStringLiteral("statebar_glass_effect.png"));
    _batteryLevelColorRectView = legendSquare(panel, QRect(15, 65, 15, 15), initialBatteryLevel);
    _batteryStateColorRectView = legendSquare(panel, QRect(210, 65, 15, 15), critical, 1);
    label(panel, QRect(35, 65, 55, 15), QStringLiteral("Level"));
    _batteryLevel = label(panel, QRect(90, 65, 90, 15), QString(), 15);
    _batteryState = label(panel, QRect(230, 65, 85, 15), QString());
}

void iPhoneTotalViewController::setCpuUsageData(const CpuUsageData &cpu)
{
    if (!_cpuHistogramView)
        return;
    _cpuHistogramView->addItemData(HistogramItem::initWithUser(qint32(cpu.user), qint32(cpu.system), qint32(cpu.idle)));
    // Summed as 32-bit integers, as the tick deltas are.
    const double sum = double(std::int32_t(cpu.user + cpu.idle + cpu.system));
    _cpuUser->setText(format("%5.1f%%", cpu.user / sum * 100));
    _cpuSystem->setText(format("%5.1f%%", cpu.system / sum * 100));
    _cpuIdle->setText(format("%5.1f%%", cpu.idle / sum * 100));
    _cpuUsage->setText(format("%5.1f%%", cpu.usage));
}

void iPhoneTotalViewController::setMemoryUsageData(const MemoryUsageData &memory)
{
    if (!_memoryPieChartView)
        return;
    _memoryPieChartView->addItemData0(pieItem(memory.wired, memoryWiredSegment),
                                      pieItem(memory.active, memoryActive),
                                      pieItem(memory.inactive, memoryInactive),
                                      pieItem(memory.free, memoryFree));
    _memoryWired->setText(format("%5.1f%% %5.5s", memory.wiredPercent, bytesText(double(memory.wired), 0).constData()));
    _memoryActive->setText(
        format("%5.1f%% %5.5s", memory.activePercent, bytesText(double(memory.active), 0).constData()));
    _memoryInactive->setText(
        format("%5.1f%% %5.5s", memory.inactivePercent, bytesText(double(memory.inactive), 0).constData()));
    _memoryFree->setText(format("%5.1f%% %5.5s", memory.freePercent, bytesText(double(memory.free), 0).constData()));
    _memoryTotal->setText(format("%5.5s", bytesText(double(memory.total), 0).constData()));
    _memoryUser->setText(format("%5.5s", bytesText(double(memory.user), 0).constData()));
    _memoryPhysical->setText(format("%5.5s", bytesText(double(memory.physical), 0).constData()));
}

void iPhoneTotalViewController::setDiskUsageData(const DiskUsageData &disk)
{
    if (!_diskStateBarView)
        return;
    const double used = disk.totalSize - disk.freeSize;
    const double usedPct = used / disk.totalSize * 100;
    const double freePct = disk.freeSize / disk.totalSize * 100;
    const Rgb level = diskLevelColor(usedPct);
    _diskStateBarView->addItemData0(barItem(used, level), barItem(disk.freeSize, memoryFree));
    _diskUsedColorRectView->setRectColor(level.color());
    _diskUsed->setText(format("%5.1f%% %9.9s", usedPct, bytesText(used, 2).constData()));
    _diskFree->setText(format("%5.1f%% %9.9s", freePct, bytesText(disk.freeSize, 2).constData()));
    _diskTotalSpace->setText(format("%9.9s", bytesText(disk.totalSize, 2).constData()));
}

void iPhoneTotalViewController::batteryChanged()
{
    if (!_batteryStateBarView)
        return;
    const float level = _device ? _device->batteryLevel() : -1.0f;
    const int state = _device ? int(_device->batteryState()) : 0;
    // The level is a binary fraction: 0.3f times 100 is a hair above 30. Round off that
    // representation error so that a battery at exactly 30 % is treated as 30.
    const float L = level < 0 ? level * 100.0f : float(std::round(double(level) * 10000.0) / 100.0);

    _batteryLevel->setText(state != 0 ? format("%.0f%%", double(L)) : QStringLiteral("Unknown"));
    const Rgb levelColor = batteryLevelColor(L);
    _batteryLevelColorRectView->setRectColor(levelColor.color());
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

void iPhoneTotalViewController::setFrameForAd()
{
    if (_scrollView)
        _scrollView->setGeometry(0, 20, width(), height() - 20);
}

#define KOVAR_TEXT_ACCESSOR(name, member) \
    QString iPhoneTotalViewController::name() const { return member ? member->text() : QString(); }
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
