#include "FixtureTree.h"
#include "LoopbackHttpServer.h"
#include "MobileCountryCodes.h"
#include "NetworkInfoReader.h"
#include "SysfsText.h"

#include <QRegularExpression>

#include <algorithm>
#include <cstring>
#include <memory>
#include <net/if.h>
#include <sys/socket.h>

using namespace FixtureTree;
using Address = NetworkInfoReader::InterfaceAddress;
using AddressList = QList<Address>;
using Addresses = std::optional<AddressList>;
using Carrier = std::optional<CarrierInfo>;
using Route = std::optional<RouteLookup::Route>;

namespace {

constexpr std::uint32_t kReachable = NetworkInfoReader::kSCNetworkReachabilityFlagsReachable;
constexpr std::uint32_t kConnectionRequired = NetworkInfoReader::kSCNetworkReachabilityFlagsConnectionRequired;
constexpr std::uint32_t kIsWWAN = NetworkInfoReader::kSCNetworkReachabilityFlagsIsWWAN;
const QString laptop = path(QStringLiteral("net-laptop-wifi-and-wwan")); // radio wlp3s0, modem wwan0

Address ipv4(const QString &name, const QString &address, unsigned flags = IFF_UP | IFF_RUNNING)
{
    return {name, AF_INET, flags, address};
}

// A machine with nothing configured: no address, no reachability, no modem; the host name resolves.
NetworkInfoReader::Seams quietSeams()
{
    NetworkInfoReader::Seams seams;
    seams.interfaceAddresses = [] { return Addresses(AddressList{}); };
    seams.reachabilityFlags = [] { return std::optional<std::uint32_t>(0); };
    seams.hostName = [] { return std::optional<QString>(QStringLiteral("kovar-test")); };
    seams.resolveIPv4 = [](const QString &) { return NetworkInfoReader::Resolution{QStringLiteral("10.0.0.7"), {}}; };
    seams.carrier = [] { return Carrier(); };
    return seams;
}

} // namespace

class TestNetworkInfoReader : public QObject {
    Q_OBJECT

    LoopbackHttpServer _server;

private Q_SLOTS:
    void reachability_data()
    {
        QTest::addColumn<qint64>("flags"); // -1: derived from the route to the link-local network
        QTest::addColumn<Route>("route");
        QTest::addColumn<QString>("expected");
        const auto via = [](const char *name) {
            return Route(RouteLookup::Route{true, 3, QString::fromLatin1(name), {}});
        };
        const char *neither = "Network Available=NO|Active WWAN=NO";
        QTest::newRow("reachable") << qint64(kReachable) << Route() << "Network Available=YES|Active WWAN=NO";
        QTest::newRow("reachable + connection required")
            << qint64(kReachable | kConnectionRequired) << Route() << neither;
        QTest::newRow("reachable + WWAN")
            << qint64(kReachable | kIsWWAN) << Route() << "Network Available=YES|Active WWAN=YES";
        QTest::newRow("WWAN bit without reachable") << qint64(kIsWWAN) << Route() << neither;
        QTest::newRow("WWAN + reachable + connection required")
            << qint64(kReachable | kIsWWAN | kConnectionRequired) << Route() << neither;
        QTest::newRow("route through Wi-Fi, up")
            << qint64(-1) << via("wlp3s0") << "Network Available=YES|Active WWAN=NO";
        QTest::newRow("route through the wwan device")
            << qint64(-1) << via("wwan0") << "Network Available=YES|Active WWAN=YES";
        QTest::newRow("route through an interface that is down") << qint64(-1) << via("enp0s31f6") << neither;
        QTest::newRow("interface vanished after the look-up") << qint64(-1) << via("") << neither;
        QTest::newRow("interface not in sysfs any more") << qint64(-1) << via("usb0") << neither;
        QTest::newRow("kernel says no route") << qint64(-1) << Route(RouteLookup::Route{}) << neither;
    }
    void reachability()
    {
        QFETCH(qint64, flags);
        QFETCH(Route, route);
        QFETCH(QString, expected);
        NetworkInfoReader::Seams seams = quietSeams();
        int asked = 0;
        seams.reachabilityFlags = nullptr;
        if (flags >= 0)
            seams.reachabilityFlags = [&] {
                ++asked;
                return std::optional<std::uint32_t>(flags);
            };
        seams.linkLocalRoute = [&] {
            ++asked;
            return route;
        };
        NetworkInfoReader reader(laptop, seams);
        QCOMPARE(rowsLike(reader.networkInfo(), expected), expected);
        // Asked for "Network Available" and again for "Active WWAN", never cached.
        QCOMPARE(asked, 2);
    }

