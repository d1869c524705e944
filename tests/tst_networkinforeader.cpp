#include "InfoRows.h"
#include "MobileCountryCodes.h"
#include "NetworkInfoReader.h"
#include "RouteLookup.h"

#include <QTest>

#include <net/if.h>
#include <sys/socket.h>

using Address = NetworkInfoReader::InterfaceAddress;
using AddressList = QList<Address>;
using Seams = NetworkInfoReader::Seams;

Q_DECLARE_METATYPE(AddressList)
Q_DECLARE_METATYPE(CarrierInfo)
Q_DECLARE_METATYPE(std::optional<RouteLookup::Route>)

namespace {

constexpr std::uint32_t kReachable = NetworkInfoReader::kSCNetworkReachabilityFlagsReachable;
constexpr std::uint32_t kConnectionRequired = NetworkInfoReader::kSCNetworkReachabilityFlagsConnectionRequired;
constexpr std::uint32_t kIsWWAN = NetworkInfoReader::kSCNetworkReachabilityFlagsIsWWAN;

QString fixture(const QString &name)
{
    return QStringLiteral(KOVAR_FIXTURES "/") + name;
}

Address ipv4(const QString &name, const QString &address, unsigned flags = IFF_UP | IFF_RUNNING)
{
    return {name, AF_INET, flags, address};
}

Address ipv6(const QString &name)
{
    return {name, AF_INET6, IFF_UP | IFF_RUNNING, QString()};
}

// A machine with nothing configured: every seam answers "failed" or "none".
Seams quietSeams()
{
    Seams seams;
    seams.interfaceAddresses = [] { return std::optional<AddressList>(AddressList{}); };
    seams.reachabilityFlags = [] { return std::optional<std::uint32_t>(0); };
    seams.hostName = [] { return std::optional<QString>(QStringLiteral("kovar-test")); };
    seams.resolveIPv4 = [](const QString &) {
        return NetworkInfoReader::Resolution{QString(), QStringLiteral("Unknown host")};
    };
    seams.carrier = [] { return std::optional<CarrierInfo>(); };
    return seams;
}


} // namespace

class TestNetworkInfoReader : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void flagsCombinations_data();
    void flagsCombinations();
    void routeToFlags_data();
    void routeToFlags();
    void failedLookupKeepsFlags();
    void interfaceEntries_data();
    void interfaceEntries();
    void interfaceRoles_data();
    void interfaceRoles();
    void macAddress_data();
    void macAddress();
    void hostNameAndLocalAddress_data();
    void hostNameAndLocalAddress();
    void carrierRows_data();
    void carrierRows();
    void interfacesComeAndGo();
    void sectionsAndRowOrder();
    void countryCodes_data();
    void countryCodes();
    void realRouteLookup();
};

void TestNetworkInfoReader::flagsCombinations_data()
{
    QTest::addColumn<quint32>("flags");
    QTest::addColumn<AddressList>("addresses");
    QTest::addColumn<QString>("available");
    QTest::addColumn<QString>("wwan");
    QTest::addColumn<QString>("wlan");
    QTest::addColumn<QString>("wifiIP");

    const AddressList none;
    const AddressList wifi{ipv4("wlp3s0", "192.168.1.23")};
    QTest::newRow("reachable but no Wi-Fi address") << quint32(kReachable) << none << "YES" << "NO" << "NO" << "";
    QTest::newRow("reachable + connection required") << quint32(kReachable | kConnectionRequired) << wifi << "NO"
                                                     << "NO" << "YES" << "192.168.1.23";
    QTest::newRow("reachable + WWAN") << quint32(kReachable | kIsWWAN) << none << "YES" << "YES" << "NO" << "";
    QTest::newRow("WWAN bit without reachable") << quint32(kIsWWAN) << wifi << "NO" << "NO" << "YES"
                                               << "192.168.1.23";
    QTest::newRow("WWAN + reachable + connection required")
        << quint32(kReachable | kIsWWAN | kConnectionRequired) << none << "NO" << "NO" << "NO" << "";
    QTest::newRow("no flags, Wi-Fi address still counts") << quint32(0) << wifi << "NO" << "NO" << "YES"
                                                          << "192.168.1.23";
}

