#pragma once

#include "InfoDictionary.h"

#include <QString>

#include <cstdint>
#include <functional>

// Identification of the device, its OS and its processor for the System pages.
// Files are read under root (device tree, DMI, cpufreq, cache directories,
// /proc/cpuinfo); what no file can stand in for (uname, the C library's cache
// figures, the processor's counter register) goes through replaceable functions,
// so tests can describe any machine.
class SystemInfoReader {
public:
    // Hardware selectors, numbered as the handheld kernel numbers them.
    enum Selector : std::uint32_t {
        HW_NCPU = 3,
        HW_CACHELINE = 16,
        HW_L1ICACHESIZE = 17,
        HW_L1DCACHESIZE = 18,
        HW_L2CACHESIZE = 20,
        HW_L3CACHESIZE = 22,
        HW_TB_FREQ = 23,
    };

    struct UnameValues {
        QString sysname;
        QString release;
        QString machine;
    };

    struct SystemCalls {
        std::function<UnameValues()> uname;
        std::function<long(int)> sysconf;                 // _SC_* names; <= 0 means unknown
        std::function<std::uint64_t()> timeBaseFrequency; // Hz from the processor itself, 0 when unknown
    };
    static SystemCalls hostSystemCalls();

    explicit SystemInfoReader(QString root = QStringLiteral("/"), SystemCalls calls = hostSystemCalls());

    InfoDictionary systemInfo() const;

    // "hw.machine", "hw.model", "kern.ostype", "kern.osrelease"; "" for anything else.
    QString getSysInfoByName(const QString &name) const;
    // The HW_* selectors above; 0 for unknown selectors and unknown values.
    std::uint32_t getSysInfo(std::uint32_t selector) const;
    // The handheld tables first; past them, the name a person knows the hardware by.
    QString platformString() const;
    QString getCPUFrequency() const;

private:
    QString hardwareName() const;
    QString hardwareIdentifier() const;
    QString dmiValue(const char *file) const;
    QString deviceTreeString(const char *file) const;
    QString cpuInfoValue(const char *key) const;
    std::uint64_t timeBaseHz() const;
    std::uint32_t processorCount() const;
    std::uint32_t cacheFigure(std::uint32_t selector) const;

    QString _root;
    SystemCalls _calls;
};