    void failedLookupKeepsFlags()
    {
        NetworkInfoReader::Seams seams = quietSeams();
        seams.reachabilityFlags = nullptr;
        Route next = RouteLookup::Route{true, 5, QStringLiteral("wwan0"), {}};
        seams.linkLocalRoute = [&next] { return next; };
        NetworkInfoReader reader(laptop, seams);
        QVERIFY(reader.activeWWAN());
        next.reset();
        QTest::ignoreMessage(QtWarningMsg, "Error. Could not recover network reachability flags");
        QVERIFY(reader.activeWWAN());
    }

    void addresses_data()
    {
        QTest::addColumn<Addresses>("addresses");
        QTest::addColumn<QString>("expected");
        const Address ipv6{QStringLiteral("wlp3s0"), AF_INET6, IFF_UP, QString()};
        QTest::newRow("IPv6 entry skipped for the IPv4 one")
            << std::optional(AddressList{ipv6, ipv4("wlp3s0", "10.1.2.3")})
            << "Active WLAN=YES|Local WiFi IP=10.1.2.3|Local Cellular IP=";
        QTest::newRow("loop-back flagged entry skipped") << std::optional(
            AddressList{ipv4("wlp3s0", "127.0.0.2", IFF_UP | IFF_LOOPBACK), ipv4("wlp3s0", "10.1.2.4")})
                                                         << "Active WLAN=YES|Local WiFi IP=10.1.2.4";
        QTest::newRow("only IPv6 and link-layer entries")
            << std::optional(AddressList{ipv6, {"wlp3s0", AF_PACKET, IFF_UP, ""}}) << "Active WLAN=NO|Local WiFi IP=";
        QTest::newRow("first IPv4 of each role wins")
            << std::optional(AddressList{ipv4("eth0", "192.0.2.9"), ipv4("wwan0", "100.64.0.7"),
                                         ipv4("wlp3s0", "10.0.0.1"), ipv4("wlp3s0", "10.0.0.2"),
                                         ipv4("wwan0", "100.64.0.8")})
            << "Active WLAN=YES|Local WiFi IP=10.0.0.1|Local Cellular IP=100.64.0.7";
        QTest::newRow("interface list cannot be read") << Addresses() << "Active WLAN=NO|Local WiFi IP=";
    }
    void addresses()
    {
        QFETCH(Addresses, addresses);
        QFETCH(QString, expected);
        NetworkInfoReader::Seams seams = quietSeams();
        seams.interfaceAddresses = [addresses] { return addresses; };
        QCOMPARE(rowsLike(NetworkInfoReader(laptop, seams).networkInfo(), expected), expected);
    }

    void interfaces_data()
    {
        QTest::addColumn<QString>("tree");
        QTest::addColumn<QString>("wifi");
        QTest::addColumn<QString>("cellular");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<QString>("warning");
        QTest::newRow("Wi-Fi, wired and modem: the radio's address, not the wired default route's")
            << "net-laptop-wifi-and-wwan"
            << "wlp3s0"
            << "wwan0"
            << "MAC Address=A4:C3:F0:85:1D:2E|Local WiFi IP=10.0.0.5|Local Cellular IP=100.64.0.9"
            << "";
        QTest::newRow("wired only: no Wi-Fi, the MAC of the default route's interface")
            << "net-wired-vm-no-wifi"
            << ""
            << ""
            << "MAC Address=02:FC:00:00:00:01|Active WLAN=NO|Local WiFi IP="
            << "";
        QTest::newRow("no radio and no default route") << "net-no-default-route"
                                                       << ""
                                                       << ""
                                                       << "MAC Address=|Active WLAN=NO"
                                                       << "Error: if_nametoindex error";
        QTest::newRow("phy80211 marks a radio, address file missing") << "net-wifi-without-address-file"
                                                                      << "wlan0"
                                                                      << ""
                                                                      << "MAC Address=|Local WiFi IP=10.0.0.6"
                                                                      << "Error: sysctl, take 1";
        QTest::newRow("no radio, 20-byte link address on the default route") << "net-infiniband-default-route"
                                                                             << ""
                                                                             << ""
                                                                             << "MAC Address="
                                                                             << "Error: sysctl, take 2";
        QTest::newRow("no sysfs at all") << "sys-empty-tree"
                                         << ""
                                         << ""
                                         << "MAC Address=|Local Cellular IP="
                                         << "Error: if_nametoindex error";
    }
    void interfaces()
    {
        QFETCH(QString, tree);
        QFETCH(QString, expected);
        QFETCH(QString, warning);
        NetworkInfoReader::Seams seams = quietSeams();
        seams.interfaceAddresses = [] {
            return Addresses(AddressList{ipv4("eth0", "192.0.2.10"), ipv4("wlp3s0", "10.0.0.5"),
                                         ipv4("wlan0", "10.0.0.6"), ipv4("wwan0", "100.64.0.9")});
        };
        NetworkInfoReader reader(path(tree), seams);
        QTEST(reader.wifiInterfaceName(), "wifi");
        QTEST(reader.cellularInterfaceName(), "cellular");
        if (!warning.isEmpty()) // asked once: a nil address is not asked for a second time
            QTest::ignoreMessage(QtWarningMsg, qPrintable(warning));
        QCOMPARE(rowsLike(reader.networkInfo(), expected), expected);
    }

