#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>
#include <optional>

// Asks the kernel which route it would use for an address, as `ip route get`
// does, over rtnetlink. Nothing is sent to the network.
class RouteLookup {
public:
    struct Route {
        bool exists = false; // false: the kernel has no route (unreachable)
        int interfaceIndex = 0;
        QString interfaceName;   // "" when the interface vanished meanwhile
        QString preferredSource; // dotted address the kernel would send from ("src"); "" when none
    };

    // addressHostOrder is an IPv4 address in host byte order.
    // nullopt when the kernel could not be asked at all.
    static std::optional<Route> lookupIPv4(std::uint32_t addressHostOrder);

    // One datagram of the kernel's answer to request sequence: the route (its
    // interface not yet named), Route{} when the kernel said there is none, nullopt
    // when the datagram holds no answer to that request. The datagram is read in
    // place, so it must be aligned as a netlink header is (as any allocation is).
    static std::optional<Route> parseAnswer(const void *datagram, std::size_t length, std::uint32_t sequence);
};
