#include "InfoRows.h"
#include "DeviceIdentity.h"
#include "SystemInfoReader.h"

#include <QJsonArray>
#include <QTest>

#include <map>
#include <unistd.h>

namespace {

QString fixture(const QString &name)
{
    return QStringLiteral(KOVAR_FIXTURES "/") + name;
}

// A machine described entirely by the test: uname, the C library's cache
// figures and the counter frequency.
SystemInfoReader::SystemCalls fakeCalls(const QString &machine, std::map<int, long> sysconfValues = {},
                                        std::uint64_t timeBase = 0)
{
    SystemInfoReader::SystemCalls calls;
    calls.uname = [machine] {
        return SystemInfoReader::UnameValues{QStringLiteral("Linux"), QStringLiteral("6.1.0-13-amd64"), machine};
    };
    calls.sysconf = [sysconfValues](int name) {
        const auto it = sysconfValues.find(name);
        return it == sysconfValues.end() ? -1L : it->second;
    };
    calls.timeBaseFrequency = [timeBase] { return timeBase; };
    return calls;
}


} // namespace

class TestSystemInfoReader : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void deviceTables_data();
    void deviceTables();
    void cpuRows_data();
    void cpuRows();
    void identity_data();
    void identity();
    void sectionsAndRowOrder();
    void unknownSelectorAndName();
    void thisMachine();
};

void TestSystemInfoReader::deviceTables_data()
{
    QTest::addColumn<QString>("machine");
    QTest::addColumn<double>("screenWidth");
    QTest::addColumn<QString>("device");
    QTest::addColumn<QString>("frequency");

    QTest::newRow("iPhone1,1 exact rule") << "iPhone1,1" << 320.0 << "iPhone 1G" << "412 MHz";
    QTest::newRow("iPhone1,2 exact rule") << "iPhone1,2" << 320.0 << "iPhone 3G" << "412 MHz";
    QTest::newRow("iPhone1,3 matches no exact rule") << "iPhone1,3" << 320.0 << "Unknown iPhone" << "";
    QTest::newRow("iPhone2 prefix") << "iPhone2,1" << 320.0 << "iPhone 3GS" << "600 MHz";
    QTest::newRow("iPhone3,1") << "iPhone3,1" << 320.0 << "iPhone 4" << "800 MHz";
    QTest::newRow("iPhone4 prefix") << "iPhone4,1" << 320.0 << "iPhone 4S" << "800 MHz";
    QTest::newRow("iPhone5 prefix") << "iPhone5,2" << 320.0 << "iPhone 5" << "1 GHz";
    QTest::newRow("iPhone6 falls to unknown") << "iPhone6,1" << 320.0 << "Unknown iPhone" << "";
    QTest::newRow("iPod1") << "iPod1,1" << 320.0 << "iPod touch 1G" << "412 MHz";
    QTest::newRow("iPod2") << "iPod2,1" << 320.0 << "iPod touch 2G" << "533 MHz";
    QTest::newRow("iPod3") << "iPod3,1" << 320.0 << "iPod touch 3G" << "600 MHz";
    QTest::newRow("iPod4,1 keeps lower-case h") << "iPod4,1" << 320.0 << "iPod touch 4G" << "800 Mhz";
    QTest::newRow("iPod5") << "iPod5,1" << 320.0 << "iPod touch 5G" << "1 GHz";
    QTest::newRow("iPod7 unknown") << "iPod7,1" << 320.0 << "Unknown iPod" << "";
    QTest::newRow("iPad1") << "iPad1,1" << 768.0 << "iPad 1" << "1 GHz";
    QTest::newRow("iPad2") << "iPad2,5" << 768.0 << "iPad 2" << "1 GHz";
    QTest::newRow("iPad3,4 is the new iPad") << "iPad3,4" << 768.0 << "The new iPad" << "1 GHz";
    QTest::newRow("iPad4,1 unknown, no frequency") << "iPad4,1" << 768.0 << "Unknown iPad" << "";
    QTest::newRow("AppleTV2,1 has no frequency") << "AppleTV2,1" << 320.0 << "Apple TV 2G" << "";
    QTest::newRow("AppleTV3 unknown device") << "AppleTV3,1" << 320.0 << "Unknown iOS device" << "";
    QTest::newRow("iFPGA") << "iFPGA" << 320.0 << "iFPGA" << "";
    QTest::newRow("iFPGA needs exact match") << "iFPGA2" << 320.0 << "Unknown iOS device" << "";
    QTest::newRow("i386 phone width") << "i386" << 320.0 << "iPhone Simulator" << "";
    QTest::newRow("i386 tablet width") << "i386" << 768.0 << "iPad Simulator" << "";
    QTest::newRow("x86_64 phone width") << "x86_64" << 320.0 << "iPhone Simulator" << "";
    QTest::newRow("x86_64 tablet width") << "x86_64" << 768.0 << "iPad Simulator" << "";
    QTest::newRow("width just under 768") << "x86_64" << 767.9 << "iPhone Simulator" << "";
    QTest::newRow("no screen is the phone simulator") << "i686" << 0.0 << "iPhone Simulator" << "";
    QTest::newRow("aarch64 is no simulator") << "aarch64" << 768.0 << "Unknown iOS device" << "";
    QTest::newRow("empty machine") << "" << 320.0 << "Unknown iOS device" << "";
}

