// /sys/class/power_supply: type, scope, presence, capacity, charge and energy
// counters and status of each supply.
#include "Device.h"
#include "FuzzApp.h"
#include "FuzzTree.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static FuzzTree tree({QByteArrayLiteral("sys/class/power_supply/")});
    if (!tree.load(data, size))
        return 0;
    Device device(tree.root());
    device.setBatteryMonitoringEnabled(true);
    const float level = device.batteryLevel();
    // A level is a fraction of a full battery, or -1 for "not known".
    FUZZ_CHECK(level == -1.0f || (level >= 0.0f && level <= 1.0f));
    FUZZ_CHECK(device.batteryState() >= Device::BatteryStateUnknown
               && device.batteryState() <= Device::BatteryStateFull);
    return 0;
}
