#pragma once

#include "CpuUsageData.h"
#include "DiskUsageData.h"
#include "InfoDictionary.h"
#include "MemoryUsageData.h"
#include "NetworkInfoReader.h"
#include "ProcReader.h"
#include "ProcessRecord.h"
#include "StartTimeFormatter.h"
#include "SystemInfoReader.h"

#include <QHash>
#include <QList>
#include <QString>

#include <cstdint>
#include <functional>
#include <optional>

struct statvfs;

// The one statistics object of the application: samples CPU, memory, disk and the
// process table, and formats sizes and frequencies. Not thread-safe apart from
// shared(): every caller runs on the main thread.
class StatCore {
public:
    // Reads rootDir's proc tree and the file system of homeDir. pageSize <= 0 stands
    // for a failed page-size query.
    StatCore(const QString &rootDir, const QString &homeDir, long pageSize = systemPageSize());
    // The same, with the system and network calls that a file tree cannot stand in for
    // replaced (tests describe a whole machine this way).
    StatCore(const QString &rootDir, const QString &homeDir, long pageSize, SystemInfoReader::SystemCalls systemCalls,
             NetworkInfoReader::Seams networkSeams);
    ~StatCore();
    StatCore(const StatCore &) = delete;
    StatCore &operator=(const StatCore &) = delete;

    // The process-wide instance on "/" and $HOME, created on first use; safe to call
    // first from several threads at once.
    static StatCore *shared();

    static long systemPageSize();

    // Ticks since the previous call (or since construction); replaces the stored sample.
    CpuUsageData cpuUsage();
    // Ticks since boot, for counters that their reader differences itself (the
    // metrics endpoint); leaves the stored sample alone. nullopt when unreadable.
    std::optional<ProcReader::CpuTicks> cpuTicksSinceBoot() const { return _reader.cpuTicks(); }
    long clockTicksPerSecond() const { return _clockTicks; }
    QString rootDir() const { return _reader.rootDir(); }
    long pageSize() const { return _pageSize; }
    std::optional<qint64> bootTime() const { return _reader.bootTime(); }
    MemoryUsageData memoryUsage() const;
    DiskUsageData diskUsage() const;
    // What diskUsage() asks the file system with: statvfs(2) unless replaced (tests stand
    // in a file system that fills up).
    using FileSystemQuery = std::function<int(const char *path, struct statvfs *stats)>;
    void setFileSystemQuery(FileSystemQuery query) { _fileSystemQuery = std::move(query); }
    // Every process in ascending pid order, oldest first; nullopt when the
    // process table cannot be read or holds no process. Each record's CPU shares are
    // over the interval since the previous call.
    std::optional<QList<ProcessRecord>> runningProcesses();
    // How many processes there are, without reading their files; nullopt when the
    // process table cannot be read.
    std::optional<qsizetype> processCount() const;
    // Start-time texts kept: one per process of the last scan, none for the dead.
    qsizetype startTimeCacheSize() const { return _startTimes.size(); }

    // Device, OS and CPU identification: "DeviceInfo", "OSInfo", "CPUInfo".
    InfoDictionary systemInfo() const;
    QString getSysInfoByName(const QString &name) const;
    std::uint32_t getSysInfo(std::uint32_t selector) const;
    QString platformString() const;
    QString getCPUFrequency() const;

    // Network state: "CommonInfo", "WifiInfo", "CellInfo". Runs the reachability
    // test and the address queries anew on every call.
    InfoDictionary networkInfo();
    QString macAddress() const;
    QString hostname() const;
    QString localIPAddress() const;
    QString wifiIPAddress() const;
    QString cellularIPAddress() const;
    // Blocks for at most the request's time-out; the application never calls it.
    QString externalIPAddress() const;
    void pingReachabilityInternal();
    bool networkAvailable();
    bool activeWWAN();
    bool activeWLAN() const;
    std::optional<CarrierInfo> carrierInfo() const;

    // The formatters, under the statistics object's own names (see Formatting).
    static QString byteToKiloMegaGigaWithByte(double byte, int decmal, bool unitSpace);
    static QString hzToKiloMegaGigaWithHz(double hz, int decmal, bool unitSpace);

private:
    struct StartTimeEntry {
        quint64 startTicks = 0;
        qint64 bootTime = 0;
        QString text;
        quint32 seenInScan = 0;
        std::optional<quint64> cpuTicks; // at the previous scan
    };
    std::optional<qint64> startSeconds(quint64 startTicks, qint64 bootTime) const;
    const QString &startTimeText(int pid, quint64 startTicks, qint64 bootTime);

    ProcReader _reader;
    FileSystemQuery _fileSystemQuery;
    SystemInfoReader _systemInfo;
    NetworkInfoReader _networkInfo;
    QString _homeDir;
    long _pageSize;
    long _clockTicks;
    ProcReader::CpuTicks _prevCpuLoad;
    ProcReader::CpuTicks _cpuLoad;
    StartTimeFormatter _startTimeFormatter;
    // A process's start-time text never changes: format it once and keep it while the
    // process lives. Keyed by pid; the start ticks tell a reused pid apart.
    QHash<int, StartTimeEntry> _startTimes;
    quint32 _scan = 0;
    std::optional<quint64> _scanTicks; // every CPU's ticks at the previous scan
};
