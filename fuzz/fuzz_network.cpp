// The Network page's files: /proc/net/route and the interfaces' sysfs attributes
// (wireless markers, uevent, flags, hardware address).
#include "FuzzApp.h"
#include "FuzzTree.h"
#include "NetworkInfoReader.h"

#include <net/if.h>
#include <sys/socket.h>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static FuzzTree tree({QByteArrayLiteral("proc/net/"), QByteArrayLiteral("sys/class/net/")});
    if (!tree.load(data, size))
        return 0;
    // Everything but the files is fixed, and nothing reaches the network.
    NetworkInfoReader::Seams seams;
    seams.interfaceAddresses = [] {
        return std::optional<QList<NetworkInfoReader::InterfaceAddress>>(
            {{"wlp3s0", AF_INET, IFF_UP, "10.0.0.7"}, {"wwan0", AF_INET, IFF_UP, "10.64.0.2"}});
    };
    seams.linkLocalRoute = [] { return std::optional<RouteLookup::Route>({true, 3, "wwan0", {}}); };
    seams.hostName = [] { return std::optional<QString>(QStringLiteral("fuzz")); };
    seams.resolveIPv4 = [](const QString &) {
        return NetworkInfoReader::Resolution{QString(), QStringLiteral("none")};
    };
    NetworkInfoReader reader(tree.root(), seams);
    const InfoDictionary info = reader.networkInfo();
    FUZZ_CHECK(info.sectionNames().size() == 3);
    return 0;
}