void TestNetworkInfoReader::flagsCombinations()
{
    QFETCH(quint32, flags);
    QFETCH(AddressList, addresses);
    QFETCH(QString, available);
    QFETCH(QString, wwan);
    QFETCH(QString, wlan);
    QFETCH(QString, wifiIP);

    Seams seams = quietSeams();
    int flagReads = 0;
    seams.reachabilityFlags = [&] {
        ++flagReads;
        return std::optional<std::uint32_t>(flags);
    };
    seams.interfaceAddresses = [addresses] { return std::optional<AddressList>(addresses); };
    NetworkInfoReader reader(fixture(QStringLiteral("net-laptop-wifi-and-wwan")), seams);

    QTest::ignoreMessage(QtWarningMsg, "resolv: Unknown host");
    const InfoDictionary info = reader.networkInfo();
    QCOMPARE(rowValue(info, QStringLiteral("CommonInfo"), QStringLiteral("Network Available")), available);
    QCOMPARE(rowValue(info, QStringLiteral("CellInfo"), QStringLiteral("Active WWAN")), wwan);
    QCOMPARE(rowValue(info, QStringLiteral("WifiInfo"), QStringLiteral("Active WLAN")), wlan);
    QCOMPARE(rowValue(info, QStringLiteral("WifiInfo"), QStringLiteral("Local WiFi IP")), wifiIP);
    // Refreshed for "Network Available" and again inside the WWAN query, never cached.
    QVERIFY(flagReads >= 2);
}

void TestNetworkInfoReader::routeToFlags_data()
{
    QTest::addColumn<std::optional<RouteLookup::Route>>("route");
    QTest::addColumn<quint32>("expected");

    QTest::newRow("route through Wi-Fi, up") << std::optional(RouteLookup::Route{true, 3, "wlp3s0"})
                                             << quint32(kReachable);
    QTest::newRow("route through the wwan device") << std::optional(RouteLookup::Route{true, 5, "wwan0"})
                                                   << quint32(kReachable | kIsWWAN);
    QTest::newRow("route through an interface that is down")
        << std::optional(RouteLookup::Route{true, 2, "enp0s31f6"}) << quint32(0);
    QTest::newRow("interface vanished after the look-up") << std::optional(RouteLookup::Route{true, 9, ""})
                                                          << quint32(0);
    QTest::newRow("interface not in sysfs any more") << std::optional(RouteLookup::Route{true, 9, "usb0"})
                                                     << quint32(0);
    QTest::newRow("kernel says no route") << std::optional(RouteLookup::Route{}) << quint32(0);
}

void TestNetworkInfoReader::routeToFlags()
{
    QFETCH(std::optional<RouteLookup::Route>, route);
    QFETCH(quint32, expected);

    Seams seams = quietSeams();
    seams.reachabilityFlags = nullptr;   // derive the flags from the route, as on a real machine
    seams.linkLocalRoute = [route] { return route; };
    NetworkInfoReader reader(fixture(QStringLiteral("net-laptop-wifi-and-wwan")), seams);
    reader.pingReachabilityInternal();
    QCOMPARE(reader.reachabilityFlags(), expected);
    QCOMPARE(reader.networkAvailable(), (expected & kReachable) != 0);
    QCOMPARE(reader.activeWWAN(), (expected & kIsWWAN) != 0);
    QVERIFY((reader.reachabilityFlags() & kConnectionRequired) == 0);
}

