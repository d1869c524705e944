#pragma once

#include "CpuUsageData.h"
#include "DiskUsageData.h"
#include "MemoryUsageData.h"
#include "ProcessRecord.h"

#include <QByteArray>
#include <QJsonObject>
#include <QList>

#include <chrono>
#include <optional>

class StatCore;

// One sample of every figure as a JSON document, keyed by the StatCore operation
// that produced it. NaN becomes null (JSON has no NaN).
class StatSnapshot {
public:
    // cpuInterval: the CPU figures are the ticks of this interval, measured now.
    static QJsonObject capture(StatCore &core, std::chrono::milliseconds cpuInterval);
    static QByteArray toJson(const QJsonObject &snapshot);

    static QJsonObject cpuUsageJson(const CpuUsageData &data);
    static QJsonObject memoryUsageJson(const MemoryUsageData &data);
    static QJsonObject diskUsageJson(const DiskUsageData &data);
    static QJsonValue runningProcessesJson(const std::optional<QList<ProcessRecord>> &processes);
};
