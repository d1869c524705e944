#include "StatCore.h"

#include "Formatting.h"
#include "StatsLog.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <climits>
#include <limits>
#include <sys/statvfs.h>
#include <unistd.h>

StatCore::StatCore(const QString &rootDir, const QString &homeDir, long pageSize)
    : StatCore(rootDir, homeDir, pageSize, SystemInfoReader::hostSystemCalls(), NetworkInfoReader::hostSeams())
{
}

StatCore::StatCore(const QString &rootDir, const QString &homeDir, long pageSize,
                   SystemInfoReader::SystemCalls systemCalls, NetworkInfoReader::Seams networkSeams)
    : _reader(rootDir)
    , _fileSystemQuery([](const char *path, struct statvfs *stats) { return ::statvfs(path, stats); })
    , _systemInfo(rootDir, std::move(systemCalls))
    , _networkInfo(rootDir, std::move(networkSeams))
    , _homeDir(homeDir)
    , _pageSize(pageSize)
    , _clockTicks(::sysconf(_SC_CLK_TCK))
{
    if (_clockTicks <= 0)
        _clockTicks = 100;
    // The first cpuUsage() measures the time since construction.
    if (const std::optional<ProcReader::CpuTicks> ticks = _reader.cpuTicks())
        _prevCpuLoad = *ticks;
    _cpuLoad = _prevCpuLoad;
}

StatCore::~StatCore() = default;

StatCore *StatCore::shared()
{
    // Made on first use (safely from any thread) and kept until the process ends, as
    // the pages' figures are.
    static StatCore *const core = [] {
        QString home = qEnvironmentVariable("HOME");
        if (home.isEmpty())
            home = QDir::homePath();
        return new StatCore(QStringLiteral("/"), home);
    }();
    return core;
}

long StatCore::systemPageSize()
{
    return ::sysconf(_SC_PAGESIZE);
}

CpuUsageData StatCore::cpuUsage()
{
    // A failed read keeps the last sample, so the deltas come out zero (usage NaN).
    if (const std::optional<ProcReader::CpuTicks> ticks = _reader.cpuTicks())
        _cpuLoad = *ticks;

    CpuUsageData data;
    // The interval's ticks, cut to 32 bits as the figures are (a counter that went
    // back, as a garbled file can make it, wraps rather than traps).
    data.user = quint32(_cpuLoad.user - _prevCpuLoad.user);
    data.system = quint32(_cpuLoad.system - _prevCpuLoad.system);
    data.idle = quint32(_cpuLoad.idle - _prevCpuLoad.idle);
    // Niced work is already inside user (see ProcReader::CpuTicks).
    const quint32 busy = data.user + data.system;
    const quint32 total = busy + data.idle;
    // No tick elapsed: no usage can be known (a NaN without the sign x86's 0/0 gives it).
    data.usage = total != 0 ? double(busy) / double(total) * 100.0 : std::numeric_limits<double>::quiet_NaN();
    _prevCpuLoad = _cpuLoad;
    return data;
}