void TestSystemInfoReader::deviceTables()
{
    QFETCH(QString, machine);
    QFETCH(double, screenWidth);
    QFETCH(QString, device);
    QFETCH(QString, frequency);

    SystemInfoReader reader(fixture(QStringLiteral("sys-empty-tree")), fakeCalls(machine));
    reader.setScreenWidth(screenWidth);
    QCOMPARE(reader.getSysInfoByName(QStringLiteral("hw.machine")), machine);
    QCOMPARE(reader.platformString(), device);
    QCOMPARE(reader.getCPUFrequency(), frequency);

    const InfoDictionary info = reader.systemInfo();
    QCOMPARE(rowValue(info.section(QStringLiteral("DeviceInfo")), QStringLiteral("Device")), device);
    QCOMPARE(rowValue(info.section(QStringLiteral("CPUInfo")), QStringLiteral("CPU Frequency")), frequency);
}

void TestSystemInfoReader::cpuRows_data()
{
    QTest::addColumn<QString>("tree");
    QTest::addColumn<qint64>("timeBase");
    QTest::addColumn<QStringList>("expected"); // cpus, TB, line, L1I, L1D, L2, L3

    const std::map<int, long> none;
    QTest::newRow("arm64 cache dirs, 24 MHz counter")
        << "sys-arm64-phone-dt" << qint64(24000000)
        << QStringList{"6", "24 MHz", "64 Byte", "48 KB", "32 KB", "512 KB", "4 MB"};
    QTest::newRow("VM without cache dirs and no libc figures")
        << "sys-no-cache-dirs" << qint64(0)
        << QStringList{"1", "0 Hz", "0 Byte", "0 Byte", "0 Byte", "0 Byte", "0 Byte"};
    QTest::newRow("counter above 4 GHz saturates at 32 bits")
        << "sys-x86-vm" << qint64(5000000000)
        << QStringList{"4", "4 GHz", "0 Byte", "0 Byte", "0 Byte", "0 Byte", "0 Byte"};
}

void TestSystemInfoReader::cpuRows()
{
    QFETCH(QString, tree);
    QFETCH(qint64, timeBase);
    QFETCH(QStringList, expected);

    SystemInfoReader reader(fixture(tree), fakeCalls(QStringLiteral("aarch64"), {}, std::uint64_t(timeBase)));
    const InfoSection cpu = reader.systemInfo().section(QStringLiteral("CPUInfo"));
    const QStringList labels{"Number of Cpus", "TB Frequency", "Cache Line Size", "L1 I Cache Size",
                             "L1 D Cache Size", "L2 Cache Size", "L3 Cache Size"};
    for (int i = 0; i < labels.size(); ++i)
        QCOMPARE(rowValue(cpu, labels.at(i)), expected.at(i));
}

void TestSystemInfoReader::identity_data()
{
    QTest::addColumn<QString>("tree");
    QTest::addColumn<QStringList>("expected"); // Model, Name, UDID, OS, OS Version

    QTest::newRow("x86 VM: DMI model, pretty name with quotes")
        << "sys-x86-vm"
        << QStringList{"Standard PC (Q35 + ICH9, 2009)", "Lab VM \"7\"", "4c4c4544004b3510804cb4c04f383232",
                       "Debian GNU/Linux", "12"};
    QTest::newRow("device tree wins over DMI, NUL stripped, blank machine-info, vendor os-release")
        << "sys-arm64-phone-dt"
        << QStringList{"Pine64 PinePhone Pro", "pinephone", "b08dfa6083e7567a1921a715000001fb", "postmarketOS",
                       "v23.06"};
    QTest::newRow("no DMI, no os-release, no machine-id")
        << "sys-no-cache-dirs" << QStringList{"", "bare", "", "", ""};
    QTest::newRow("nothing at all") << "sys-empty-tree" << QStringList{"", "", "", "", ""};
}