    void hostAndCarrier_data()
    {
        QTest::addColumn<QString>("host");     // null: the call fails
        QTest::addColumn<QString>("resolved"); // null: the name does not resolve
        QTest::addColumn<QString>("source");   // the reachability route's source address; null: no route
        QTest::addColumn<Carrier>("carrier");
        QTest::addColumn<QString>("expected");
        QTest::newRow("resolves: the name's address before the route's, no modem: empty carrier texts")
            << "kovar"
            << "192.168.1.23"
            << "192.0.2.15" << Carrier()
            << "Host Name=kovar.local|Local IP=192.168.1.23|Carrier Name=|MCC=|MNC=|Country Code=|Allows VOIP=NO";
        QTest::newRow("host name without mDNS: the route's source address, carrier with codes")
            << "kovar" << QString() << "192.0.2.15" << std::optional(CarrierInfo{"T-Mobile", "310", "260", "us", false})
            << "Host Name=kovar.local|Local IP=192.0.2.15|Carrier Name=T-Mobile|MCC=310|MNC=260|Country Code=us|Allows VOIP=NO";
        QTest::newRow("no host name and no route, carrier allowing VOIP")
            << QString() << "10.0.0.1" << QString() << std::optional(CarrierInfo{"Orange", "208", "01", "fr", true})
            << "Host Name=|Local IP=|Carrier Name=Orange|MCC=208|MNC=01|Country Code=fr|Allows VOIP=YES";
        QTest::newRow("carrier with null texts") << "kovar"
                                                 << "10.0.0.1" << QString() << std::optional(CarrierInfo{})
                                                 << "Carrier Name=|MCC=|MNC=|Country Code=|Allows VOIP=NO";
    }
    void hostAndCarrier()
    {
        QFETCH(QString, host);
        QFETCH(QString, resolved);
        QFETCH(QString, source);
        QFETCH(Carrier, carrier);
        QFETCH(QString, expected);
        NetworkInfoReader::Seams seams = quietSeams();
        QStringList asked;
        int lookups = 0;
        seams.linkLocalRoute = [&] {
            return source.isNull() ? Route() : Route(RouteLookup::Route{true, 2, QStringLiteral("eth0"), source});
        };
        seams.hostName = [&]() -> std::optional<QString> { return host.isNull() ? std::nullopt : std::optional(host); };
        seams.resolveIPv4 = [&](const QString &name) {
            asked.append(name);
            return NetworkInfoReader::Resolution{resolved, QStringLiteral("not known")};
        };
        seams.carrier = [&] {
            ++lookups;
            return carrier;
        };
        QTest::failOnWarning(QRegularExpression(QStringLiteral("^resolv"))); // an ordinary case, not an error
        const InfoDictionary info =
            NetworkInfoReader(path(QStringLiteral("net-wired-vm-no-wifi")), seams).networkInfo();
        QCOMPARE(rowsLike(info, expected), expected);
        QCOMPARE(asked, host.isNull() ? QStringList() : QStringList{host + QStringLiteral(".local")}); // the name shown
        QCOMPARE(lookups, 1); // one look-up serves all five carrier rows
    }

    void sectionsAndRowOrder()
    {
        QTest::ignoreMessage(QtWarningMsg, "Error: if_nametoindex error");
        const InfoDictionary info =
            NetworkInfoReader(path(QStringLiteral("sys-empty-tree")), quietSeams()).networkInfo();
        QCOMPARE(tableLines(info), tableLines("network-info.tsv", QStringLiteral("nothing configured")));
    }

    void countryCodes_data() { addRows("country-codes.tsv", {"mcc", "iso"}); }
    void countryCodes()
    {
        QFETCH(QString, mcc);
        QTEST(MobileCountryCodes::isoCountryCode(mcc), "iso");
    }

