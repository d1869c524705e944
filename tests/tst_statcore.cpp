#include "FixtureTree.h"
#include "StatCore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QTemporaryDir>
#include <QTest>

#include <unicode/ucal.h>
#include <unicode/uloc.h>

#include <atomic>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

QByteArray cpuStat(const QByteArray &cpuLine)
{
    return cpuLine + "\ncpu0 1 2 3 4 5 6 7 8 0 0\nintr 0\nctxt 99\nbtime 1700000000\nprocesses 9\n";
}

// Collects warnings of the statistics core while it lives.
class LogCapture {
public:
    LogCapture()
    {
        QMutexLocker locker(&mutex);
        lines.clear();
        previous = qInstallMessageHandler(handler);
    }
    ~LogCapture() { qInstallMessageHandler(previous); }
    QStringList captured() const
    {
        QMutexLocker locker(&mutex);
        return lines;
    }

private:
    static void handler(QtMsgType type, const QMessageLogContext &context, const QString &message)
    {
        if (type == QtWarningMsg && qstrcmp(context.category, "kovar.stats") == 0) {
            QMutexLocker locker(&mutex);
            lines.append(message);
        }
    }
    static inline QMutex mutex;
    static inline QStringList lines;
    QtMessageHandler previous = nullptr;
};

} // namespace

class TestStatCore : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void cpuUsage_data();
    void cpuUsage();
    void cpuFirstSampleCoversTimeSinceCreation();
    void cpuUnreadableKeepsLastSample();

    void memoryUsage_data();
    void memoryUsage();
    void memoryFailureLogs_data();
    void memoryFailureLogs();

    void diskUsage_data();
    void diskUsage();

    void runningProcesses_data();
    void runningProcesses();
    void runningProcessesNil_data();
    void runningProcessesNil();
    void startTimeFollowsPidReuse();
    void hundredThousandProcesses();

    void byteFormatter_data();
    void byteFormatter();
    void hzFormatter_data();
    void hzFormatter();

    void sharedCreatedOnceUnderContention();
};

void TestStatCore::initTestCase()
{
    // Start times are shown in the current locale and zone: pin both.
    UErrorCode status = U_ZERO_ERROR;
    uloc_setDefault("en_US", &status);
    QVERIFY(U_SUCCESS(status));
    ucal_setDefaultTimeZone(u"UTC", &status);
    QVERIFY(U_SUCCESS(status));
}

