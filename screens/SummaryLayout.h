#pragma once

#include <QMargins>
#include <QRect>
#include <QString>

#include <array>

// Where the Summary panels put everything, and at which text sizes: one table per
// idiom, so that both idioms build and update the same panels from one code path.
// Frames of a panel's contents are in that panel's coordinates.
struct SummaryLayout {
    struct Panel {
        QRect frame;         // in the container's coordinates
        QMargins background; // the dark rounded panel: the frame's own rect less these
    };

    Panel cpuPanel;
    Panel memoryPanel;
    Panel diskPanel;
    Panel batteryPanel;
    QRect titleFrame;
    int titleSize = 0;
    int labelSize = 0; // every label not given a size of its own

    // CPU: user, system, idle rows.
    QRect histogram;
    std::array<QRect, 3> cpuLegends;
    std::array<QRect, 3> cpuCaptions;
    std::array<QRect, 3> cpuValues;
    QRect cpuRule;
    QRect usageCaption;
    int usageCaptionSize = 0;
    QRect cpuUsage;
    int cpuUsageSize = 0;

    // Memory: wired, active, inactive, free rows, then the totals.
    QRect pieChart;
    std::array<QRect, 4> memoryLegends;
    std::array<QRect, 4> memoryCaptions;
    std::array<QRect, 4> memoryValues;
    QRect totalCaption;
    QRect memoryTotal;
    QRect memoryRule;
    QRect userCaption;
    QRect physicalCaption;
    QRect memoryUser;
    QRect memoryPhysical;

    // Disk.
    QRect diskBar;
    QRect diskUsedLegend;
    QRect diskFreeLegend;
    QRect usedCaption;
    QRect freeCaption;
    QRect totalSpaceCaption;
    QRect diskUsed;
    QRect diskFree;
    QRect diskTotalSpace;
    QRect diskRule;

    // Battery.
    QRect batteryBar;
    QRect batteryLevelLegend;
    QRect batteryStateLegend;
    QRect levelCaption;
    QRect batteryLevel;
    int batteryLevelSize = 0;
    QString batteryLevelInitialText;
    QRect batteryState;

    // The phone's column of panels, `width` wide, stacked from the top.
    static SummaryLayout phone(int width);
    // The tablet's two columns in a `width`-wide area, each half of it.
    static SummaryLayout tablet(int width);
};
