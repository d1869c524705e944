// The kernel's rtnetlink answer to a route look-up.
#include "FuzzApp.h"
#include "RouteLookup.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (const std::optional<RouteLookup::Route> route = RouteLookup::parseAnswer(data, size, 1))
        FUZZ_CHECK(route->exists == (route->interfaceIndex > 0));
    return 0;
}