void TestStatCore::cpuUsage_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<quint32>("user");
    QTest::addColumn<quint32>("system");
    QTest::addColumn<quint32>("idle");
    QTest::addColumn<double>("usage"); // NaN: no tick elapsed

    const double nan = qQNaN();
    QTest::newRow("quarter busy") << QByteArray("cpu  100 0 100 800 0 0 0 0 0 0")
                                  << QByteArray("cpu  130 0 120 950 0 0 0 0 0 0") << 30u << 20u << 150u << 25.0;
    QTest::newRow("no tick elapsed gives NaN") << QByteArray("cpu  100 5 100 800 0 0 0 0 0 0")
                                               << QByteArray("cpu  100 5 100 800 0 0 0 0 0 0") << 0u << 0u << 0u << nan;
    QTest::newRow("only nice ticks elapsed gives NaN")
        << QByteArray("cpu  100 5 100 800 0 0 0 0 0 0") << QByteArray("cpu  100 905 100 800 0 0 0 0 0 0") << 0u << 0u
        << 0u << nan;
    QTest::newRow("nice ticks change neither busy nor total")
        << QByteArray("cpu  0 0 0 0 0 0 0 0 0 0") << QByteArray("cpu  10 1000 10 80 0 0 0 0 0 0") << 10u << 10u << 80u
        << 20.0;
    QTest::newRow("irq and softirq count as system, iowait as idle")
        << QByteArray("cpu  0 0 0 0 0 0 0 0 0 0") << QByteArray("cpu  0 0 10 30 20 5 5 0 0 0") << 0u << 20u << 50u
        << 100.0 * 20.0 / 70.0;
    QTest::newRow("steal and guest ignored")
        << QByteArray("cpu  0 0 0 0 0 0 0 0 0 0") << QByteArray("cpu  50 0 0 50 0 0 0 400 300 200") << 50u << 0u << 50u
        << 50.0;
    QTest::newRow("counter wrapped past 2^32")
        << QByteArray("cpu  4294967290 0 0 4294967200 0 0 0 0 0 0") << QByteArray("cpu  4 0 0 4294967250 0 0 0 0 0 0")
        << 10u << 0u << 50u << 100.0 * 10.0 / 60.0;
    QTest::newRow("64-bit counters crossing a 2^32 boundary")
        << QByteArray("cpu  8589934590 0 0 100 0 0 0 0 0 0") << QByteArray("cpu  8589934600 0 0 110 0 0 0 0 0 0")
        << 10u << 0u << 10u << 50.0;
    QTest::newRow("counter going backwards wraps in 32 bits")
        << QByteArray("cpu  100 0 0 100 0 0 0 0 0 0") << QByteArray("cpu  99 0 0 110 0 0 0 0 0 0") << 4294967295u << 0u
        << 10u << 4294967295.0 / 9.0 * 100.0;
    QTest::newRow("busy plus idle wraps in 32 bits")
        << QByteArray("cpu  0 0 0 0 0 0 0 0 0 0") << QByteArray("cpu  4294967295 0 0 2 0 0 0 0 0 0") << 4294967295u
        << 0u << 2u << 100.0 * 4294967295.0 / 1.0;
    QTest::newRow("garbage after a sound sample keeps the sample")
        << QByteArray("cpu  10 0 10 10 0 0 0 0 0 0") << QByteArray("cpu  garbage") << 0u << 0u << 0u << nan;
    QTest::newRow("truncated line with four columns still read")
        << QByteArray("cpu  0 0 0 0 0 0 0 0 0 0") << QByteArray("cpu  3 0 1 4") << 3u << 1u << 4u << 50.0;
}

void TestStatCore::cpuUsage()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QFETCH(quint32, user);
    QFETCH(quint32, system);
    QFETCH(quint32, idle);
    QFETCH(double, usage);

    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QVERIFY(FixtureTree::copy(FixtureTree::path("proc-x86-laptop"), dir.path()));
    const QString statPath = dir.filePath(QStringLiteral("proc/stat"));
    QVERIFY(FixtureTree::writeFile(statPath, cpuStat(before)));
    StatCore core(dir.path(), dir.path(), 4096);
    QVERIFY(FixtureTree::writeFile(statPath, cpuStat(after)));

    const CpuUsageData data = core.cpuUsage();
    QCOMPARE(data.user, user);
    QCOMPARE(data.system, system);
    QCOMPARE(data.idle, idle);
    if (qIsNaN(usage))
        QVERIFY2(qIsNaN(data.usage), qPrintable(QString::number(data.usage)));
    else
        QCOMPARE(data.usage, usage);

    // The sample just taken is now the previous one.
    const CpuUsageData again = core.cpuUsage();
    QCOMPARE(again.user + again.system + again.idle, 0u);
    QVERIFY(qIsNaN(again.usage));
}

void TestStatCore::cpuFirstSampleCoversTimeSinceCreation()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QVERIFY(FixtureTree::copy(FixtureTree::path("proc-arm64-phone"), dir.path()));
    const QString statPath = dir.filePath(QStringLiteral("proc/stat"));
    StatCore core(dir.path(), dir.path(), 4096);
    // The phone's total line: 402817 2313 183901 9912331 20873 0 9216.
    QVERIFY(FixtureTree::writeFile(statPath, cpuStat("cpu  402917 2313 183951 9912431 20873 0 9266 0 0 0")));
    const CpuUsageData data = core.cpuUsage();
    QCOMPARE(data.user, 100u);
    QCOMPARE(data.system, 100u);
    QCOMPARE(data.idle, 100u);
    QCOMPARE(data.usage, 100.0 * 200.0 / 300.0);
}

