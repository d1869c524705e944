#pragma once

#include "CpuUsageData.h"
#include "DiskUsageData.h"
#include "MemoryUsageData.h"
#include "SummaryLayout.h"

#include <QWidget>

class Device;
class LabelView;
class OOHistogramView;
class OOPieChartView;
class OOStateBarView;
class OORectView;

// The four Summary panels (CPU history, memory ring, disk and battery bars, each in a
// dark rounded panel with colour keys and right-aligned figures) and the updates that
// feed them. The phone's Summary page and the tablet's summary panel are both these
// panels, laid out by their own SummaryLayout; texts, formats and colours are the same.
class SummaryPanels : public QWidget {
    Q_OBJECT
public:
    // The battery figures come from this device, set before the panels are built; none
    // shows the battery as unknown.
    void setDevice(Device *device);

    void setCpuUsageData(const CpuUsageData &cpuUsageData);
    void setMemoryUsageData(const MemoryUsageData &memoryUsageData);
    void setDiskUsageData(const DiskUsageData &diskUsageData);
    void batteryChanged();

    OOHistogramView *cpuHistogramView() const { return _cpuHistogramView; }
    OOPieChartView *memoryPieChartView() const { return _memoryPieChartView; }
    OOStateBarView *diskStateBarView() const { return _diskStateBarView; }
    OOStateBarView *batteryStateBarView() const { return _batteryStateBarView; }
    OORectView *diskUsedColorRectView() const { return _diskUsedColorRectView; }
    OORectView *batteryLevelColorRectView() const { return _batteryLevelColorRectView; }
    OORectView *batteryStateColorRectView() const { return _batteryStateColorRectView; }

    // The figures as shown, for tests and screenshots.
    QString cpuUserText() const;
    QString cpuSystemText() const;
    QString cpuIdleText() const;
    QString cpuUsageText() const;
    QString memoryWiredText() const;
    QString memoryActiveText() const;
    QString memoryInactiveText() const;
    QString memoryFreeText() const;
    QString memoryTotalText() const;
    QString memoryUserText() const;
    QString memoryPhysicalText() const;
    QString diskUsedText() const;
    QString diskFreeText() const;
    QString diskTotalSpaceText() const;
    QString batteryLevelText() const;
    QString batteryStateText() const;

protected:
    explicit SummaryPanels(QWidget *parent = nullptr);

    // Builds the panels into container, with no figures until the root screen sends
    // them, and the battery as the device reports it. Call once.
    void buildPanels(QWidget *container, const SummaryLayout &layout);

private:
    QWidget *addPanel(QWidget *container, const SummaryLayout &layout, const SummaryLayout::Panel &panel,
                      const QString &title);
    void buildCpuPanel(QWidget *container, const SummaryLayout &layout);
    void buildMemoryPanel(QWidget *container, const SummaryLayout &layout);
    void buildDiskPanel(QWidget *container, const SummaryLayout &layout);
    void buildBatteryPanel(QWidget *container, const SummaryLayout &layout);

    Device *_device = nullptr;
    OOHistogramView *_cpuHistogramView = nullptr;
    OOPieChartView *_memoryPieChartView = nullptr;
    OOStateBarView *_diskStateBarView = nullptr;
    OOStateBarView *_batteryStateBarView = nullptr;
    LabelView *_cpuUser = nullptr;
    LabelView *_cpuSystem = nullptr;
    LabelView *_cpuIdle = nullptr;
    LabelView *_cpuUsage = nullptr;
    LabelView *_memoryWired = nullptr;
    LabelView *_memoryActive = nullptr;
    LabelView *_memoryInactive = nullptr;
    LabelView *_memoryFree = nullptr;
    LabelView *_memoryTotal = nullptr;
    LabelView *_memoryUser = nullptr;
    LabelView *_memoryPhysical = nullptr;
    OORectView *_diskUsedColorRectView = nullptr;
    LabelView *_diskUsed = nullptr;
    LabelView *_diskFree = nullptr;
    LabelView *_diskTotalSpace = nullptr;
    OORectView *_batteryLevelColorRectView = nullptr;
    OORectView *_batteryStateColorRectView = nullptr;
    LabelView *_batteryLevel = nullptr;
    LabelView *_batteryState = nullptr;
};
