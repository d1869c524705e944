// /proc/meminfo, through to the memory figures the Summary page shows.
#include "FuzzApp.h"
#include "FuzzTree.h"
#include "ProcReader.h"
#include "StatCore.h"

#include <cmath>
#include <cstddef>
#include <cstdint>

namespace {
bool isShare(double percent)
{
    return std::isnan(percent) || (percent >= 0.0 && percent <= 100.0);
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    ProcReader::parseMemInfo(reinterpret_cast<const char *>(data), qsizetype(size));

    static FuzzTree tree({QByteArrayLiteral("proc/")});
    tree.loadOne("proc/meminfo", data, size);
    const StatCore core(tree.root(), QString(), 4096);
    const MemoryUsageData memory = core.memoryUsage();
    // The four parts are shares of one whole, whatever the file says.
    FUZZ_CHECK(isShare(memory.wiredPercent) && isShare(memory.activePercent) && isShare(memory.inactivePercent)
               && isShare(memory.freePercent));
    FUZZ_CHECK(memory.wired + memory.active + memory.inactive + memory.free == memory.total);
    return 0;
}
