#include "FixtureTree.h"
#include "StatCore.h"
#include "StatSnapshot.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

#include <unistd.h>

namespace {

// A machine described entirely by fakes, so the snapshot does not depend on the host.
SystemInfoReader::SystemCalls fakeSystemCalls()
{
    SystemInfoReader::SystemCalls calls;
    calls.uname = [] {
        return SystemInfoReader::UnameValues{QStringLiteral("Linux"), QStringLiteral("6.1.0-test"),
                                             QStringLiteral("x86_64")};
    };
    calls.sysconf = [](int name) { return name == _SC_NPROCESSORS_CONF ? 4L : 0L; };
    calls.timeBaseFrequency = [] { return std::uint64_t(24000000); };
    return calls;
}

NetworkInfoReader::Seams fakeNetworkSeams(bool reachable, const std::optional<CarrierInfo> &carrier)
{
    NetworkInfoReader::Seams seams;
    using AddressList = QList<NetworkInfoReader::InterfaceAddress>;
    seams.interfaceAddresses = [] { return std::optional<AddressList>(AddressList{}); };
    seams.reachabilityFlags = [reachable] {
        return std::optional<std::uint32_t>(reachable ? NetworkInfoReader::kSCNetworkReachabilityFlagsReachable : 0u);
    };
    seams.hostName = [] { return std::optional<QString>(QStringLiteral("kovar-test")); };
    seams.resolveIPv4 = [](const QString &) {
        return NetworkInfoReader::Resolution{QStringLiteral("10.0.0.7"), QString()};
    };
    seams.carrier = [carrier] { return carrier; };
    return seams;
}

QStringList rowKeys(const QJsonArray &rows)
{
    QStringList keys;
    for (const QJsonValue &row : rows)
        keys.append(row.toObject().value(QStringLiteral("Key")).toString());
    return keys;
}

QString rowValue(const QJsonObject &info, const QString &section, const QString &key)
{
    for (const QJsonValue &row : info.value(section).toArray()) {
        if (row.toObject().value(QStringLiteral("Key")).toString() == key)
            return row.toObject().value(QStringLiteral("Value")).toString();
    }
    return QStringLiteral("<no row>");
}

} // namespace

class TestStatSnapshot : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void capture_data();
    void capture();
    void nanIsWrittenAsNull();
    void bytesBeyond32BitsStayExact();
    void infoDictionaries_data();
    void infoDictionaries();
};

void TestStatSnapshot::capture_data()
{
    QTest::addColumn<QString>("tree");
    QTest::addColumn<int>("processCount"); // -1: the table is nil
    QTest::addColumn<qint64>("physical");
    QTest::addColumn<int>("memoryWarnings");

    QTest::newRow("laptop") << FixtureTree::path("proc-x86-laptop") << 7 << qint64(24683620) * 1024 << 0;
    QTest::newRow("phone") << FixtureTree::path("proc-arm64-phone") << 5 << qint64(3809856) * 1024 << 0;
    QTest::newRow("empty container: null table, zero memory") << FixtureTree::path("proc-container-empty") << -1 << qint64(0) << 3;
}

void TestStatSnapshot::capture()
{
    QFETCH(QString, tree);
    QFETCH(int, processCount);
    QFETCH(qint64, physical);
    QFETCH(int, memoryWarnings);

    StatCore core(tree, tree, 4096, fakeSystemCalls(), fakeNetworkSeams(false, std::nullopt));
    for (int i = 0; i < memoryWarnings; ++i)
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^#### ")));
    const QByteArray json = StatSnapshot::toJson(StatSnapshot::capture(core, std::chrono::milliseconds(0)));
    QJsonParseError error;
    const QJsonObject snapshot = QJsonDocument::fromJson(json, &error).object();
    QCOMPARE(error.error, QJsonParseError::NoError);

    QCOMPARE(snapshot.keys(), (QStringList{"cpuUsage", "diskUsage", "memoryUsage", "networkInfo", "runningProcesses", "systemInfo"}));
    QCOMPARE(snapshot.value("cpuUsage").toObject().keys(), (QStringList{"idle", "system", "usage", "user"}));
    QCOMPARE(snapshot.value("diskUsage").toObject().keys(), (QStringList{"freeSize", "totalSize"}));
    const QJsonObject memory = snapshot.value("memoryUsage").toObject();
    QCOMPARE(memory.keys(),
             (QStringList{"active", "activePercent", "free", "freePercent", "inactive", "inactivePercent", "pageSize",
                          "physical", "total", "totalPages", "user", "wired", "wiredPercent"}));
    QCOMPARE(memory.value("physical").toInteger(), physical);

    const QJsonValue processes = snapshot.value("runningProcesses");
    if (processCount < 0) {
        QVERIFY(processes.isNull());
        return;
    }
    const QJsonArray array = processes.toArray();
    QCOMPARE(array.size(), processCount);
    for (const QJsonValue &process : array) {
        const QJsonObject object = process.toObject();
        QCOMPARE(object.keys(), (QStringList{"PID", "Priority", "ProcessName", "StartTime"}));
        for (const QJsonValue &value : object)
            QVERIFY(value.isString());
    }
}

