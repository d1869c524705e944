// The System page's sources: /proc/cpuinfo, cpufreq and cache directories,
// device-tree and DMI strings, os-release, machine-info, the host name and machine-id.
#include "FuzzApp.h"
#include "FuzzTree.h"
#include "SystemInfoReader.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static FuzzTree tree({QByteArrayLiteral("proc/cpuinfo"), QByteArrayLiteral("proc/sys/kernel/"),
                          QByteArrayLiteral("sys/"), QByteArrayLiteral("etc/"), QByteArrayLiteral("usr/lib/")});
    if (!tree.load(data, size))
        return 0;
    // The processor itself tells nothing, so every figure comes from the files.
    SystemInfoReader::SystemCalls calls;
    calls.uname = [] { return SystemInfoReader::UnameValues{"Linux", "6.1.0", "aarch64"}; };
    calls.sysconf = [](int) { return 0L; };
    calls.timeBaseFrequency = [] { return std::uint64_t(0); };
    const InfoDictionary info = SystemInfoReader(tree.root(), calls).systemInfo();
    FUZZ_CHECK(info.sectionNames().size() == 3);
    return 0;
}
