#include "SummaryLayout.h"

SummaryLayout SummaryLayout::phone(int W)
{
    SummaryLayout l;
    const QMargins background(5, 5, 5, 0);
    l.cpuPanel = {QRect(0, 0, W, 120), background};
    l.memoryPanel = {QRect(0, 120, W, 175), background};
    l.diskPanel = {QRect(0, 295, W, 130), background};
    l.batteryPanel = {QRect(0, 425, W, 90), background};
    l.titleFrame = QRect(15, 10, 200, 20);
    l.titleSize = 19;
    l.labelSize = 13;

    l.histogram = QRect(15, 35, 150, 75);
    for (int i = 0; i < 3; ++i) {
        const int y = 35 + 20 * i;
        l.cpuLegends[i] = QRect(175, y, 15, 15);
        l.cpuCaptions[i] = QRect(195, y, 55, 15);
        l.cpuValues[i] = QRect(250, y, 55, 15);
    }
    l.cpuRule = QRect(175, 95, 130, 1);
    l.usageCaption = QRect(175, 100, 65, 15);
    l.usageCaptionSize = 15;
    l.cpuUsage = QRect(240, 100, 65, 15);
    l.cpuUsageSize = 15;

    l.pieChart = QRect(15, 35, 90, 90);
    for (int i = 0; i < 4; ++i) {
        const int y = 35 + 20 * i;
        l.memoryLegends[i] = QRect(115, y, 15, 15);
        l.memoryCaptions[i] = QRect(135, y, 70, 15);
        l.memoryValues[i] = QRect(205, y, 100, 15);
    }
    l.totalCaption = QRect(115, 115, 120, 15);
    l.memoryTotal = QRect(235, 115, 70, 15);
    l.memoryRule = QRect(115, 135, 190, 1);
    l.userCaption = QRect(115, 140, 120, 15);
    l.physicalCaption = QRect(115, 155, 120, 15);
    l.memoryUser = QRect(235, 140, 70, 15);
    l.memoryPhysical = QRect(235, 155, 70, 15);

    l.diskBar = QRect(15, 35, W - 25, 27);
    l.diskUsedLegend = QRect(15, 65, 15, 15);
    l.diskFreeLegend = QRect(15, 85, 15, 15);
    l.usedCaption = QRect(35, 65, 135, 15);
    l.freeCaption = QRect(35, 85, 135, 15);
    l.totalSpaceCaption = QRect(15, 110, 155, 15);
    l.diskUsed = QRect(170, 65, 135, 15);
    l.diskFree = QRect(170, 85, 135, 15);
    l.diskTotalSpace = QRect(170, 110, 135, 15);
    l.diskRule = QRect(15, 105, 290, 1);

    l.batteryBar = QRect(15, 35, W - 25, 27);
    l.batteryLevelLegend = QRect(15, 65, 15, 15);
    l.batteryStateLegend = QRect(210, 65, 15, 15);
    l.levelCaption = QRect(35, 65, 55, 15);
    l.batteryLevel = QRect(90, 65, 90, 15);
    l.batteryLevelSize = 15;
    l.batteryState = QRect(230, 65, 85, 15);
    return l;
}

SummaryLayout SummaryLayout::tablet(int W)
{
    SummaryLayout l;
    const int half = W / 2;
    // The dark panels keep 8 points from the screen's edges and 8 between the columns.
    const QMargins left(8, 8, 4, 0);
    const QMargins right(4, 8, 8, 0);
    l.cpuPanel = {QRect(0, 0, half, 195), left};
    l.memoryPanel = {QRect(0, 195, half, 202), left};
    l.diskPanel = {QRect(half, 0, half, 147), right};
    l.batteryPanel = {QRect(half, 147, half, 100), right};
    l.titleFrame = QRect(20, 15, 344, 20);
    l.titleSize = 20;
    l.labelSize = 15;

    l.histogram = QRect(20, 40, 344, 75);
    for (int i = 0; i < 3; ++i) {
        const int y = 125 + 22 * i;
        l.cpuLegends[i] = QRect(20, y, 15, 15);
        l.cpuCaptions[i] = QRect(40, y, 70, 15);
        l.cpuValues[i] = QRect(110, y, 75, 15);
    }
    l.cpuRule = QRect(192, 125, 1, 59);
    l.usageCaption = QRect(215, 125, 80, 20);
    l.usageCaptionSize = 18;
    l.cpuUsage = QRect(205, 145, 159, 35);
    l.cpuUsageSize = 30;

    l.pieChart = QRect(20, 40, 110, 110);
    // The rows step 23, 21, 23: kept as they are.
    const int memoryRows[] = {40, 63, 84, 107};
    for (int i = 0; i < 4; ++i) {
        l.memoryLegends[i] = QRect(137, memoryRows[i], 15, 15);
        l.memoryCaptions[i] = QRect(157, memoryRows[i], 85, 15);
        l.memoryValues[i] = QRect(242, memoryRows[i], 122, 15);
    }
    l.totalCaption = QRect(137, 129, 105, 15);
    l.memoryTotal = QRect(242, 129, 122, 15);
    l.memoryRule = QRect(137, 149, 227, 1);
    l.userCaption = QRect(137, 156, 140, 15);
    l.physicalCaption = QRect(137, 178, 140, 15);
    l.memoryUser = QRect(277, 156, 87, 15);
    l.memoryPhysical = QRect(277, 178, 87, 15);

    l.diskBar = QRect(20, 40, half - 40, 27);
    l.diskUsedLegend = QRect(20, 72, 15, 15);
    l.diskFreeLegend = QRect(20, 94, 15, 15);
    l.usedCaption = QRect(40, 72, 135, 15);
    l.freeCaption = QRect(40, 94, 135, 15);
    l.totalSpaceCaption = QRect(20, 122, 155, 15);
    l.diskUsed = QRect(175, 72, 189, 15);
    l.diskFree = QRect(175, 94, 189, 15);
    l.diskTotalSpace = QRect(175, 122, 189, 15);
    l.diskRule = QRect(20, 115, half - 40, 1);

    l.batteryBar = QRect(20, 40, half - 40, 27);
    l.batteryLevelLegend = QRect(20, 72, 15, 15);
    l.batteryStateLegend = QRect(250, 72, 15, 15);
    l.levelCaption = QRect(40, 72, 70, 15);
    l.batteryLevel = QRect(110, 72, 100, 15);
    l.batteryLevelSize = 15;
    l.batteryLevelInitialText = QStringLiteral("100%");
    l.batteryState = QRect(270, 72, 94, 15);
    return l;
}
