#include "NetworkInfoReader.h"

#include "Formatting.h"
#include "ModemManagerCarrier.h"
#include "SysfsText.h"

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <QUrl>

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

#ifndef KOVAR_EXTERNAL_IP_URL
#define KOVAR_EXTERNAL_IP_URL ""
#endif

// Debug lines (a host name that does not resolve) stay quiet unless asked for.
Q_LOGGING_CATEGORY(lcNetworkInfo, "kovar.stats.network", QtInfoMsg)

namespace {

constexpr std::uint32_t kLinkLocalNetwork = 0xA9FE0000u; // 169.254.0.0

std::optional<QList<NetworkInfoReader::InterfaceAddress>> hostInterfaceAddresses()
{
    ifaddrs *list = nullptr;
    if (::getifaddrs(&list) != 0)
        return std::nullopt;
    QList<NetworkInfoReader::InterfaceAddress> result;
    for (const ifaddrs *entry = list; entry; entry = entry->ifa_next) {
        NetworkInfoReader::InterfaceAddress address;
        address.name = QString::fromUtf8(entry->ifa_name);
        address.flags = entry->ifa_flags;
        address.family = entry->ifa_addr ? entry->ifa_addr->sa_family : AF_UNSPEC;
        if (address.family == AF_INET) {
            char text[INET_ADDRSTRLEN] = {};
            const auto *in = reinterpret_cast<const sockaddr_in *>(entry->ifa_addr);
            if (::inet_ntop(AF_INET, &in->sin_addr, text, sizeof text))
                address.address = QString::fromLatin1(text);
        }
        result.append(address);
    }
    ::freeifaddrs(list);
    return result;
}

std::optional<QString> hostHostName()
{
    char buffer[256] = {};
    if (::gethostname(buffer, 255) != 0)
        return std::nullopt;
    buffer[255] = '\0';
    return QString::fromUtf8(buffer);
}

NetworkInfoReader::Resolution hostResolveIPv4(const QString &host)
{
    addrinfo hints{};
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo *answer = nullptr;
    const int status = ::getaddrinfo(host.toUtf8().constData(), nullptr, &hints, &answer);
    if (status != 0 || !answer)
        return {QString(), QString::fromUtf8(::gai_strerror(status))};
    char text[INET_ADDRSTRLEN] = {};
    const auto *in = reinterpret_cast<const sockaddr_in *>(answer->ai_addr);
    ::inet_ntop(AF_INET, &in->sin_addr, text, sizeof text);
    ::freeaddrinfo(answer);
    return {QString::fromUtf8(text), QString()};
}

QString orEmpty(const QString &value)
{
    return value.isNull() ? QStringLiteral("") : value;
}

QString yesNo(bool value)
{
    return value ? QStringLiteral("YES") : QStringLiteral("NO");
}

} // namespace

NetworkInfoReader::Seams NetworkInfoReader::hostSeams()
{
    Seams seams;
    seams.interfaceAddresses = &hostInterfaceAddresses;
    seams.linkLocalRoute = [] { return RouteLookup::lookupIPv4(kLinkLocalNetwork); };
    seams.hostName = &hostHostName;
    seams.resolveIPv4 = &hostResolveIPv4;
    seams.carrier = &ModemManagerCarrier::fromSystemBus;
    return seams;
}

NetworkInfoReader::NetworkInfoReader(QString root, Seams seams)
    : _root(std::move(root))
    , _seams(std::move(seams))
    , _externalUrl(QStringLiteral(KOVAR_EXTERNAL_IP_URL))
{
}

QString NetworkInfoReader::wifiInterfaceName() const
{
    const QDir net(QDir(_root).filePath(QStringLiteral("sys/class/net")));
    const QStringList names = net.entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::System, QDir::Name);
    for (const QString &name : names) {
        if (QFileInfo::exists(net.filePath(name + QStringLiteral("/wireless")))
            || QFileInfo::exists(net.filePath(name + QStringLiteral("/phy80211")))) {
            return name;
        }
    }
    // No radio, no Wi-Fi: a wired address is never shown as a Wi-Fi one.
    return QStringLiteral("");
}

