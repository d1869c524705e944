// The exposition's kernel files: /proc/stat's per-CPU lines, meminfo, pressure, loadavg,
// net/dev, the process's own stat, mountinfo and the wireless statistics.
#include "FileSystemReader.h"
#include "FuzzApp.h"
#include "HostCounterReader.h"
#include "SensorReader.h"

#include <cmath>
#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto *text = reinterpret_cast<const char *>(data);
    const auto length = qsizetype(size);
    for (const HostCounterReader::CpuModes &cpu : HostCounterReader::parseCpuModes(text, length))
        FUZZ_CHECK(cpu.cpu >= 0);
    HostCounterReader::parseMemoryExtras(text, length);
    HostCounterReader::parsePressureSome(text, length);
    if (const auto load = HostCounterReader::parseLoad(text, length))
        FUZZ_CHECK(std::isfinite(load->one) && std::isfinite(load->five) && std::isfinite(load->fifteen)
                   && load->one >= 0.0 && load->five >= 0.0 && load->fifteen >= 0.0);
    // A device name becomes a label value: never empty, never with the line break that would end the sample.
    for (const HostCounterReader::NetDevice &device : HostCounterReader::parseNetDevices(text, length))
        FUZZ_CHECK(!device.name.isEmpty() && !device.name.contains('\n'));
    HostCounterReader::parseOwnStat(text, length);
    for (const FileSystemReader::Mount &mount : FileSystemReader::parseMountInfo(text, length))
        FUZZ_CHECK(mount.mountPoint.startsWith('/') && !mount.fsType.isEmpty());
    for (const SensorReader::Wireless &link : SensorReader::parseWireless(text, length))
        FUZZ_CHECK(std::isfinite(link.signalDbm) && std::isfinite(link.linkQuality) && !link.device.isEmpty());
    if (const auto value = SensorReader::parseMilli(QByteArrayView(text, length)))
        FUZZ_CHECK(std::isfinite(*value));
    return 0;
}