void TestNetworkInfoReader::failedLookupKeepsFlags()
{
    Seams seams = quietSeams();
    seams.reachabilityFlags = nullptr;
    std::optional<RouteLookup::Route> next = RouteLookup::Route{true, 5, "wwan0"};
    seams.linkLocalRoute = [&next] { return next; };
    NetworkInfoReader reader(fixture(QStringLiteral("net-laptop-wifi-and-wwan")), seams);
    QVERIFY(reader.activeWWAN());

    next.reset();
    QTest::ignoreMessage(QtWarningMsg, "Error. Could not recover network reachability flags");
    reader.pingReachabilityInternal();
    QCOMPARE(reader.reachabilityFlags(), quint32(kReachable | kIsWWAN));
}

void TestNetworkInfoReader::interfaceEntries_data()
{
    QTest::addColumn<AddressList>("addresses");
    QTest::addColumn<bool>("listFails");
    QTest::addColumn<QString>("wifiIP");      // null: nil
    QTest::addColumn<QString>("cellularIP");

    QTest::newRow("IPv6 en0 entry skipped for the IPv4 one")
        << AddressList{ipv6("wlp3s0"), ipv4("wlp3s0", "10.1.2.3")} << false << "10.1.2.3" << QString();
    QTest::newRow("loop-back flagged en0 entry skipped")
        << AddressList{ipv4("wlp3s0", "127.0.0.2", IFF_UP | IFF_LOOPBACK), ipv4("wlp3s0", "10.1.2.4")} << false
        << "10.1.2.4" << QString();
    QTest::newRow("only IPv6 and link-layer on en0")
        << AddressList{ipv6("wlp3s0"), {"wlp3s0", AF_PACKET, IFF_UP, QString()}} << false << QString() << QString();
    QTest::newRow("only loop-back en0") << AddressList{ipv4("wlp3s0", "127.0.0.1", IFF_LOOPBACK)} << false
                                        << QString() << QString();
    QTest::newRow("first IPv4 of each role wins")
        << AddressList{ipv4("eth0", "192.0.2.9"), ipv4("wwan0", "100.64.0.7"), ipv4("wlp3s0", "10.0.0.1"),
                       ipv4("wlp3s0", "10.0.0.2"), ipv4("wwan0", "100.64.0.8")}
        << false << "10.0.0.1" << "100.64.0.7";
    QTest::newRow("interface list cannot be read") << AddressList{} << true << QString() << QString();
}

void TestNetworkInfoReader::interfaceEntries()
{
    QFETCH(AddressList, addresses);
    QFETCH(bool, listFails);
    QFETCH(QString, wifiIP);
    QFETCH(QString, cellularIP);

    Seams seams = quietSeams();
    seams.interfaceAddresses = [=]() -> std::optional<AddressList> {
        if (listFails)
            return std::nullopt;
        return addresses;
    };
    NetworkInfoReader reader(fixture(QStringLiteral("net-laptop-wifi-and-wwan")), seams);
    QCOMPARE(reader.wifiIPAddress().isNull(), wifiIP.isNull());
    QCOMPARE(reader.wifiIPAddress(), wifiIP);
    QCOMPARE(reader.cellularIPAddress().isNull(), cellularIP.isNull());
    QCOMPARE(reader.cellularIPAddress(), cellularIP);
    QCOMPARE(reader.activeWLAN(), !wifiIP.isNull());
}

void TestNetworkInfoReader::interfaceRoles_data()
{
    QTest::addColumn<QString>("tree");
    QTest::addColumn<QString>("wifi");
    QTest::addColumn<QString>("cellular");

    QTest::newRow("radio wins over the default route") << "net-laptop-wifi-and-wwan" << "wlp3s0" << "wwan0";
    QTest::newRow("no radio: default-route interface") << "net-wired-vm-no-wifi" << "eth0" << "";
    QTest::newRow("no radio and no default route") << "net-no-default-route" << "" << "";
    QTest::newRow("phy80211 marks a radio too") << "net-wifi-without-address-file" << "wlan0" << "";
    QTest::newRow("no sysfs at all") << "sys-empty-tree" << "" << "";
}

