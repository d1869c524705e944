#include "RouteLookup.h"

#include <arpa/inet.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>

namespace {

class SocketGuard {
public:
    explicit SocketGuard(int fd)
        : _fd(fd)
    {
    }
    ~SocketGuard()
    {
        if (_fd >= 0)
            ::close(_fd);
    }
    SocketGuard(const SocketGuard &) = delete;
    SocketGuard &operator=(const SocketGuard &) = delete;
    int fd() const { return _fd; }

private:
    int _fd;
};

// NLMSG_OK, without its comparison of a signed length with an unsigned one.
bool messageFits(const nlmsghdr *message, int remaining)
{
    return remaining >= int(sizeof(nlmsghdr)) && message->nlmsg_len >= sizeof(nlmsghdr)
        && message->nlmsg_len <= unsigned(remaining);
}

} // namespace

std::optional<RouteLookup::Route> RouteLookup::lookupIPv4(std::uint32_t addressHostOrder)
{
    SocketGuard socket(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE));
    if (socket.fd() < 0)
        return std::nullopt;

    // The kernel answers at once; the time-out only guards against a wedged socket.
    timeval timeout{1, 0};
    ::setsockopt(socket.fd(), SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);

    struct {
        nlmsghdr header;
        rtmsg route;
        char attributes[RTA_SPACE(sizeof(std::uint32_t))];
    } request;
    std::memset(&request, 0, sizeof request);
    static std::uint32_t sequence = 0;
    request.header.nlmsg_len = NLMSG_LENGTH(sizeof(rtmsg));
    request.header.nlmsg_type = RTM_GETROUTE;
    request.header.nlmsg_flags = NLM_F_REQUEST;
    request.header.nlmsg_seq = ++sequence;
    request.route.rtm_family = AF_INET;
    request.route.rtm_dst_len = 32;

    auto *destination = reinterpret_cast<rtattr *>(reinterpret_cast<char *>(&request)
                                                   + NLMSG_ALIGN(request.header.nlmsg_len));
    destination->rta_type = RTA_DST;
    destination->rta_len = RTA_LENGTH(sizeof(std::uint32_t));
    const std::uint32_t networkOrder = htonl(addressHostOrder);
    std::memcpy(RTA_DATA(destination), &networkOrder, sizeof networkOrder);
    request.header.nlmsg_len = NLMSG_ALIGN(request.header.nlmsg_len) + destination->rta_len;

    sockaddr_nl kernel{};
    kernel.nl_family = AF_NETLINK;
    if (::sendto(socket.fd(), &request, request.header.nlmsg_len, 0, reinterpret_cast<sockaddr *>(&kernel),
                 sizeof kernel)
        < 0) {
        return std::nullopt;
    }

    alignas(nlmsghdr) char buffer[8192];
    for (int attempt = 0; attempt < 8; ++attempt) {
        const ssize_t received = ::recv(socket.fd(), buffer, sizeof buffer, 0);
        if (received < 0) {
            if (errno == EINTR)
                continue;
            return std::nullopt;
        }
        std::optional<Route> route = parseAnswer(buffer, std::size_t(received), request.header.nlmsg_seq);
        if (!route)
            continue;
        char name[IF_NAMESIZE + 1] = {};
        if (route->exists && ::if_indextoname(unsigned(route->interfaceIndex), name))
            route->interfaceName = QString::fromUtf8(name);
        return route;
    }
    return std::nullopt;
}

std::optional<RouteLookup::Route> RouteLookup::parseAnswer(const void *datagram, std::size_t length,
                                                           std::uint32_t sequence)
{
    int remaining = int(std::min<std::size_t>(length, INT_MAX));
    for (auto *message = static_cast<const nlmsghdr *>(datagram); messageFits(message, remaining);
         message = NLMSG_NEXT(message, remaining)) {
        if (message->nlmsg_seq != sequence)
            continue;
        if (message->nlmsg_type == NLMSG_ERROR) {
            if (message->nlmsg_len < NLMSG_LENGTH(sizeof(nlmsgerr)))
                continue;
            const auto *error = static_cast<const nlmsgerr *>(NLMSG_DATA(message));
            if (error->error == 0)
                continue;
            // ENETUNREACH and friends: the kernel was asked and said "no route".
            return Route{};
        }
        // A message too short for what its type promises is not an answer.
        if (message->nlmsg_type != RTM_NEWROUTE || message->nlmsg_len < NLMSG_LENGTH(sizeof(rtmsg)))
            continue;
        const auto *route = static_cast<const rtmsg *>(NLMSG_DATA(message));
        if (route->rtm_type != RTN_UNICAST && route->rtm_type != RTN_LOCAL)
            return Route{};
        Route result;
        int attributesLength = int(RTM_PAYLOAD(message));
        for (auto *attribute = RTM_RTA(route); RTA_OK(attribute, attributesLength);
             attribute = RTA_NEXT(attribute, attributesLength)) {
            if (attribute->rta_type == RTA_OIF && RTA_PAYLOAD(attribute) >= sizeof(int)) {
                std::memcpy(&result.interfaceIndex, RTA_DATA(attribute), sizeof(int));
            } else if (attribute->rta_type == RTA_PREFSRC && RTA_PAYLOAD(attribute) >= sizeof(in_addr)) {
                char text[INET_ADDRSTRLEN] = {};
                if (::inet_ntop(AF_INET, RTA_DATA(attribute), text, sizeof text))
                    result.preferredSource = QString::fromLatin1(text);
            }
        }
        result.exists = result.interfaceIndex > 0;
        return result;
    }
    return std::nullopt;
}