void TestStatCore::cpuUnreadableKeepsLastSample()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QVERIFY(FixtureTree::copy(FixtureTree::path("proc-x86-laptop"), dir.path()));
    const QString statPath = dir.filePath(QStringLiteral("proc/stat"));
    QVERIFY(FixtureTree::writeFile(statPath, cpuStat("cpu  0 0 0 0 0 0 0 0 0 0")));
    StatCore core(dir.path(), dir.path(), 4096);
    QVERIFY(FixtureTree::writeFile(statPath, cpuStat("cpu  10 0 10 20 0 0 0 0 0 0")));
    QCOMPARE(core.cpuUsage().usage, 50.0);

    QVERIFY(QFile::remove(statPath));
    const CpuUsageData missing = core.cpuUsage();
    QCOMPARE(missing.user + missing.system + missing.idle, 0u);
    QVERIFY(qIsNaN(missing.usage));

    // Once the file is back, the delta runs from the last sound sample.
    QVERIFY(FixtureTree::writeFile(statPath, cpuStat("cpu  15 0 15 30 0 0 0 0 0 0")));
    const CpuUsageData back = core.cpuUsage();
    QCOMPARE(back.user, 5u);
    QCOMPARE(back.system, 5u);
    QCOMPARE(back.idle, 10u);
}

void TestStatCore::memoryUsage_data()
{
    QTest::addColumn<QByteArray>("meminfo");
    QTest::addColumn<long>("pageSize");
    QTest::addColumn<qint32>("totalPages");
    QTest::addColumn<quint64>("wired");
    QTest::addColumn<quint64>("active");
    QTest::addColumn<quint64>("inactive");
    QTest::addColumn<quint64>("free");
    QTest::addColumn<quint64>("total");
    QTest::addColumn<double>("wiredPercent");
    QTest::addColumn<double>("activePercent");
    QTest::addColumn<double>("inactivePercent");
    QTest::addColumn<double>("freePercent");
    QTest::addColumn<quint64>("physical");
    QTest::addColumn<quint64>("user");

    // free 100, active 200, inactive 300, wired 400 pages of 4096 bytes.
    QTest::newRow("100/200/300/400 pages")
        << QByteArray("MemTotal: 4000 kB\nMemFree: 400 kB\nMemAvailable: 3000 kB\nActive: 800 kB\n"
                      "Inactive: 1200 kB\nActive(anon): 5 kB\n")
        << 4096L << 1000 << quint64(1638400) << quint64(819200) << quint64(1228800) << quint64(409600)
        << quint64(4096000) << 40.0 << 20.0 << 30.0 << 10.0 << quint64(4096000) << quint64(2457600);
    QTest::newRow("64 kB pages of an arm64 server")
        << QByteArray("MemTotal: 6400 kB\nMemFree: 640 kB\nActive: 1280 kB\nInactive: 1920 kB\n") << 65536L << 100
        << quint64(2621440) << quint64(1310720) << quint64(1966080) << quint64(655360) << quint64(6553600) << 40.0
        << 20.0 << 30.0 << 10.0 << quint64(6553600) << quint64(3932160);
    QTest::newRow("more than 4 GiB needs 64-bit byte figures")
        << QByteArray("MemTotal: 67108864 kB\nMemFree: 16777216 kB\nActive: 16777216 kB\nInactive: 16777216 kB\n")
        << 4096L << 16777216 << quint64(17179869184) << quint64(17179869184) << quint64(17179869184)
        << quint64(17179869184) << quint64(68719476736) << 25.0 << 25.0 << 25.0 << 25.0 << quint64(68719476736)
        << quint64(51539607552);
}