void TestNetworkInfoReader::interfaceRoles()
{
    QFETCH(QString, tree);
    QFETCH(QString, wifi);
    QFETCH(QString, cellular);

    NetworkInfoReader reader(fixture(tree), quietSeams());
    QCOMPARE(reader.wifiInterfaceName(), wifi);
    QCOMPARE(reader.cellularInterfaceName(), cellular);
}

void TestNetworkInfoReader::macAddress_data()
{
    QTest::addColumn<QString>("tree");
    QTest::addColumn<QString>("expected");   // null: nil
    QTest::addColumn<QString>("message");

    QTest::newRow("Wi-Fi address upper-cased") << "net-laptop-wifi-and-wwan" << "A4:C3:F0:85:1D:2E" << "";
    QTest::newRow("wired stand-in") << "net-wired-vm-no-wifi" << "02:FC:00:00:00:01" << "";
    QTest::newRow("no en0 at all") << "net-no-default-route" << QString() << "Error: if_nametoindex error";
    QTest::newRow("address file missing") << "net-wifi-without-address-file" << QString()
                                          << "Error: sysctl, take 1";
    QTest::newRow("20-byte link address") << "net-infiniband-default-route" << QString()
                                          << "Error: sysctl, take 2";
}

void TestNetworkInfoReader::macAddress()
{
    QFETCH(QString, tree);
    QFETCH(QString, expected);
    QFETCH(QString, message);

    NetworkInfoReader reader(fixture(tree), quietSeams());
    if (!message.isEmpty())
        QTest::ignoreMessage(QtWarningMsg, message.toUtf8().constData());
    const QString mac = reader.macAddress();
    QCOMPARE(mac.isNull(), expected.isNull());
    QCOMPARE(mac, expected);

    // Tested once for nil; a nil address is not asked for a second time.
    if (!message.isEmpty())
        QTest::ignoreMessage(QtWarningMsg, message.toUtf8().constData());
    QTest::ignoreMessage(QtWarningMsg, "resolv: Unknown host");
    const InfoDictionary info = reader.networkInfo();
    QCOMPARE(rowValue(info, QStringLiteral("CommonInfo"), QStringLiteral("MAC Address")),
             expected.isNull() ? QStringLiteral("") : expected);
}

void TestNetworkInfoReader::hostNameAndLocalAddress_data()
{
    QTest::addColumn<bool>("hostNameFails");
    QTest::addColumn<QString>("resolvesTo");   // null: does not resolve
    QTest::addColumn<QString>("hostRow");
    QTest::addColumn<QString>("localRow");

    QTest::newRow("resolves") << false << "192.168.1.23" << "kovar-test.local" << "192.168.1.23";
    QTest::newRow("host name does not resolve") << false << QString() << "kovar-test.local" << "";
    QTest::newRow("no host name at all") << true << "10.0.0.1" << "" << "";
}

void TestNetworkInfoReader::hostNameAndLocalAddress()
{
    QFETCH(bool, hostNameFails);
    QFETCH(QString, resolvesTo);
    QFETCH(QString, hostRow);
    QFETCH(QString, localRow);

    Seams seams = quietSeams();
    if (hostNameFails)
        seams.hostName = [] { return std::optional<QString>(); };
    QStringList asked;
    seams.resolveIPv4 = [&asked, resolvesTo](const QString &host) {
        asked.append(host);
        return NetworkInfoReader::Resolution{resolvesTo, resolvesTo.isNull() ? QStringLiteral("Name or service not known")
                                                                              : QString()};
    };
    NetworkInfoReader reader(fixture(QStringLiteral("net-wired-vm-no-wifi")), seams);
    if (resolvesTo.isNull())
        QTest::ignoreMessage(QtWarningMsg, "resolv: Name or service not known");
    else if (hostNameFails)
        QTest::ignoreMessage(QtWarningMsg, "resolv: Unknown host");
    const InfoDictionary info = reader.networkInfo();
    QCOMPARE(rowValue(info, QStringLiteral("CommonInfo"), QStringLiteral("Host Name")), hostRow);
    QCOMPARE(rowValue(info, QStringLiteral("CommonInfo"), QStringLiteral("Local IP")), localRow);
    // The name resolved is the one shown, with ".local".
    QCOMPARE(asked, hostNameFails ? QStringList() : QStringList{hostRow});
}

