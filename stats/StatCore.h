#pragma once

#include "CpuUsageData.h"
#include "DiskUsageData.h"
#include "MemoryUsageData.h"
#include "ProcReader.h"
#include "ProcessRecord.h"
#include "StartTimeFormatter.h"

#include <QHash>
#include <QList>
#include <QString>

#include <optional>

// The one statistics object of the application: samples CPU, memory, disk and the
// process table, and formats sizes and frequencies. Not thread-safe apart from
// shared(): every caller runs on the main thread.
class StatCore {
public:
    // Reads rootDir's proc tree and the file system of homeDir. pageSize <= 0 stands
    // for a failed page-size query.
    StatCore(const QString &rootDir, const QString &homeDir, long pageSize = systemPageSize());
    ~StatCore();
    StatCore(const StatCore &) = delete;
    StatCore &operator=(const StatCore &) = delete;

    // The process-wide instance on "/" and $HOME, created on first use; safe to call
    // first from several threads at once.
    static StatCore *shared();
    // Destroys the shared instance. Only for the very end of a process (or a test):
    // any pointer obtained from shared() dangles afterwards, and the next shared()
    // starts over with a fresh instance.
    static void terminate();

    static long systemPageSize();

    // Ticks since the previous call (or since construction); replaces the stored sample.
    CpuUsageData cpuUsage();
    MemoryUsageData memoryUsage() const;
    DiskUsageData diskUsage() const;
    // Every process, the reverse of the proc directory's order; nullopt when the
    // process table cannot be read or holds no process.
    std::optional<QList<ProcessRecord>> runningProcesses();

    static QString byteToKiloMegaGigaWithByte(double byte, int decmal, bool unitSpace);
    static QString hzToKiloMegaGigaWithHz(double hz, int decmal, bool unitSpace);

private:
    struct StartTimeEntry {
        quint64 startTicks = 0;
        qint64 bootTime = 0;
        QString text;
        quint32 seenInScan = 0;
    };
    const QString &startTimeText(int pid, quint64 startTicks, qint64 bootTime);

    ProcReader m_reader;
    QString m_homeDir;
    long m_pageSize;
    long m_clockTicks;
    ProcReader::CpuTicks m_prevCpuLoad;
    ProcReader::CpuTicks m_cpuLoad;
    StartTimeFormatter m_startTimeFormatter;
    // A process's start-time text never changes: format it once and keep it while the
    // process lives. Keyed by pid; the start ticks tell a reused pid apart.
    QHash<int, StartTimeEntry> m_startTimes;
    quint32 m_scan = 0;
};