void TestStatCore::memoryUsage()
{
    QFETCH(QByteArray, meminfo);
    QFETCH(long, pageSize);

    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("proc")));
    QVERIFY(FixtureTree::writeFile(dir.filePath(QStringLiteral("proc/meminfo")), meminfo));
    const StatCore core(dir.path(), dir.path(), pageSize);
    const LogCapture log;
    const MemoryUsageData data = core.memoryUsage();

    QCOMPARE(data.pageSize, qint32(pageSize));
    QTEST(data.totalPages, "totalPages");
    QTEST(data.wired, "wired");
    QTEST(data.active, "active");
    QTEST(data.inactive, "inactive");
    QTEST(data.free, "free");
    QTEST(data.total, "total");
    QTEST(data.wiredPercent, "wiredPercent");
    QTEST(data.activePercent, "activePercent");
    QTEST(data.inactivePercent, "inactivePercent");
    QTEST(data.freePercent, "freePercent");
    QTEST(data.physical, "physical");
    QTEST(data.user, "user");
    QCOMPARE(log.captured(), QStringList());
}

void TestStatCore::memoryFailureLogs_data()
{
    QTest::addColumn<QString>("tree");       // empty: a tree holding only the meminfo below
    QTest::addColumn<QByteArray>("meminfo");
    QTest::addColumn<long>("pageSize");
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<quint64>("physical");
    QTest::addColumn<quint64>("user");

    const QString vm = QStringLiteral("#### Failed to get VM statistics!!");
    const QString physical = QStringLiteral("#### Getting physical memory error!!");
    const QString user = QStringLiteral("#### Getting user memory error!!");
    const QString page = QStringLiteral("#### Getting page size error!!");

    QTest::newRow("missing meminfo logs three lines") << FixtureTree::path("does-not-exist") << QByteArray() << 4096L
                                                      << QStringList{vm, physical, user} << quint64(0) << quint64(0);
    QTest::newRow("empty meminfo of a container") << FixtureTree::path("proc-container-empty") << QByteArray() << 4096L
                                                  << QStringList{vm, physical, user} << quint64(0) << quint64(0);
    QTest::newRow("garbage meminfo") << FixtureTree::path("proc-x86-damaged") << QByteArray() << 4096L << QStringList{vm, physical, user}
                                     << quint64(0) << quint64(0);
    QTest::newRow("failed page size query") << FixtureTree::path("proc-arm64-phone") << QByteArray() << -1L << QStringList{page}
                                            << quint64(3809856) * 1024 << quint64(212744 + 1466140 + 1344684) * 1024;
    QTest::newRow("sound phone meminfo logs nothing")
        << FixtureTree::path("proc-arm64-phone") << QByteArray() << 4096L << QStringList{} << quint64(3809856) * 1024
        << quint64(212744 + 1466140 + 1344684) * 1024;
    QTest::newRow("failed user memory repeats the physical figure")
        << QString() << QByteArray("MemTotal: 8000 kB\nMemFree: 100 kB\n") << 4096L << QStringList{vm, user}
        << quint64(8192000) << quint64(8192000);
    QTest::newRow("counts larger than the total are garbage")
        << QString() << QByteArray("MemTotal: 1000 kB\nMemFree: 900 kB\nActive: 900 kB\nInactive: 900 kB\n") << 4096L
        << QStringList{vm, user} << quint64(1024000) << quint64(1024000);
}

void TestStatCore::memoryFailureLogs()
{
    QFETCH(QString, tree);
    QFETCH(QByteArray, meminfo);
    QFETCH(long, pageSize);
    QFETCH(QStringList, lines);
    QFETCH(quint64, physical);
    QFETCH(quint64, user);

    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    if (tree.isEmpty()) {
        QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("proc")));
        QVERIFY(FixtureTree::writeFile(dir.filePath(QStringLiteral("proc/meminfo")), meminfo));
        tree = dir.path();
    }
    const StatCore core(tree, tree, pageSize);
    const LogCapture log;
    const MemoryUsageData data = core.memoryUsage();
    QCOMPARE(log.captured(), lines);
    QCOMPARE(data.physical, physical);
    QCOMPARE(data.user, user);
}

