#pragma once

#include <QtGlobal>

// One memory sample. Page counts are 32-bit, byte figures 64-bit: today's machines
// have more memory than a 32-bit byte count can hold.
struct MemoryUsageData {
    qint32 pageSize = 0;
    qint32 totalPages = 0;
    quint64 wired = 0;
    quint64 active = 0;
    quint64 inactive = 0;
    quint64 free = 0;
    quint64 total = 0;
    double wiredPercent = 0.0;
    double activePercent = 0.0;
    double inactivePercent = 0.0;
    double freePercent = 0.0;
    quint64 physical = 0;
    quint64 user = 0;
};