QString NetworkInfoReader::cellularInterfaceName() const
{
    const QDir net(QDir(_root).filePath(QStringLiteral("sys/class/net")));
    const QStringList names = net.entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::System, QDir::Name);
    for (const QString &name : names) {
        const QByteArray uevent = SysfsText::read(_root,
                                                  QStringLiteral("sys/class/net/") + name + QStringLiteral("/uevent"));
        if (SysfsText::assignment(uevent, QStringLiteral("DEVTYPE")) == u"wwan")
            return name;
    }
    return QStringLiteral("");
}

QString NetworkInfoReader::defaultRouteInterface() const
{
    // /proc/net/route: Iface Destination Gateway Flags ... Mask, addresses in hex.
    const QList<QByteArray> lines = SysfsText::read(_root, QStringLiteral("proc/net/route")).split('\n');
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const QList<QByteArray> fields = lines.at(i).simplified().split(' ');
        if (fields.size() < 8)
            continue;
        bool ok = false;
        const unsigned flags = fields.at(3).toUInt(&ok, 16);
        const bool up = ok && (flags & 0x1) != 0;
        if (up && fields.at(1) == "00000000" && fields.at(7) == "00000000")
            return QString::fromUtf8(fields.at(0));
    }
    return QStringLiteral("");
}

bool NetworkInfoReader::interfaceIsUp(const QString &interfaceName) const
{
    if (interfaceName.isEmpty())
        return false;
    const QString text = SysfsText::firstLine(
        _root, QStringLiteral("sys/class/net/") + interfaceName + QStringLiteral("/flags"));
    bool ok = false;
    const unsigned flags = text.toUInt(&ok, 16);
    return ok && (flags & IFF_UP) != 0;
}

QString NetworkInfoReader::macAddress() const
{
    // Without Wi-Fi, the address of the interface the machine talks through.
    QString name = wifiInterfaceName();
    if (name.isEmpty())
        name = defaultRouteInterface();
    if (name.isEmpty() || !QFileInfo::exists(QDir(_root).filePath(QStringLiteral("sys/class/net/") + name))) {
        qCWarning(lcNetworkInfo).noquote() << "Error: if_nametoindex error";
        return {};
    }
    const QByteArray raw = SysfsText::read(_root, QStringLiteral("sys/class/net/") + name + QStringLiteral("/address"));
    if (raw.isNull()) {
        qCWarning(lcNetworkInfo).noquote() << "Error: sysctl, take 1";
        return {};
    }
    const QList<QByteArray> parts = raw.trimmed().split(':');
    unsigned char bytes[6] = {};
    bool ok = parts.size() == 6;
    for (int i = 0; ok && i < 6; ++i) {
        const unsigned value = parts.at(i).toUInt(&ok, 16);
        ok = ok && parts.at(i).size() <= 2 && value <= 0xFF;
        bytes[i] = static_cast<unsigned char>(value);
    }
    if (!ok) {
        // Not a six-byte link address (a tunnel, an InfiniBand port).
        qCWarning(lcNetworkInfo).noquote() << "Error: sysctl, take 2";
        return {};
    }
    return Formatting::print("%02X:%02X:%02X:%02X:%02X:%02X", bytes[0], bytes[1], bytes[2], bytes[3], bytes[4],
                             bytes[5]);
}

QString NetworkInfoReader::hostname() const
{
    const std::optional<QString> name = _seams.hostName ? _seams.hostName() : std::nullopt;
    if (!name)
        return {};
    return name->left(255) + QStringLiteral(".local");
}