MemoryUsageData StatCore::memoryUsage() const
{
    MemoryUsageData data;

    quint64 pageSize = 0;
    if (_pageSize <= 0 || _pageSize > INT_MAX)
        qCWarning(lcStats, "#### Getting page size error!!");
    else
        pageSize = quint64(_pageSize);
    data.pageSize = qint32(pageSize);

    const std::optional<ProcReader::MemInfo> info = _reader.memInfo();
    // Page counts are 64-bit here: a machine of more than 16 TiB has more than 2^32.
    quint64 freeCount = 0;
    quint64 activeCount = 0;
    quint64 inactiveCount = 0;
    quint64 wireCount = 0;
    // Wired is what is left of MemTotal: kernel, slab, page tables and the like. A
    // garbled file's counts may add up past 2^64 and wrap below the total.
    quint64 used = 0;
    const bool haveCounts = info && info->memTotal && info->memFree && info->active && info->inactive
        && !__builtin_add_overflow(*info->memFree, *info->active, &used)
        && !__builtin_add_overflow(used, *info->inactive, &used) && used <= *info->memTotal
        && *info->memTotal <= std::numeric_limits<quint64>::max() / 1024;
    if (haveCounts && pageSize > 0) {
        const auto pages = [pageSize](quint64 kiB) { return kiB * 1024 / pageSize; };
        freeCount = pages(*info->memFree);
        activeCount = pages(*info->active);
        inactiveCount = pages(*info->inactive);
        wireCount = pages(*info->memTotal - used);
    } else if (!haveCounts) {
        qCWarning(lcStats, "#### Failed to get VM statistics!!");
    }

    quint64 memory = 0;
    if (info && info->memTotal)
        memory = *info->memTotal * 1024;
    else
        qCWarning(lcStats, "#### Getting physical memory error!!");
    data.physical = memory;
    // User memory is what may page: everything but the wired part. A failed query
    // leaves the physical figure in place.
    if (info && info->memTotal && haveCounts)
        memory = used * 1024;
    else
        qCWarning(lcStats, "#### Getting user memory error!!");
    data.user = memory;

    const quint64 totalPages = freeCount + activeCount + inactiveCount + wireCount;
    data.totalPages = qint32(std::min<quint64>(totalPages, INT_MAX));
    data.wired = pageSize * wireCount;
    data.active = pageSize * activeCount;
    data.inactive = pageSize * inactiveCount;
    data.free = pageSize * freeCount;
    data.total = pageSize * totalPages;
    // No guard: with no pages at all the shares are NaN, as for the CPU.
    data.wiredPercent = double(wireCount) / double(totalPages) * 100.0;
    data.activePercent = double(activeCount) / double(totalPages) * 100.0;
    data.inactivePercent = double(inactiveCount) / double(totalPages) * 100.0;
    data.freePercent = double(freeCount) / double(totalPages) * 100.0;
    return data;
}

DiskUsageData StatCore::diskUsage() const
{
    DiskUsageData data;
    if (_homeDir.isEmpty())
        return data;
    struct statvfs fs;
    if (!_fileSystemQuery || _fileSystemQuery(QFile::encodeName(_homeDir).constData(), &fs) != 0)
        return data;
    // f_bavail: what an ordinary user can still write, as a file manager shows it.
    data.totalSize = double(fs.f_frsize) * double(fs.f_blocks);
    data.freeSize = double(fs.f_frsize) * double(fs.f_bavail);
    return data;
}

std::optional<qint64> StatCore::startSeconds(quint64 startTicks, qint64 bootTime) const
{
    // A garbled boot time or start tick can be anything up to 2^63: past the end of the
    // calendar the process has no start time.
    qint64 seconds = 0;
    if (__builtin_add_overflow(bootTime, qint64(startTicks / quint64(_clockTicks)), &seconds))
        return std::nullopt;
    return seconds;
}

const QString &StatCore::startTimeText(int pid, quint64 startTicks, qint64 bootTime)
{
    StartTimeEntry &entry = _startTimes[pid];
    if (entry.text.isNull() || entry.startTicks != startTicks || entry.bootTime != bootTime) {
        entry.startTicks = startTicks;
        entry.bootTime = bootTime;
        entry.cpuTicks.reset();
        const std::optional<qint64> seconds = startSeconds(startTicks, bootTime);
        entry.text = seconds ? _startTimeFormatter.format(*seconds) : QStringLiteral("");
    }
    entry.seenInScan = _scan;
    return entry.text;
}