void TestStatCore::diskUsage_data()
{
    QTest::addColumn<QString>("home");
    QTest::addColumn<bool>("known");

    QTest::newRow("existing home directory") << QDir::tempPath() << true;
    QTest::newRow("home that does not exist") << FixtureTree::path("does-not-exist/home") << false;
    QTest::newRow("no home at all") << QString() << false;
}

void TestStatCore::diskUsage()
{
    QFETCH(QString, home);
    QFETCH(bool, known);

    const StatCore core(FixtureTree::path("proc-x86-laptop"), home, 4096);
    const DiskUsageData data = core.diskUsage();
    if (!known) {
        QCOMPARE(data.totalSize, 0.0);
        QCOMPARE(data.freeSize, 0.0);
        return;
    }
    struct statvfs fs;
    QCOMPARE(::statvfs(QFile::encodeName(home).constData(), &fs), 0);
    // Fragment size, not block size; the space an unprivileged user may still use.
    QCOMPARE(data.totalSize, double(fs.f_frsize) * double(fs.f_blocks));
    QCOMPARE(data.freeSize, double(fs.f_frsize) * double(fs.f_bavail));
    QVERIFY(data.totalSize > 0.0);
    QVERIFY(data.freeSize <= data.totalSize);
}

void TestStatCore::runningProcesses_data()
{
    QTest::addColumn<QString>("tree");
    QTest::addColumn<QList<QStringList>>("expected"); // pid, name, priority, start time; any order

    if (::sysconf(_SC_CLK_TCK) != 100)
        QSKIP("start ticks in the fixtures assume 100 ticks a second");

    const QString nbsp = QStringLiteral("\u202f");
    const auto at = [&](const char *dateTime, const char *half) {
        return QLatin1String(dateTime) + nbsp + QLatin1String(half);
    };
    QTest::newRow("laptop: spaces, parentheses, real-time priority")
        << FixtureTree::path("proc-x86-laptop")
        << QList<QStringList>{
               {"1", "systemd", "20", at("Nov 14, 2023, 10:13:32", "PM")},
               {"2", "kthreadd", "20", at("Nov 14, 2023, 10:13:32", "PM")},
               {"15", "migration/0", "-100", at("Nov 14, 2023, 10:13:33", "PM")},
               {"57", "kworker/0:0H-events_highpri", "0", at("Nov 14, 2023, 10:14:05", "PM")},
               {"812", "(sd-pam)", "20", at("Nov 14, 2023, 11:13:20", "PM")},
               {"1534", "Web Content", "20", at("Nov 15, 2023, 10:13:20", "PM")},
               {"2201", "a) b (c", "39", at("Nov 15, 2023, 10:13:20", "PM")},
           };
    QTest::newRow("phone: negative irq thread priority")
        << FixtureTree::path("proc-arm64-phone")
        << QList<QStringList>{
               {"1", "systemd", "20", at("Nov 14, 2023, 7:26:42", "PM")},
               {"214", "irq/123-q6v5", "-51", at("Nov 14, 2023, 7:26:43", "PM")},
               {"640", "ModemManager", "20", at("Nov 14, 2023, 7:26:50", "PM")},
               {"1320", "phosh", "20", at("Nov 14, 2023, 7:27:02", "PM")},
               {"2675", "gnome-calls", "30", at("Nov 14, 2023, 8:26:40", "PM")},
           };
    QTest::newRow("damaged: sound pid kept, unknown boot time counts from 1970")
        << FixtureTree::path("proc-x86-damaged")
        << QList<QStringList>{{"100", "init", "20", at("Jan 1, 1970, 12:00:05", "AM")}};
}

