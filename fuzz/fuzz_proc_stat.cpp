// /proc/stat: the total CPU line and the boot time.
#include "FuzzApp.h"
#include "ProcReader.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto *text = reinterpret_cast<const char *>(data);
    ProcReader::parseCpuLine(text, qsizetype(size));
    ProcReader::parseBootTime(text, qsizetype(size));
    return 0;
}
