#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <array>
#include <optional>

// The kernel's own counters as Prometheus users know them from other exporters: CPU
// time per logical CPU in the kernel's modes, available memory and swap, pressure
// stall totals, load, traffic per network device and this process's own figures.
// Reads under a root directory ("/" live, a fixture tree in tests); a missing or
// garbled file leaves its figure out.
class HostCounterReader {
public:
    // /proc/stat's column order: user nice system idle iowait irq softirq steal.
    static constexpr int modeCount = 8;
    static const std::array<const char *, modeCount> modeNames;

    struct CpuModes {
        int cpu = 0;
        std::array<quint64, modeCount> ticks{};
    };

    // Bytes, from /proc/meminfo's kB.
    struct MemoryExtras {
        std::optional<quint64> available;
        std::optional<quint64> swapTotal;
        std::optional<quint64> swapFree;
    };

    struct Load {
        double one = 0.0;
        double five = 0.0;
        double fifteen = 0.0;
    };

    // receive bytes, packets, errs, drop; then the same for transmit.
    struct NetDevice {
        QByteArray name;
        std::array<quint64, 8> counters{};
    };

    struct OwnProcess {
        quint64 cpuTicks = 0; // user + system
        quint64 residentPages = 0;
        quint64 virtualBytes = 0;
        quint64 startTicks = 0; // after boot
        std::optional<qsizetype> openFds;
    };

    explicit HostCounterReader(const QString &rootDir = QStringLiteral("/"));

    // One entry per cpuN line, in the kernel's order; an offline CPU has no line and so
    // no entry. Empty when /proc/stat cannot be read.
    QList<CpuModes> cpuModes() const;
    std::optional<MemoryExtras> memoryExtras() const;
    // The "some" total of /proc/pressure/<resource> in microseconds; nullopt on kernels
    // without pressure stall information.
    std::optional<quint64> pressureSome(const char *resource) const;
    std::optional<Load> load() const;
    QList<NetDevice> netDevices() const;
    std::optional<OwnProcess> ownProcess() const;

    static QList<CpuModes> parseCpuModes(const char *text, qsizetype length);
    static MemoryExtras parseMemoryExtras(const char *text, qsizetype length);
    static std::optional<quint64> parsePressureSome(const char *text, qsizetype length);
    static std::optional<Load> parseLoad(const char *text, qsizetype length);
    static QList<NetDevice> parseNetDevices(const char *text, qsizetype length);
    static std::optional<OwnProcess> parseOwnStat(const char *text, qsizetype length);

private:
    QByteArray _procDir; // encoded ".../proc"
};