QString NetworkInfoReader::localIPAddress() const
{
    const QString host = hostname();
    const Resolution resolution = (host.isNull() || !_seams.resolveIPv4)
        ? Resolution{QString(), QStringLiteral("Unknown host")}
        : _seams.resolveIPv4(host);
    if (!resolution.address.isNull())
        return resolution.address;
    // Without mDNS (most desktops) "<host>.local" does not resolve; that is no fault.
    // The address the machine talks from is the source of its reachability route.
    qCDebug(lcNetworkInfo).noquote() << QStringLiteral("resolv: ") + resolution.error;
    const std::optional<RouteLookup::Route> route = _seams.linkLocalRoute ? _seams.linkLocalRoute() : std::nullopt;
    if (route && route->exists && !route->preferredSource.isEmpty())
        return route->preferredSource;
    return {};
}

QString NetworkInfoReader::ipv4AddressOf(const QString &interfaceName) const
{
    if (interfaceName.isEmpty() || !_seams.interfaceAddresses)
        return {};
    const std::optional<QList<InterfaceAddress>> addresses = _seams.interfaceAddresses();
    if (!addresses)
        return {};
    for (const InterfaceAddress &entry : *addresses) {
        if (entry.family != AF_INET)
            continue;
        if (entry.flags & IFF_LOOPBACK)
            continue;
        if (entry.name == interfaceName)
            return entry.address;
    }
    return {};
}

QString NetworkInfoReader::wifiIPAddress() const
{
    return ipv4AddressOf(wifiInterfaceName());
}

QString NetworkInfoReader::cellularIPAddress() const
{
    return ipv4AddressOf(cellularInterfaceName());
}

std::optional<std::uint32_t> NetworkInfoReader::flagsFromRoute() const
{
    if (!_seams.linkLocalRoute)
        return std::nullopt;
    const std::optional<RouteLookup::Route> route = _seams.linkLocalRoute();
    if (!route)
        return std::nullopt;
    std::uint32_t flags = 0;
    // A route through an interface that is down (or already gone) reaches nothing.
    if (route->exists && interfaceIsUp(route->interfaceName)) {
        flags |= kSCNetworkReachabilityFlagsReachable;
        const QString cellular = cellularInterfaceName();
        if (!cellular.isEmpty() && route->interfaceName == cellular)
            flags |= kSCNetworkReachabilityFlagsIsWWAN;
    }
    return flags;
}

void NetworkInfoReader::pingReachabilityInternal()
{
    const std::optional<std::uint32_t> flags = _seams.reachabilityFlags ? _seams.reachabilityFlags() : flagsFromRoute();
    if (!flags) {
        qCWarning(lcNetworkInfo).noquote() << "Error. Could not recover network reachability flags";
        return;
    }
    _flags = *flags;
}

std::uint32_t NetworkInfoReader::reachabilityFlags() const
{
    return _flags;
}

bool NetworkInfoReader::networkAvailable()
{
    pingReachabilityInternal();
    return (_flags & kSCNetworkReachabilityFlagsReachable) != 0
        && (_flags & kSCNetworkReachabilityFlagsConnectionRequired) == 0;
}

bool NetworkInfoReader::activeWWAN()
{
    if (!networkAvailable())
        return false;
    return (_flags & kSCNetworkReachabilityFlagsIsWWAN) != 0;
}

bool NetworkInfoReader::activeWLAN() const
{
    return !wifiIPAddress().isNull();
}

std::optional<CarrierInfo> NetworkInfoReader::carrierInfo() const
{
    return _seams.carrier ? _seams.carrier() : std::nullopt;
}

void NetworkInfoReader::setExternalIPUrl(const QString &url)
{
    _externalUrl = url;
}

QString NetworkInfoReader::externalIPUrl() const
{
    return _externalUrl;
}

void NetworkInfoReader::setExternalIPTimeout(int milliseconds)
{
    _externalTimeout = milliseconds;
}

void NetworkInfoReader::setExternalIPMaximumBytes(qint64 bytes)
{
    _externalMaximumBytes = bytes;
}