void TestSystemInfoReader::identity()
{
    QFETCH(QString, tree);
    QFETCH(QStringList, expected);

    SystemInfoReader reader(fixture(tree), fakeCalls(QStringLiteral("x86_64")));
    const InfoDictionary info = reader.systemInfo();
    const InfoSection device = info.section(QStringLiteral("DeviceInfo"));
    const InfoSection os = info.section(QStringLiteral("OSInfo"));
    QCOMPARE(rowValue(device, QStringLiteral("Model")), expected.at(0));
    QCOMPARE(rowValue(device, QStringLiteral("Name")), expected.at(1));
    QCOMPARE(rowValue(device, QStringLiteral("UDID")), expected.at(2));
    QCOMPARE(rowValue(os, QStringLiteral("OS")), expected.at(3));
    QCOMPARE(rowValue(os, QStringLiteral("OS Version")), expected.at(4));
    QCOMPARE(rowValue(os, QStringLiteral("Kernel")), QStringLiteral("Linux, 6.1.0-13-amd64"));

    const DeviceIdentity identity(fixture(tree));
    QCOMPARE(identity.name(), expected.at(1));
    QCOMPARE(identity.systemVersion(), expected.at(4));
}

void TestSystemInfoReader::sectionsAndRowOrder()
{
    SystemInfoReader reader(fixture(QStringLiteral("sys-empty-tree")), fakeCalls(QStringLiteral("x86_64")));
    const InfoDictionary info = reader.systemInfo();
    QCOMPARE(info.sectionNames(), (QStringList{"DeviceInfo", "OSInfo", "CPUInfo"}));
    QCOMPARE(keys(info.section(QStringLiteral("DeviceInfo"))), (QStringList{"Device", "Model", "Name", "UDID"}));
    QCOMPARE(keys(info.section(QStringLiteral("OSInfo"))), (QStringList{"OS", "OS Version", "Kernel"}));
    QCOMPARE(keys(info.section(QStringLiteral("CPUInfo"))),
             (QStringList{"Number of Cpus", "CPU Frequency", "TB Frequency", "Cache Line Size", "L1 I Cache Size",
                          "L1 D Cache Size", "L2 Cache Size", "L3 Cache Size"}));
    // Every value is a string, never null, even on a tree with nothing in it.
    for (const QString &name : info.sectionNames()) {
        for (const InfoRow &row : info.section(name))
            QVERIFY2(!row.value.isNull(), qPrintable(row.key));
    }
    const QJsonObject json = info.toJson();
    QCOMPARE(json.value(QStringLiteral("CPUInfo")).toArray().size(), 8);
    QCOMPARE(json.value(QStringLiteral("OSInfo")).toArray().at(2).toObject().value(QStringLiteral("Key")).toString(),
             QStringLiteral("Kernel"));
}

void TestSystemInfoReader::unknownSelectorAndName()
{
    // The libc figures are the fallback only where the tree has no cache directory.
    const std::map<int, long> libc{{_SC_LEVEL1_DCACHE_SIZE, 49152}, {_SC_LEVEL3_CACHE_SIZE, 532676608},
                                   {_SC_LEVEL1_DCACHE_LINESIZE, 64}, {_SC_NPROCESSORS_CONF, 9}};
    SystemInfoReader vm(fixture(QStringLiteral("sys-empty-tree")), fakeCalls(QStringLiteral("x86_64"), libc));
    QCOMPARE(vm.getSysInfo(SystemInfoReader::HW_L1DCACHESIZE), 49152u);
    QCOMPARE(vm.getSysInfo(SystemInfoReader::HW_L3CACHESIZE), 532676608u);
    QCOMPARE(vm.getSysInfo(SystemInfoReader::HW_CACHELINE), 64u);
    QCOMPARE(vm.getSysInfo(SystemInfoReader::HW_L2CACHESIZE), 0u);
    QCOMPARE(vm.getSysInfo(SystemInfoReader::HW_NCPU), 9u);
    QCOMPARE(vm.getSysInfo(99), 0u);
    QCOMPARE(vm.getSysInfoByName(QStringLiteral("kern.hostname")), QStringLiteral(""));

    SystemInfoReader phone(fixture(QStringLiteral("sys-arm64-phone-dt")), fakeCalls(QStringLiteral("aarch64"), libc));
    QCOMPARE(phone.getSysInfo(SystemInfoReader::HW_L1DCACHESIZE), 32768u);
    QCOMPARE(phone.getSysInfo(SystemInfoReader::HW_L1ICACHESIZE), 49152u);
    QCOMPARE(phone.getSysInfo(SystemInfoReader::HW_NCPU), 6u);
}

void TestSystemInfoReader::thisMachine()
{
    // The real readers on the real root: consistent with what the C library says.
    SystemInfoReader reader;
    QCOMPARE(reader.getSysInfo(SystemInfoReader::HW_NCPU), std::uint32_t(sysconf(_SC_NPROCESSORS_CONF)));
    QVERIFY(!reader.getSysInfoByName(QStringLiteral("hw.machine")).isEmpty());
    QCOMPARE(reader.getSysInfoByName(QStringLiteral("kern.ostype")), QStringLiteral("Linux"));
    const InfoDictionary info = reader.systemInfo();
    QCOMPARE(info.section(QStringLiteral("CPUInfo")).size(), 8);
}

QTEST_GUILESS_MAIN(TestSystemInfoReader)
#include "tst_systeminforeader.moc"