void TestStatCore::runningProcesses()
{
    QFETCH(QString, tree);
    QFETCH(QList<QStringList>, expected);

    StatCore core(tree, tree, 4096);
    const std::optional<QList<ProcessRecord>> processes = core.runningProcesses();
    QVERIFY(processes);

    QList<QStringList> rows;
    QStringList pidOrder;
    for (const ProcessRecord &record : *processes) {
        rows.append({record.pid, record.processName, record.priority, record.startTime});
        pidOrder.append(record.pid);
        const QVariantMap map = record.toVariantMap();
        QCOMPARE(map.keys(), (QStringList{"PID", "Priority", "ProcessName", "StartTime"}));
        QCOMPARE(map.value(QStringLiteral("ProcessName")).toString(), record.processName);
        QCOMPARE(map.value(QStringLiteral("StartTime")).toString(), record.startTime);
    }
    const auto byPid = [](const QStringList &a, const QStringList &b) { return a.first().toInt() < b.first().toInt(); };
    std::sort(rows.begin(), rows.end(), byPid);
    std::sort(expected.begin(), expected.end(), byPid);
    QCOMPARE(rows, expected);

    // Last directory entry first.
    QStringList directoryOrder;
    for (const QFileInfo &entry : QDir(tree + QStringLiteral("/proc")).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Unsorted)) {
        if (expected.end() != std::find_if(expected.begin(), expected.end(), [&](const QStringList &row) {
                return row.first() == entry.fileName();
            }))
            directoryOrder.prepend(entry.fileName());
    }
    QCOMPARE(pidOrder, directoryOrder);

    // A second scan reads the same table again, start times from the cache.
    QCOMPARE(core.runningProcesses(), processes);
}

void TestStatCore::runningProcessesNil_data()
{
    QTest::addColumn<QString>("tree");
    QTest::newRow("no proc directory") << FixtureTree::path("does-not-exist");
    QTest::newRow("proc without a single process") << FixtureTree::path("proc-container-empty");
}

void TestStatCore::runningProcessesNil()
{
    QFETCH(QString, tree);
    StatCore core(tree, tree, 4096);
    QVERIFY(!core.runningProcesses().has_value());
}

void TestStatCore::startTimeFollowsPidReuse()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QVERIFY(FixtureTree::copy(FixtureTree::path("proc-x86-laptop"), dir.path()));
    StatCore core(dir.path(), dir.path(), 4096);
    const auto startOf = [](const QList<ProcessRecord> &list, const QString &pid) {
        for (const ProcessRecord &record : list) {
            if (record.pid == pid)
                return record.startTime;
        }
        return QString();
    };
    const std::optional<QList<ProcessRecord>> first = core.runningProcesses();
    QVERIFY(first);
    QCOMPARE(startOf(*first, QStringLiteral("1534")), QStringLiteral("Nov 15, 2023, 10:13:20\u202fPM"));

    // Pid 1534 exits, pid 812 exits and 1534 comes back as a new process an hour later.
    QVERIFY(QDir(dir.filePath(QStringLiteral("proc/812"))).removeRecursively());
    QVERIFY(QDir(dir.filePath(QStringLiteral("proc/1534"))).removeRecursively());
    QVERIFY(core.runningProcesses());
    QVERIFY(QDir(dir.path()).mkpath(QStringLiteral("proc/1534")));
    QVERIFY(FixtureTree::writeFile(dir.filePath(QStringLiteral("proc/1534/stat")),
                      "1534 (Isolated Web) S 1 1 0 0 -1 4194560 1523 0 0 0 12 7 0 0 20 0 1 0 9000000 0 0\n"));
    const std::optional<QList<ProcessRecord>> second = core.runningProcesses();
    QVERIFY(second);
    QCOMPARE(second->size(), 6);
    QCOMPARE(startOf(*second, QStringLiteral("1534")), QStringLiteral("Nov 15, 2023, 11:13:20\u202fPM"));
    QCOMPARE(startOf(*second, QStringLiteral("812")), QString());

    // Pid 2201 exits and is reused between two scans: the cached text must not stick.
    QVERIFY(FixtureTree::writeFile(dir.filePath(QStringLiteral("proc/2201/stat")),
                      "2201 (reused) S 1 1 0 0 -1 4194560 1523 0 0 0 12 7 0 0 20 0 1 0 360000 0 0\n"));
    const std::optional<QList<ProcessRecord>> third = core.runningProcesses();
    QVERIFY(third);
    QCOMPARE(startOf(*third, QStringLiteral("2201")), QStringLiteral("Nov 14, 2023, 11:13:20\u202fPM"));
}

