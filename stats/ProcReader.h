#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

// Reads the kernel's text files under a root directory ("/" on a live system, a
// fixture tree in tests). Nothing is ever written. Every reader answers nullopt
// (or leaves a field unset) instead of guessing when a file is missing or garbled.
class ProcReader {
public:
    // Cumulative ticks since boot of /proc/stat's first line, folded into four classes.
    // Nice ticks are part of user; nice itself stays 0.
    struct CpuTicks {
        quint64 user = 0;
        quint64 system = 0;
        quint64 idle = 0;
        quint64 nice = 0;
    };

    // The /proc/meminfo lines that the memory figures need, in kB.
    struct MemInfo {
        std::optional<quint64> memTotal;
        std::optional<quint64> memFree;
        std::optional<quint64> active;
        std::optional<quint64> inactive;
    };

    // The fields of /proc/[pid]/stat that the process table shows, and the ones a
    // process's own figures come from (same read, no other file).
    struct ProcStat {
        int pid = 0;
        QByteArray comm;
        int priority = 0;
        quint64 startTicks = 0; // clock ticks after boot
        char state = 0;         // R, S, D, Z, T, I...
        int parentPid = 0;
        bool kernelThread = false; // PF_KTHREAD in the flags
        quint64 cpuTicks = 0;      // user + system since the process started
        int threads = 0;
        std::optional<quint64> residentPages; // missing on records cut short
    };

    // Every tick of every CPU since boot (guest time is inside user, so it is left out),
    // and how many CPUs the kernel lists: what a process's ticks are a share of.
    struct ElapsedTicks {
        quint64 allCpus = 0;
        int cpus = 0;
        std::optional<qint64> bootTime;
    };

    explicit ProcReader(const QString &rootDir = QStringLiteral("/"));

    QString rootDir() const { return _root; }

    std::optional<CpuTicks> cpuTicks() const;
    std::optional<MemInfo> memInfo() const;
    std::optional<qint64> bootTime() const; // seconds since 1970, "btime" of /proc/stat
    // One read of /proc/stat for the process scan; nullopt when unreadable.
    std::optional<ElapsedTicks> elapsedTicks() const;
    // The stat record of one process; nullopt when it is gone or garbled.
    std::optional<ProcStat> processStat(int pid) const;

    // Every process whose stat file could be read, in ascending pid order.
    // nullopt when the proc directory itself cannot be read.
    std::optional<QList<ProcStat>> processStats() const;

    // The pid directories in ascending order; nullopt when unreadable.
    std::optional<QList<int>> pids() const;
    // Path of the stat file of pid, as the C library wants it.
    QByteArray statPath(int pid) const;

    static std::optional<CpuTicks> parseCpuLine(const char *text, qsizetype length);
    static MemInfo parseMemInfo(const char *text, qsizetype length);
    static std::optional<qint64> parseBootTime(const char *text, qsizetype length);
    static std::optional<ProcStat> parseProcStat(const char *text, qsizetype length);
    static ElapsedTicks parseElapsedTicks(const char *text, qsizetype length);

private:
    QString _root;
    QByteArray _procDir; // encoded ".../proc"
};