void TestNetworkInfoReader::carrierRows_data()
{
    QTest::addColumn<bool>("hasCarrier");
    QTest::addColumn<CarrierInfo>("carrier");
    QTest::addColumn<QStringList>("expected");   // name, MCC, MNC, country, VOIP

    QTest::newRow("no modem: empty texts, VOIP NO") << false << CarrierInfo{} << QStringList{"", "", "", "", "NO"};
    QTest::newRow("carrier with codes") << true << CarrierInfo{"T-Mobile", "310", "260", "us", false}
                                        << QStringList{"T-Mobile", "310", "260", "us", "NO"};
    QTest::newRow("carrier allowing VOIP") << true << CarrierInfo{"Orange", "208", "01", "fr", true}
                                           << QStringList{"Orange", "208", "01", "fr", "YES"};
    QTest::newRow("carrier with null texts") << true << CarrierInfo{} << QStringList{"", "", "", "", "NO"};
}

void TestNetworkInfoReader::carrierRows()
{
    QFETCH(bool, hasCarrier);
    QFETCH(CarrierInfo, carrier);
    QFETCH(QStringList, expected);

    Seams seams = quietSeams();
    int lookups = 0;
    seams.carrier = [&]() -> std::optional<CarrierInfo> {
        ++lookups;
        if (!hasCarrier)
            return std::nullopt;
        return carrier;
    };
    NetworkInfoReader reader(fixture(QStringLiteral("net-wired-vm-no-wifi")), seams);
    QTest::ignoreMessage(QtWarningMsg, "resolv: Unknown host");
    const InfoDictionary info = reader.networkInfo();
    const QStringList labels{"Carrier Name", "MCC", "MNC", "Country Code", "Allows VOIP"};
    for (int i = 0; i < labels.size(); ++i)
        QCOMPARE(rowValue(info, QStringLiteral("CellInfo"), labels.at(i)), expected.at(i));
    QCOMPARE(lookups, 1);
}

void TestNetworkInfoReader::interfacesComeAndGo()
{
    // Every call sees a different interface list; each row is still present and
    // each answer reflects the list of its own call.
    Seams seams = quietSeams();
    int call = 0;
    seams.interfaceAddresses = [&call]() -> std::optional<AddressList> {
        switch (call++ % 3) {
        case 0:
            return AddressList{ipv4("wlp3s0", "10.9.8.7"), ipv4("wwan0", "100.64.1.1")};
        case 1:
            return AddressList{};
        default:
            return std::nullopt;
        }
    };
    NetworkInfoReader reader(fixture(QStringLiteral("net-laptop-wifi-and-wwan")), seams);
    QCOMPARE(reader.wifiIPAddress(), QStringLiteral("10.9.8.7"));
    QVERIFY(reader.cellularIPAddress().isNull());
    QVERIFY(!reader.activeWLAN());
    QTest::ignoreMessage(QtWarningMsg, "resolv: Unknown host");
    const InfoDictionary info = reader.networkInfo();
    QCOMPARE(info.section(QStringLiteral("WifiInfo")).size(), 2);
    QCOMPARE(info.section(QStringLiteral("CellInfo")).size(), 7);
    // call 3: activeWLAN sees the full list, then wifiIPAddress an empty one, cellular a failed one.
    QCOMPARE(rowValue(info, QStringLiteral("WifiInfo"), QStringLiteral("Active WLAN")), QStringLiteral("YES"));
    QCOMPARE(rowValue(info, QStringLiteral("WifiInfo"), QStringLiteral("Local WiFi IP")), QStringLiteral(""));
    QCOMPARE(rowValue(info, QStringLiteral("CellInfo"), QStringLiteral("Local Cellular IP")), QStringLiteral(""));
}

