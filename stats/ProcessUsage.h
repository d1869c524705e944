#pragma once

#include <QtGlobal>

#include <optional>

// What one process costs, from the same stat record as its row of the process table.
// The CPU shares are over the interval since the previous scan, in percent: of one CPU
// (as top shows them, up to 100 x CPUs) and of the whole machine; unknown on the first
// scan. A process that started within the interval has all its ticks in it.
struct ProcessUsage {
    char state = 0; // the kernel's letter: R running, S sleeping, D disk wait, Z zombie, T stopped, I idle
    int parentPid = 0;
    int threads = 0;
    bool kernelThread = false;
    quint64 startTicks = 0; // tells a reused pid apart
    quint64 cpuTicks = 0;
    std::optional<quint64> residentBytes;
    std::optional<double> cpuOfOneCore;
    std::optional<double> cpuOfMachine;

    friend bool operator==(const ProcessUsage &, const ProcessUsage &) = default;
};