std::optional<QList<ProcessRecord>> StatCore::runningProcesses()
{
    const std::optional<QList<ProcReader::ProcStat>> stats = _reader.processStats();
    if (!stats || stats->isEmpty())
        return std::nullopt;
    const ProcReader::ElapsedTicks elapsed = _reader.elapsedTicks().value_or(ProcReader::ElapsedTicks{});
    const std::optional<qint64> boot = elapsed.bootTime;
    const qint64 bootTime = boot.value_or(0);
    // The CPU shares need the machine's ticks over the same interval; a /proc/stat that
    // went back or stood still gives none.
    const quint64 interval = _scanTicks && elapsed.allCpus > *_scanTicks ? elapsed.allCpus - *_scanTicks : 0;
    _scanTicks = elapsed.allCpus > 0 ? std::optional<quint64>(elapsed.allCpus) : std::nullopt;
    const quint64 pageSize = _pageSize > 0 ? quint64(_pageSize) : 0;

    ++_scan;
    QList<ProcessRecord> records;
    records.reserve(stats->size());
    // Oldest first, as the reversed newest-first table of the handheld: the top rows
    // stay put from one tick to the next.
    for (const ProcReader::ProcStat &stat : *stats) {
        ProcessRecord record;
        record.pid = QString::number(stat.pid);
        record.processName = QString::fromUtf8(stat.comm);
        record.priority = QString::number(stat.priority);
        record.startTime = startTimeText(stat.pid, stat.startTicks, bootTime);
        if (boot)
            record.startedAt = startSeconds(stat.startTicks, bootTime);

        ProcessUsage &usage = record.usage;
        usage.state = stat.state;
        usage.parentPid = stat.parentPid;
        usage.threads = stat.threads;
        usage.kernelThread = stat.kernelThread;
        usage.startTicks = stat.startTicks;
        usage.cpuTicks = stat.cpuTicks;
        if (stat.residentPages && pageSize > 0 && *stat.residentPages <= std::numeric_limits<quint64>::max() / pageSize)
            usage.residentBytes = *stat.residentPages * pageSize;
        // A process not in the previous scan (startTimeText() has just dropped the ticks of a
        // pid that now names another) started within the interval: all its ticks are in it.
        StartTimeEntry &entry = _startTimes[stat.pid];
        const quint64 before = entry.cpuTicks.value_or(0);
        if (interval > 0 && stat.cpuTicks >= before) {
            // The two files are read a moment apart: a process on every CPU may read a hair over.
            const double share = std::min(double(stat.cpuTicks - before) / double(interval), 1.0);
            usage.cpuOfMachine = share * 100.0;
            if (elapsed.cpus > 0)
                usage.cpuOfOneCore = share * double(elapsed.cpus) * 100.0;
        }
        entry.cpuTicks = stat.cpuTicks;
        records.append(std::move(record));
    }
    // Forget processes that have gone, so the cache stays as large as the table.
    _startTimes.removeIf([this](const QHash<int, StartTimeEntry>::iterator &it) { return it->seenInScan != _scan; });
    return records;
}

std::optional<qsizetype> StatCore::processCount() const
{
    const std::optional<QList<int>> pids = _reader.pids();
    if (!pids || pids->isEmpty())
        return std::nullopt;
    return pids->size();
}

InfoDictionary StatCore::systemInfo() const
{
    return _systemInfo.systemInfo();
}

QString StatCore::getSysInfoByName(const QString &name) const
{
    return _systemInfo.getSysInfoByName(name);
}

std::uint32_t StatCore::getSysInfo(std::uint32_t selector) const
{
    return _systemInfo.getSysInfo(selector);
}

QString StatCore::platformString() const
{
    return _systemInfo.platformString();
}

QString StatCore::getCPUFrequency() const
{
    return _systemInfo.getCPUFrequency();
}

InfoDictionary StatCore::networkInfo()
{
    return _networkInfo.networkInfo();
}

QString StatCore::macAddress() const
{
    return _networkInfo.macAddress();
}

QString StatCore::hostname() const
{
    return _networkInfo.hostname();
}

QString StatCore::localIPAddress() const
{
    return _networkInfo.localIPAddress();
}

QString StatCore::wifiIPAddress() const
{
    return _networkInfo.wifiIPAddress();
}

QString StatCore::cellularIPAddress() const
{
    return _networkInfo.cellularIPAddress();
}

QString StatCore::externalIPAddress() const
{
    return _networkInfo.externalIPAddress();
}

void StatCore::pingReachabilityInternal()
{
    _networkInfo.pingReachabilityInternal();
}

bool StatCore::networkAvailable()
{
    return _networkInfo.networkAvailable();
}

bool StatCore::activeWWAN()
{
    return _networkInfo.activeWWAN();
}

bool StatCore::activeWLAN() const
{
    return _networkInfo.activeWLAN();
}

std::optional<CarrierInfo> StatCore::carrierInfo() const
{
    return _networkInfo.carrierInfo();
}

QString StatCore::byteToKiloMegaGigaWithByte(double byte, int decmal, bool unitSpace)
{
    return Formatting::byteToKiloMegaGigaWithByte(byte, decmal, unitSpace);
}

QString StatCore::hzToKiloMegaGigaWithHz(double hz, int decmal, bool unitSpace)
{
    return Formatting::hzToKiloMegaGigaWithHz(hz, decmal, unitSpace);
}
