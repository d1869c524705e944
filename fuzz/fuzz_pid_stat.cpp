// /proc/[pid]/stat, through to the rows of the process table (names, priorities and
// start times from the boot time of /proc/stat).
#include "FuzzApp.h"
#include "FuzzTree.h"
#include "ProcReader.h"
#include "StatCore.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    ProcReader::parseProcStat(reinterpret_cast<const char *>(data), qsizetype(size));

    static FuzzTree tree({QByteArrayLiteral("proc/")});
    if (!tree.load(data, size))
        return 0;
    StatCore core(tree.root(), QString(), 4096);
    const std::optional<QList<ProcessRecord>> first = core.runningProcesses();
    // A second scan of the same tree answers from the start-time cache, and the same.
    FUZZ_CHECK(core.runningProcesses() == first);
    return 0;
}