    void routeAnswer_data() { addRows("route-answers.tsv", {"datagram", "sequence", "answer"}); }
    void routeAnswer()
    {
        QFETCH(QString, datagram);
        QFETCH(QString, sequence);
        QFile file(path(QStringLiteral("route-answers/") + datagram));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        // Exactly as long as the datagram, so that the sanitizers catch a read past its end.
        const auto exact = std::make_unique<char[]>(std::size_t(bytes.size()));
        std::memcpy(exact.get(), bytes.constData(), std::size_t(bytes.size()));
        const Route route = RouteLookup::parseAnswer(exact.get(), std::size_t(bytes.size()), sequence.toUInt());
        QTEST(!route              ? QStringLiteral("-")
                  : route->exists ? QString::number(route->interfaceIndex) + u' ' + route->preferredSource
                                  : QStringLiteral("no route"),
              "answer");
    }

    void thisMachine()
    {
        // The kernel's own answers, the same on every machine and without any traffic.
        if ((SysfsText::firstLine(QStringLiteral("/"), QStringLiteral("sys/class/net/lo/flags")).toUInt(nullptr, 16)
             & IFF_UP)
            == 0)
            QSKIP("the loop-back interface is down in this network namespace");
        const Route route = RouteLookup::lookupIPv4(0x7F000001u);
        if (!route)
            QSKIP("rtnetlink is not available here");
        QCOMPARE(route->interfaceName, QStringLiteral("lo"));
        QCOMPARE(route->interfaceIndex, int(::if_nametoindex("lo")));
        const Addresses addresses = NetworkInfoReader::hostSeams().interfaceAddresses();
        QVERIFY(addresses && std::any_of(addresses->begin(), addresses->end(), [](const Address &entry) {
                    return entry.name == u"lo" && entry.family == AF_INET && entry.address == u"127.0.0.1"
                        && (entry.flags & IFF_LOOPBACK);
                }));
    }

    // The external address query against servers that answer well, badly or not at all.
    void externalAddress_data()
    {
        QVERIFY(_server.isListening() || _server.listen(QHostAddress::LocalHost));
        QTest::addColumn<QString>("url");
        QTest::addColumn<int>("timeoutMs");
        QTest::addColumn<QString>("expected"); // empty: an error text, not the address
        const QByteArray address = "203.0.113.7\n" + QByteArray(1024 - 12, ' '); // exactly the default 1 KiB cap
        _server.routeReply("/address", address);
        _server.routeReply("/non-ascii", "203.0.113.7 \xC3\xA9t\xC3\xA9");
        QTest::newRow("body of exactly 1 KiB")
            << _server.url("/address").toString() << 3000 << QString::fromLatin1(address);
        QTest::newRow("non-ASCII body") << _server.url("/non-ascii").toString() << 3000
                                        << "The response is not ASCII text.";
        QTest::newRow("no endpoint configured") << "" << 3000 << "No external address endpoint is configured";
        QTest::newRow("https, not plain HTTP")
            << "https://127.0.0.1:1/" << 3000 << "The external address endpoint is not a plain HTTP address";
        QTest::newRow("no host") << "http:///path" << 3000
                                 << "The external address endpoint is not a plain HTTP address";
        // The announced length alone ends nothing here: the body is read, up to the cap, until the deadline.
        const QString timedOut = QStringLiteral("The request timed out.");
        const QString expected[] = {
            timedOut, QStringLiteral("The response is too large to be an address."), timedOut, {}, {}};
        for (const HostileServer &hostile : HostileServer::all()) {
            const QByteArray path = "/address/" + QByteArray(hostile.name).replace(' ', '-');
            _server.route(path, hostile.serving(address));
            QTest::newRow(qPrintable(QStringLiteral("server %1").arg(hostile.name)))
                << _server.url(path).toString() << (expected[hostile.refusal] == timedOut ? 80 : 3000)
                << expected[hostile.refusal];
        }
    }
    void externalAddress()
    {
        QFETCH(QString, url);
        QFETCH(int, timeoutMs);
        QFETCH(QString, expected);
        NetworkInfoReader reader(QStringLiteral("/"), NetworkInfoReader::Seams{});
        reader.setExternalIPUrl(url);
        reader.setExternalIPTimeout(timeoutMs);
        const QString result = reader.externalIPAddress();
        if (expected.isEmpty())
            QVERIFY2(!result.isEmpty() && !result.contains(u"203.0"), qPrintable(result));
        else
            QCOMPARE(result, expected);
    }
};

QTEST_GUILESS_MAIN(TestNetworkInfoReader)
#include "tst_networkinforeader.moc"