void TestNetworkInfoReader::sectionsAndRowOrder()
{
    NetworkInfoReader reader(fixture(QStringLiteral("sys-empty-tree")), quietSeams());
    QTest::ignoreMessage(QtWarningMsg, "Error: if_nametoindex error");
    QTest::ignoreMessage(QtWarningMsg, "resolv: Unknown host");
    const InfoDictionary info = reader.networkInfo();
    QCOMPARE(info.sectionNames(), (QStringList{"CommonInfo", "WifiInfo", "CellInfo"}));
    QCOMPARE(keys(info.section(QStringLiteral("CommonInfo"))),
             (QStringList{"Network Available", "Local IP", "MAC Address", "Host Name"}));
    QCOMPARE(keys(info.section(QStringLiteral("WifiInfo"))), (QStringList{"Active WLAN", "Local WiFi IP"}));
    QCOMPARE(keys(info.section(QStringLiteral("CellInfo"))),
             (QStringList{"Active WWAN", "Local Cellular IP", "Carrier Name", "MCC", "MNC", "Country Code",
                          "Allows VOIP"}));
    for (const QString &name : info.sectionNames()) {
        for (const InfoRow &row : info.section(name))
            QVERIFY2(!row.value.isNull(), qPrintable(row.key));
    }
}

void TestNetworkInfoReader::countryCodes_data()
{
    QTest::addColumn<QString>("mcc");
    QTest::addColumn<QString>("iso");

    QTest::newRow("first of the US range") << "310" << "us";
    QTest::newRow("last of the US range") << "316" << "us";
    QTest::newRow("second UK code") << "235" << "gb";
    QTest::newRow("first entry of the table") << "202" << "gr";
    QTest::newRow("last entry of the table") << "750" << "fk";
    QTest::newRow("gap between codes") << "203" << "";
    QTest::newRow("international, not a country") << "901" << "";
    QTest::newRow("two digits") << "31" << "";
    QTest::newRow("not digits") << "3a0" << "";
    QTest::newRow("empty") << "" << "";
}

void TestNetworkInfoReader::countryCodes()
{
    QFETCH(QString, mcc);
    QFETCH(QString, iso);
    QCOMPARE(MobileCountryCodes::isoCountryCode(mcc), iso);
}

void TestNetworkInfoReader::realRouteLookup()
{
    // The kernel's own answer on this machine: no traffic, and consistent with
    // the interface list whatever the network looks like.
    const std::optional<RouteLookup::Route> route = RouteLookup::lookupIPv4(0xA9FE0000u);
    if (!route)
        QSKIP("rtnetlink is not available here");
    if (!route->exists) {
        QCOMPARE(route->interfaceIndex, 0);
        return;
    }
    QVERIFY(route->interfaceIndex > 0);
    QVERIFY(!route->interfaceName.isEmpty());
    QCOMPARE(int(if_nametoindex(route->interfaceName.toUtf8().constData())), route->interfaceIndex);
    const std::optional<AddressList> addresses = NetworkInfoReader::hostSeams().interfaceAddresses();
    QVERIFY(addresses.has_value());
    bool listed = false;
    for (const Address &entry : *addresses)
        listed = listed || entry.name == route->interfaceName;
    QVERIFY2(listed, qPrintable(route->interfaceName));

    NetworkInfoReader reader;
    reader.pingReachabilityInternal();
    QVERIFY((reader.reachabilityFlags() & kConnectionRequired) == 0);
}

QTEST_GUILESS_MAIN(TestNetworkInfoReader)
#include "tst_networkinforeader.moc"
