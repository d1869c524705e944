#pragma once

#include "CarrierInfo.h"
#include "InfoDictionary.h"
#include "RouteLookup.h"

#include <QList>
#include <QString>

#include <cstdint>
#include <functional>
#include <optional>

// Network state for the Network pages: addresses of the Wi-Fi ("en0") and
// cellular ("pdp_ip0") interfaces, the hardware address, the host name,
// reachability of the link-local network and the cellular carrier.
//
// Interface roles come from /sys/class/net under root. What a fixture tree
// cannot stand in for (the interface address list, the kernel's route
// look-up, the host name and its resolution, the modem) goes through
// replaceable functions.
class NetworkInfoReader {
public:
    // Reachability flag bits, numbered as the handheld platform numbers them.
    enum ReachabilityFlag : std::uint32_t {
        kSCNetworkReachabilityFlagsReachable = 1u << 1,
        kSCNetworkReachabilityFlagsConnectionRequired = 1u << 2,
        kSCNetworkReachabilityFlagsIsWWAN = 1u << 18,
    };

    struct InterfaceAddress {
        QString name;
        int family = 0;     // AF_INET, AF_INET6, AF_PACKET, ...
        unsigned flags = 0; // IFF_*
        QString address;    // dotted text for AF_INET, else ""
    };

    struct Resolution {
        QString address; // first IPv4 address, dotted; null on failure
        QString error;   // resolver's reason when address is null
    };

    struct Seams {
        std::function<std::optional<QList<InterfaceAddress>>()> interfaceAddresses; // nullopt: call failed
        std::function<std::optional<RouteLookup::Route>()> linkLocalRoute;          // nullopt: kernel not asked
        // When set, replaces the flags derived from linkLocalRoute (nullopt: failure).
        std::function<std::optional<std::uint32_t>()> reachabilityFlags;
        std::function<std::optional<QString>()> hostName; // nullopt: call failed
        std::function<Resolution(const QString &)> resolveIPv4;
        std::function<std::optional<CarrierInfo>()> carrier; // nullopt: no carrier
    };
    static Seams hostSeams();

    explicit NetworkInfoReader(QString root = QStringLiteral("/"), Seams seams = hostSeams());

    InfoDictionary networkInfo();

    QString macAddress() const; // null on failure
    QString hostname() const;   // "<name>.local", null on failure
    // "<name>.local" resolved, else the reachability route's source address; null
    // when neither is known.
    QString localIPAddress() const;
    QString wifiIPAddress() const;
    QString cellularIPAddress() const;
    QString externalIPAddress() const; // body, or an error text
    // What the address endpoint's body shows as: the body, or why it is not an address.
    static QString externalAddressFromBody(const QByteArray &body);

    void pingReachabilityInternal();
    bool networkAvailable();
    bool activeWWAN();
    bool activeWLAN() const;
    std::optional<CarrierInfo> carrierInfo() const;

    std::uint32_t reachabilityFlags() const; // the word as last refreshed

    // Which interfaces play the roles of "en0" (a wireless one) and "pdp_ip0" (a wwan
    // one) right now; "" for none.
    QString wifiInterfaceName() const;
    QString cellularInterfaceName() const;

    // External address request: endpoint (empty sends nothing), time-out and size cap.
    void setExternalIPUrl(const QString &url);
    QString externalIPUrl() const;
    void setExternalIPTimeout(int milliseconds);
    void setExternalIPMaximumBytes(qint64 bytes);

private:
    QString ipv4AddressOf(const QString &interfaceName) const;
    QString defaultRouteInterface() const;
    bool interfaceIsUp(const QString &interfaceName) const;
    std::optional<std::uint32_t> flagsFromRoute() const;

    QString _root;
    Seams _seams;
    std::uint32_t _flags = 0;
    QString _externalUrl;
    int _externalTimeout = 10000;
    qint64 _externalMaximumBytes = 1024;
};