void TestStatCore::hundredThousandProcesses()
{
    // 100,000 directories cost minutes on a disk-backed file system under the
    // sanitizers and seconds in memory: use the shared-memory file system when there is one.
    const QString shm = QStringLiteral("/dev/shm");
    QTemporaryDir dir = QFileInfo(shm).isWritable() ? QTemporaryDir(shm + QStringLiteral("/kovar-statcore-XXXXXX"))
                                                    : QTemporaryDir();
    QVERIFY(dir.isValid());
    const int count = 100000;
    const QByteArray proc = QFile::encodeName(dir.path()) + "/proc/";
    QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("proc")));
    QVERIFY(FixtureTree::writeFile(dir.filePath(QStringLiteral("proc/stat")), cpuStat("cpu  1 2 3 4")));
    // Plain system calls: QFile per file would make the set-up the slowest part.
    for (int pid = 1; pid <= count; ++pid) {
        const QByteArray pidDir = proc + QByteArray::number(pid);
        QCOMPARE(::mkdir(pidDir.constData(), 0755), 0);
        const QByteArray line = QByteArray::number(pid) + " (worker " + QByteArray::number(pid)
            + ") S 1 1 0 0 -1 4194560 1523 0 0 0 12 7 0 0 20 0 1 0 " + QByteArray::number(pid % 3600 * 100)
            + " 5435392 710\n";
        const int fd = ::open((pidDir + "/stat").constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        QVERIFY(fd >= 0);
        const bool written = ::write(fd, line.constData(), size_t(line.size())) == line.size();
        ::close(fd);
        QVERIFY(written);
    }

    StatCore core(dir.path(), dir.path(), 4096);
    const std::optional<QList<ProcessRecord>> processes = core.runningProcesses();
    QVERIFY(processes);
    QCOMPARE(processes->size(), count);
    qint64 pidSum = 0;
    for (const ProcessRecord &record : *processes) {
        const int pid = record.pid.toInt();
        pidSum += pid;
        if (record.processName != QStringLiteral("worker %1").arg(pid) || record.startTime.isEmpty())
            QFAIL(qPrintable(QStringLiteral("pid %1 read wrongly").arg(record.pid)));
    }
    QCOMPARE(pidSum, qint64(count) * (count + 1) / 2);
    // The second scan takes every start time from the cache and must agree.
    QCOMPARE(core.runningProcesses(), processes);
}

void TestStatCore::byteFormatter_data()
{
    QTest::addColumn<double>("bytes");
    QTest::addColumn<int>("decmal");
    QTest::addColumn<bool>("unitSpace");
    QTest::addColumn<QString>("expected");

    QTest::newRow("zero with unit space") << 0.0 << 2 << true << "0 Byte";
    QTest::newRow("zero without unit space") << 0.0 << 2 << false << "0Byte";
    QTest::newRow("1023 bytes stay bytes, grouped") << 1023.0 << 2 << true << "1,023 Byte";
    QTest::newRow("byte count ignores decmal") << 1000.0 << 3 << true << "1,000 Byte";
    QTest::newRow("exactly 1024 is 1 KB") << 1024.0 << 0 << true << "1 KB";
    QTest::newRow("1024 with two decimals") << 1024.0 << 2 << true << "1.00 KB";
    QTest::newRow("rounding only in printing: 1,024 KB, not 1 MB") << 1048575.0 << 0 << true << "1,024 KB";
    QTest::newRow("1.5 GB") << 1610612736.0 << 2 << true << "1.50 GB";
    QTest::newRow("no unit above GB") << 5000000000000.0 << 0 << true << "4,657 GB";
    QTest::newRow("negative falls to Byte") << -123456.0 << 2 << true << "-123,456 Byte";
    QTest::newRow("decmal 7 behaves as 0") << 1610612736.0 << 7 << true << "2 GB";
    QTest::newRow("decmal -1 behaves as 0") << 1610612736.0 << -1 << true << "2 GB";
    QTest::newRow("decmal 1") << 1610612736.0 << 1 << false << "1.5GB";
    QTest::newRow("decmal 3") << 1536.0 << 3 << true << "1.500 KB";
    QTest::newRow("exact half rounds to even, down") << 2560.0 << 0 << true << "2 KB";
    QTest::newRow("exact half rounds to even, up") << 3584.0 << 0 << true << "4 KB";
    QTest::newRow("0.125 prints as .12") << 1179648.0 << 2 << true << "1.12 MB";
    QTest::newRow("2^31 GB saturates and stays GB") << 2305843009213693952.0 << 0 << true << "2,147,483,648 GB";
    QTest::newRow("fraction of a KB is bytes") << 1023.9 << 0 << true << "1,024 Byte";
}

