#pragma once

#include "DiskUsageData.h"
#include "FileSystemReader.h"
#include "HostCounterReader.h"
#include "MemoryUsageData.h"
#include "ModemManagerCarrier.h"
#include "ProcReader.h"
#include "SensorReader.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>

#include <array>
#include <optional>
#include <utility>

class StatCore;

// The figures of one scrape in Prometheus's text formats: the classic text format
// 0.0.4 and OpenMetrics 1.0. Counters stay counters (CPU seconds since boot) so
// that Prometheus computes the rates; a figure that cannot be read is left out
// rather than sent as zero. Names, labels and units are those other Linux exporters
// give the same figures, so that the queries operators know work here too.
class MetricsExposition {
public:
    enum class Format { Text, OpenMetrics };

    enum class BatteryState { Unknown, Unplugged, Charging, Full };

    struct Sample {
        QList<HostCounterReader::CpuModes> cpus;
        long clockTicksPerSecond = 100;
        long pageSize = 4096;
        std::optional<HostCounterReader::MemoryExtras> memoryExtras;
        // The "some" stall totals of cpu, memory and io, in microseconds.
        std::array<std::optional<quint64>, 3> pressure;
        std::optional<HostCounterReader::Load> load;
        std::optional<qint64> bootTime;
        QList<HostCounterReader::NetDevice> netDevices;
        QList<FileSystemReader::FileSystem> fileSystems;
        QList<SensorReader::Temperature> temperatures;
        QList<SensorReader::Battery> batteries;
        QList<SensorReader::Charger> chargers;
        QList<SensorReader::Wireless> wireless;
        std::optional<HostCounterReader::OwnProcess> ownProcess;
        std::optional<ModemManagerCarrier::Signal> modem; // the caller asks the bus, not sample()
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
    // Without fileSystems no file system is sampled.
    static Sample sample(StatCore &core, FileSystemReader *fileSystems = nullptr);
    static QList<std::pair<QByteArray, QString>> deviceInfo(const StatCore &core);

    static QByteArray render(const Sample &sample, Format format);

    // The format an Accept header asks for: OpenMetrics when it ranks that at least
    // as high as the plain text; the text format for anything else, no header included.
    static Format negotiate(QByteArrayView accept);
    static QByteArray contentType(Format format);
};
