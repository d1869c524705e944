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

class Device;
class StatCore;

// One sample of every figure as a JSON document, keyed by the StatCore operation that
// produced it, with the time it was taken ("timestamp", RFC 3339 in UTC), the CPU
// interval in seconds ("cpuInterval") and the battery ("battery": level 0..1 and state).
// The same in every locale: numbers are JSON numbers, and a figure that cannot be known
// (NaN, an empty text, no battery level) is null.
class StatSnapshot {
public:
    // cpuInterval: the CPU figures are the ticks of this interval, measured now; the
    // events of the interval (a battery service's answers) are handled meanwhile.
    // device: whose battery is reported; none reports it as unknown.
    static QJsonObject capture(StatCore &core, Device *device, std::chrono::milliseconds cpuInterval);
    static QByteArray toJson(const QJsonObject &snapshot);

    static QJsonObject cpuUsageJson(const CpuUsageData &data);
    static QJsonObject memoryUsageJson(const MemoryUsageData &data);
    static QJsonObject diskUsageJson(const DiskUsageData &data);
    static QJsonValue runningProcessesJson(const std::optional<QList<ProcessRecord>> &processes);
    static QJsonObject batteryJson(float level, int state);
};
