#pragma once

#include "DiskUsageData.h"
#include "MemoryUsageData.h"
#include "ProcReader.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>

#include <optional>
#include <utility>

class StatCore;

// The figures of one scrape in Prometheus's text formats: the classic text format
// 0.0.4 and OpenMetrics 1.0. Counters stay counters (CPU seconds since boot) so
// that Prometheus computes the rates; a figure that cannot be read is left out
// rather than sent as zero.
class MetricsExposition {
public:
    enum class Format { Text, OpenMetrics };

    enum class BatteryState { Unknown, Unplugged, Charging, Full };

    struct Sample {
        std::optional<ProcReader::CpuTicks> cpuTicks;
        long clockTicksPerSecond = 100;
        MemoryUsageData memory;
        DiskUsageData disk;
        float batteryLevel = -1.0f; // 0..1, or -1 when unknown
        BatteryState batteryState = BatteryState::Unknown;
        std::optional<qsizetype> processes;
        bool networkAvailable = false;
        bool activeWWAN = false;
        bool activeWLAN = false;
        // Label name and value pairs of kovar_device_info.
        QList<std::pair<QByteArray, QString>> deviceInfo;
    };

    // Every figure but the battery, which the caller knows from its device, and the
    // device's identification, which hardly ever changes and costs the most to read.
    static Sample sample(StatCore &core);
    static QList<std::pair<QByteArray, QString>> deviceInfo(const StatCore &core);

    static QByteArray render(const Sample &sample, Format format);

    // The format an Accept header asks for: OpenMetrics when it ranks that at least
    // as high as the plain text; the text format for anything else, no header included.
    static Format negotiate(QByteArrayView accept);
    static QByteArray contentType(Format format);
};