QString NetworkInfoReader::externalIPAddress() const
{
    if (_externalUrl.isEmpty())
        return QStringLiteral("No external address endpoint is configured");
    const QUrl url(_externalUrl);
    if (!url.isValid() || url.scheme() != u"http" || url.host().isEmpty())
        return QStringLiteral("The external address endpoint is not a plain HTTP address");
    if (!QCoreApplication::instance())
        return QStringLiteral("The external address cannot be fetched without an application object");

    QNetworkAccessManager manager;
    QNetworkRequest request(url);
    request.setTransferTimeout(_externalTimeout);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    QNetworkReply *reply = manager.get(request);

    QByteArray body;
    QString failure;
    QEventLoop loop;
    QTimer deadline;
    deadline.setSingleShot(true);
    QObject::connect(&deadline, &QTimer::timeout, &loop, [&] {
        failure = QStringLiteral("The request timed out.");
        reply->abort();
    });
    QObject::connect(reply, &QNetworkReply::readyRead, &loop, [&] {
        body += reply->read(_externalMaximumBytes + 1 - body.size());
        if (body.size() > _externalMaximumBytes && failure.isEmpty()) {
            failure = QStringLiteral("The response is too large to be an address.");
            reply->abort();
        }
    });
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    // The transfer time-out resets on every byte; this one bounds the whole request.
    deadline.start(_externalTimeout);
    if (!reply->isFinished())
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    deadline.stop();

    if (failure.isEmpty() && reply->error() != QNetworkReply::NoError)
        failure = reply->errorString();
    if (failure.isEmpty()) {
        body += reply->read(_externalMaximumBytes + 1 - body.size());
        if (body.size() > _externalMaximumBytes)
            failure = QStringLiteral("The response is too large to be an address.");
    }
    reply->deleteLater();
    if (!failure.isEmpty())
        return failure;
    return externalAddressFromBody(body);
}

QString NetworkInfoReader::externalAddressFromBody(const QByteArray &body)
{
    for (const char c : body) {
        if (static_cast<unsigned char>(c) > 0x7F || c == '\0')
            return QStringLiteral("The response is not ASCII text.");
    }
    return QString::fromLatin1(body);
}

InfoDictionary NetworkInfoReader::networkInfo()
{
    InfoDictionary info;
    info.addSection(QStringLiteral("CommonInfo"),
                    {{QStringLiteral("Network Available"), yesNo(networkAvailable())},
                     {QStringLiteral("Local IP"), orEmpty(localIPAddress())},
                     // Asked once to test for nil and once more for the text.
                     {QStringLiteral("MAC Address"), macAddress().isNull() ? QStringLiteral("") : macAddress()},
                     {QStringLiteral("Host Name"), hostname().isNull() ? QStringLiteral("") : hostname()}});
    info.addSection(QStringLiteral("WifiInfo"),
                    {{QStringLiteral("Active WLAN"), yesNo(activeWLAN())},
                     {QStringLiteral("Local WiFi IP"), orEmpty(wifiIPAddress())}});

    const bool wwan = activeWWAN();
    const QString cellularIP = orEmpty(cellularIPAddress());
    // One look-up serves all five carrier rows.
    const std::optional<CarrierInfo> carrier = carrierInfo();
    info.addSection(QStringLiteral("CellInfo"),
                    {{QStringLiteral("Active WWAN"), yesNo(wwan)},
                     {QStringLiteral("Local Cellular IP"), cellularIP},
                     {QStringLiteral("Carrier Name"), carrier ? orEmpty(carrier->carrierName) : QStringLiteral("")},
                     {QStringLiteral("MCC"), carrier ? orEmpty(carrier->mobileCountryCode) : QStringLiteral("")},
                     {QStringLiteral("MNC"), carrier ? orEmpty(carrier->mobileNetworkCode) : QStringLiteral("")},
                     {QStringLiteral("Country Code"), carrier ? orEmpty(carrier->isoCountryCode) : QStringLiteral("")},
                     {QStringLiteral("Allows VOIP"), yesNo(carrier && carrier->allowsVOIP)}});
    return info;
}