void TestStatSnapshot::nanIsWrittenAsNull()
{
    CpuUsageData cpu;
    cpu.usage = qQNaN();
    const QJsonObject object = StatSnapshot::cpuUsageJson(cpu);
    QVERIFY(object.value("usage").isNull());
    QVERIFY(StatSnapshot::toJson({{"cpuUsage", object}}).contains("\"usage\": null"));

    MemoryUsageData memory; // no pages at all: every share is 0/0
    memory.freePercent = qQNaN();
    memory.wiredPercent = 12.5;
    const QJsonObject memoryObject = StatSnapshot::memoryUsageJson(memory);
    QVERIFY(memoryObject.value("freePercent").isNull());
    QCOMPARE(memoryObject.value("wiredPercent").toDouble(), 12.5);
}

void TestStatSnapshot::bytesBeyond32BitsStayExact()
{
    MemoryUsageData memory;
    memory.total = 68719476737ULL; // 64 GiB + 1: would wrap in 32 bits, and 1 byte must survive
    DiskUsageData disk;
    disk.totalSize = 270553174016.0;
    const QByteArray json = StatSnapshot::toJson(
        {{"memoryUsage", StatSnapshot::memoryUsageJson(memory)}, {"diskUsage", StatSnapshot::diskUsageJson(disk)}});
    QVERIFY2(json.contains("\"total\": 68719476737"), json.constData());
    QVERIFY2(json.contains("\"totalSize\": 270553174016"), json.constData());
}

void TestStatSnapshot::infoDictionaries_data()
{
    QTest::addColumn<bool>("reachable");
    QTest::addColumn<bool>("withCarrier");
    QTest::addColumn<QString>("available");
    QTest::addColumn<QString>("carrierName");
    QTest::addColumn<QString>("countryCode");

    QTest::newRow("no route, no modem: NO and empty carrier rows, rows still present")
        << false << false << "NO" << "" << "";
    QTest::newRow("reachable with a modem: YES and the carrier's texts") << true << true << "YES" << "Kovar Mobile" << "de";
}

void TestStatSnapshot::infoDictionaries()
{
    QFETCH(bool, reachable);
    QFETCH(bool, withCarrier);
    QFETCH(QString, available);
    QFETCH(QString, carrierName);
    QFETCH(QString, countryCode);

    std::optional<CarrierInfo> carrier;
    if (withCarrier)
        carrier = CarrierInfo{QStringLiteral("Kovar Mobile"), QStringLiteral("262"), QStringLiteral("01"),
                              QStringLiteral("de"), false};
    const QString tree = FixtureTree::path("sys-x86-vm");
    StatCore core(tree, tree, 4096, fakeSystemCalls(), fakeNetworkSeams(reachable, carrier));
    const QByteArray json = StatSnapshot::toJson(StatSnapshot::capture(core, std::chrono::milliseconds(0)));
    const QJsonObject snapshot = QJsonDocument::fromJson(json).object();

    const QJsonObject system = snapshot.value("systemInfo").toObject();
    QCOMPARE(system.keys(), (QStringList{"CPUInfo", "DeviceInfo", "OSInfo"}));
    QCOMPARE(rowKeys(system.value("DeviceInfo").toArray()), (QStringList{"Device", "Model", "Name", "UDID"}));
    QCOMPARE(rowKeys(system.value("CPUInfo").toArray()),
             (QStringList{"Number of Cpus", "CPU Frequency", "TB Frequency", "Cache Line Size", "L1 I Cache Size",
                          "L1 D Cache Size", "L2 Cache Size", "L3 Cache Size"}));
    QCOMPARE(rowValue(system, "CPUInfo", "Number of Cpus"), QStringLiteral("4"));
    QCOMPARE(rowValue(system, "CPUInfo", "TB Frequency"), QStringLiteral("24 MHz"));

    const QJsonObject network = snapshot.value("networkInfo").toObject();
    QCOMPARE(network.keys(), (QStringList{"CellInfo", "CommonInfo", "WifiInfo"}));
    QCOMPARE(rowKeys(network.value("CommonInfo").toArray()),
             (QStringList{"Network Available", "Local IP", "MAC Address", "Host Name"}));
    QCOMPARE(rowKeys(network.value("CellInfo").toArray()),
             (QStringList{"Active WWAN", "Local Cellular IP", "Carrier Name", "MCC", "MNC", "Country Code",
                          "Allows VOIP"}));
    QCOMPARE(rowValue(network, "CommonInfo", "Network Available"), available);
    QCOMPARE(rowValue(network, "CommonInfo", "Local IP"), QStringLiteral("10.0.0.7"));
    QCOMPARE(rowValue(network, "CellInfo", "Carrier Name"), carrierName);
    QCOMPARE(rowValue(network, "CellInfo", "Country Code"), countryCode);

    // Every row of both dictionaries is exactly {"Key", "Value"}, both strings, never null.
    for (const QJsonObject &info : {system, network}) {
        for (const QJsonValue &section : info) {
            for (const QJsonValue &row : section.toArray()) {
                QCOMPARE(row.toObject().keys(), (QStringList{"Key", "Value"}));
                QVERIFY(row.toObject().value("Value").isString());
            }
        }
    }
}

QTEST_APPLESS_MAIN(TestStatSnapshot)
#include "tst_statsnapshot.moc"
