// The exposition's kernel files: /proc/stat's per-CPU lines, meminfo, pressure, loadavg,
// net/dev, the process's own stat, mountinfo and the wireless statistics.
#include "FileSystemReader.h"
#include "FuzzApp.h"
#include "HostCounterReader.h"
#include "SensorReader.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto *text = reinterpret_cast<const char *>(data);
    const auto length = qsizetype(size);
    HostCounterReader::parseCpuModes(text, length);
    HostCounterReader::parseMemoryExtras(text, length);
    HostCounterReader::parsePressureSome(text, length);
    HostCounterReader::parseLoad(text, length);
    HostCounterReader::parseNetDevices(text, length);
    HostCounterReader::parseOwnStat(text, length);
    FileSystemReader::parseMountInfo(text, length);
    SensorReader::parseWireless(text, length);
    SensorReader::parseMilli(QByteArrayView(text, length));
    return 0;
}
