#include "FixtureTree.h"
#include "SystemInfoReader.h"

#include <map>
#include <unistd.h>

using namespace FixtureTree;

namespace {

// A machine described by the test: uname, the C library's cache figures (or none) and
// the counter frequency.
SystemInfoReader::SystemCalls fakeCalls(const QString &machine, bool libc = false, std::uint64_t timeBase = 0)
{
    SystemInfoReader::SystemCalls calls;
    calls.uname = [machine] { return SystemInfoReader::UnameValues{"Linux", "6.1.0-13-amd64", machine}; };
    calls.sysconf = [libc](int name) {
        const std::map<int, long> figures{{_SC_LEVEL1_DCACHE_LINESIZE, 64},  {_SC_LEVEL1_ICACHE_SIZE, 32768},
                                          {_SC_LEVEL1_DCACHE_SIZE, 49152},   {_SC_LEVEL2_CACHE_SIZE, 1310720},
                                          {_SC_LEVEL3_CACHE_SIZE, 33554432}, {_SC_NPROCESSORS_CONF, 9}};
        return libc && figures.count(name) ? figures.at(name) : -1L;
    };
    calls.timeBaseFrequency = [timeBase] { return timeBase; };
    return calls;
}

} // namespace

class TestSystemInfoReader : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void devices_data() { addRows("devices.tsv", {"machine", "device", "frequency"}); }
    void devices()
    {
        QFETCH(QString, machine);
        const SystemInfoReader reader(path(QStringLiteral("sys-empty-tree")), fakeCalls(machine));
        QTEST(reader.platformString(), "device");
        QTEST(reader.getCPUFrequency(), "frequency");
    }

    void systemInfo_data()
    {
        QTest::addColumn<QString>("tree");
        QTest::addColumn<QString>("machine");
        QTest::addColumn<bool>("libc");
        QTest::addColumn<qint64>("timeBase");
        QTest::newRow(
            "PinePhone Pro: device-tree model and compatible, cpufreq's top clock, arch timer from the delay loop, "
            "no L3 whatever the C library says, blank pretty name falls back to the kernel's")
            << "sys-arm64-phone-dt"
            << "aarch64" << true << qint64(0);
        QTest::newRow("QEMU VM: DMI maker and product, cpu MHz without cpufreq, the counter register before the delay "
                      "loop and above 4 GHz, the C library's caches, quoted names")
            << "sys-x86-vm"
            << "x86_64" << true << qint64(5000000000);
        QTest::newRow("PC with DMI values and cpufreq: the top clock, not the idle one")
            << "sys-x86-laptop-dmi-cpufreq"
            << "x86_64" << false << qint64(0);
        QTest::newRow("PC with 'To Be Filled By O.E.M.' DMI: the architecture, no model")
            << "sys-pc-oem-placeholders"
            << "x86_64" << false << qint64(0);
        QTest::newRow("VM with neither DMI nor cpufreq, machine id \"uninitialized\": nothing known but the host name")
            << "sys-no-cache-dirs"
            << "x86_64" << false << qint64(0);
        QTest::newRow("riscv: one unified L1 cache holds the data") << "sys-riscv-unified-l1"
                                                                    << "riscv64" << false << qint64(24000000);
        QTest::newRow("empty tree: processor count from the C library") << "sys-empty-tree"
                                                                        << "" << true << qint64(0);
    }
    void systemInfo()
    {
        QFETCH(QString, tree);
        QFETCH(QString, machine);
        QFETCH(bool, libc);
        QFETCH(qint64, timeBase);
        const SystemInfoReader reader(path(tree), fakeCalls(machine, libc, std::uint64_t(timeBase)));
        QCOMPARE(tableLines(reader.systemInfo()), tableLines("system-info.tsv", tree));
    }

    void thisMachine()
    {
        // The real system calls on the real root agree with the C library.
        const SystemInfoReader reader;
        QCOMPARE(reader.getSysInfo(SystemInfoReader::HW_NCPU), std::uint32_t(::sysconf(_SC_NPROCESSORS_CONF)));
        QCOMPARE(reader.getSysInfoByName(QStringLiteral("kern.ostype")), QStringLiteral("Linux"));
        QVERIFY(!reader.getSysInfoByName(QStringLiteral("hw.machine")).isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestSystemInfoReader)
#include "tst_systeminforeader.moc"