void TestStatCore::byteFormatter()
{
    QFETCH(double, bytes);
    QFETCH(int, decmal);
    QFETCH(bool, unitSpace);
    QFETCH(QString, expected);
    QCOMPARE(StatCore::byteToKiloMegaGigaWithByte(bytes, decmal, unitSpace), expected);
}

void TestStatCore::hzFormatter_data()
{
    QTest::addColumn<double>("hz");
    QTest::addColumn<int>("decmal");
    QTest::addColumn<bool>("unitSpace");
    QTest::addColumn<QString>("expected");

    QTest::newRow("24 MHz time base") << 24000000.0 << 0 << true << "24 MHz";
    QTest::newRow("2.5 GHz without unit space") << 2500000000.0 << 1 << false << "2.5GHz";
    QTest::newRow("2.5 GHz with no decimals rounds to even") << 2500000000.0 << 0 << true << "2 GHz";
    QTest::newRow("zero is Hz") << 0.0 << 2 << true << "0 Hz";
    QTest::newRow("1000 Hz shows as 0 MHz") << 1000.0 << 0 << true << "0 MHz";
    QTest::newRow("1000 Hz with three decimals") << 1000.0 << 3 << true << "0.001 MHz";
    QTest::newRow("just under 1 GHz stays MHz") << 999999999.0 << 0 << true << "1000 MHz";
    QTest::newRow("no thousands separators") << 1000000000000.0 << 0 << true << "1000 GHz";
    QTest::newRow("negative frequency is Hz") << -5.0 << 2 << true << "-5 Hz";
    QTest::newRow("decmal 9 behaves as 0") << 19200000.0 << 9 << true << "19 MHz";
}

void TestStatCore::hzFormatter()
{
    QFETCH(double, hz);
    QFETCH(int, decmal);
    QFETCH(bool, unitSpace);
    QFETCH(QString, expected);
    QCOMPARE(StatCore::hzToKiloMegaGigaWithHz(hz, decmal, unitSpace), expected);
}

void TestStatCore::sharedCreatedOnceUnderContention()
{
    constexpr int threadCount = 16;
    std::atomic<int> ready{0};
    std::atomic<bool> go{false};
    StatCore *seen[threadCount] = {};
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([&, i] {
            ready.fetch_add(1);
            while (!go.load())
                std::this_thread::yield();
            seen[i] = StatCore::shared();
        });
    }
    while (ready.load() < threadCount)
        std::this_thread::yield();
    go.store(true);
    for (std::thread &thread : threads)
        thread.join();

    QVERIFY(seen[0] != nullptr);
    for (StatCore *core : seen)
        QCOMPARE(core, seen[0]);
    QCOMPARE(StatCore::shared(), seen[0]);
    StatCore::terminate();
}

QTEST_APPLESS_MAIN(TestStatCore)
#include "tst_statcore.moc"
