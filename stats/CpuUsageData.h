#pragma once

#include <QtGlobal>

// CPU ticks of each class since the previous sample. usage is NaN when no tick elapsed.
struct CpuUsageData {
    quint32 user = 0;
    quint32 system = 0;
    quint32 idle = 0;
    double usage = 0.0;
};
