#include "FixtureTree.h"
#include "StatCore.h"
#include "StatSnapshot.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QLoggingCategory>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <unicode/ucal.h>
#include <unicode/uloc.h>

#include <atomic>
#include <cmath>
#include <sys/statvfs.h>
#include <thread>
#include <vector>

using namespace FixtureTree;

namespace {

QByteArray compact(const QJsonValue &value)
{
    return QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact).chopped(1).mid(1);
}

// /proc/stat as the kernel writes it: the total line first, then one line per processor.
bool writeStat(const QString &root, const QString &totalLine)
{
    return writeFile(root + QStringLiteral("/proc/stat"), totalLine.toUtf8() + "\ncpu0 1 2 3 4 5 6 7 8 0 0\nbtime 9\n");
}

// "pid\tname\tpriority\tstart time" of each process of the JSON table, in its order.
QStringList processRows(const QJsonValue &table)
{
    QStringList rows;
    for (const QJsonValue &process : table.toArray()) {
        const QJsonObject o = process.toObject();
        rows.append(QStringList{o["PID"].toString(), o["ProcessName"].toString(), o["Priority"].toString(),
                                o["StartTime"].toString()}
                        .join(u'\t'));
    }
    return rows;
}

QString startOf(StatCore &core, const QString &pid)
{
    for (const ProcessRecord &record : core.runningProcesses().value_or(QList<ProcessRecord>{}))
        if (record.pid == pid)
            return record.startTime;
    return QString();
}

} // namespace

class TestStatCore : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // Start times are shown in the current locale and zone: pin both.
        UErrorCode status = U_ZERO_ERROR;
        uloc_setDefault("en_US", &status);
        ucal_setDefaultTimeZone(u"UTC", &status);
        QVERIFY(U_SUCCESS(status));
    }

    void cpuUsage_data() { addRows("cpu.tsv", {"before", "after", "json"}); }
    void cpuUsage()
    {
        QFETCH(QString, before);
        QFETCH(QString, after);
        QFETCH(QString, json);
        QTemporaryDir dir;
        QVERIFY(writeStat(dir.path(), before));
        StatCore core(dir.path(), dir.path(), 4096);
        QVERIFY(writeStat(dir.path(), after));
        QCOMPARE(compact(StatSnapshot::cpuUsageJson(core.cpuUsage())), json.toUtf8());
        // The sample just taken is the previous one of the next; no tick elapsed is null, not NaN.
        const QJsonObject next = StatSnapshot::cpuUsageJson(core.cpuUsage());
        QVERIFY(next["usage"].isNull());
        QCOMPARE(compact(next), QByteArray(R"({"idle":0,"system":0,"usage":null,"user":0})"));
    }

    void memoryUsage_data() { addRows("memory.tsv", {"meminfo", "pageSize", "json", "warnings"}); }
    void memoryUsage()
    {
        QFETCH(QString, meminfo);
        QFETCH(QString, pageSize);
        QFETCH(QString, json);
        QFETCH(QString, warnings);
        QTemporaryDir dir;
        QVERIFY(meminfo == u"-" || writeFile(dir.filePath(QStringLiteral("proc/meminfo")), meminfo.toUtf8()));
        const StatCore core(dir.path(), dir.path(), pageSize.toLong());
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
        for (const QString &line : warnings.split(u'|', Qt::SkipEmptyParts))
            QTest::ignoreMessage(QtWarningMsg, qPrintable(line));
        QCOMPARE(compact(StatSnapshot::memoryUsageJson(core.memoryUsage())), json.toUtf8());
    }

    void diskUsage()
    {
        const DiskUsageData disk =
            StatCore(path(QStringLiteral("proc-x86-laptop")), QDir::tempPath(), 4096).diskUsage();
        struct statvfs fs;
        QCOMPARE(::statvfs(QFile::encodeName(QDir::tempPath()).constData(), &fs), 0);
        QCOMPARE(disk.totalSize, double(fs.f_frsize) * double(fs.f_blocks));
        // What an unprivileged user may still write, not counting root's reserve; others write meanwhile.
        QVERIFY(std::abs(disk.freeSize - double(fs.f_frsize) * double(fs.f_bavail)) < 64.0 * 1024 * 1024);
        for (const QString &home : {path(QStringLiteral("does-not-exist")), QString()}) {
            const DiskUsageData none = StatCore(path(QStringLiteral("proc-x86-laptop")), home, 4096).diskUsage();
            QCOMPARE(none.totalSize + none.freeSize, 0.0);
        }
    }

    void runningProcesses_data()
    {
        QTest::addColumn<QString>("tree");
        QTest::newRow("laptop: spaces and parentheses in names, real-time priority, start beyond 32 bits")
            << "proc-x86-laptop";
        QTest::newRow("phone: negative irq priority, seven-digit pid") << "proc-arm64-phone";
        QTest::newRow("damaged: sound stat kept, process gone before open, no boot time") << "proc-x86-damaged";
        QTest::newRow("boot time at the end of time: no start time, no overflow")
            << "proc-boot-time-at-the-end-of-time";
        QTest::newRow("container without a process is nil") << "proc-container-empty";
        QTest::newRow("no proc directory is nil") << "does-not-exist";
    }
    void runningProcesses()
    {
        QFETCH(QString, tree);
        QStringList expected = tableLines("processes.tsv", tree);
        StatCore core(path(tree), path(tree), 4096);
        const QJsonValue table = StatSnapshot::runningProcessesJson(core.runningProcesses());
        QCOMPARE(table.isNull(), expected.isEmpty());
        QStringList rows = processRows(table);
        // Ascending pid order, oldest first, whatever order the directory lists.
        QList<qint64> shown;
        for (const QString &row : rows)
            shown.append(row.section(u'\t', 0, 0).toLongLong());
        QVERIFY(std::is_sorted(shown.begin(), shown.end()));
        std::sort(rows.begin(), rows.end());
        std::sort(expected.begin(), expected.end());
        QCOMPARE(rows, expected);
        // The second scan takes the start times from the cache and agrees.
        QVERIFY(StatSnapshot::runningProcessesJson(core.runningProcesses()) == table);
    }

    void startTimesFollowPidReuseAndExits()
    {
        QTemporaryDir dir;
        QVERIFY(copy(path(QStringLiteral("proc-x86-laptop")), dir.path()));
        StatCore core(dir.path(), dir.path(), 4096);
        QCOMPARE(startOf(core, QStringLiteral("1534")), QStringLiteral("Nov 15, 2023, 10:13:20\u202fPM"));
        // Pid 1534 exits and is reused an hour later between two scans: the cached text must not stick.
        QVERIFY(writeFile(dir.filePath(QStringLiteral("proc/1534/stat")),
                          "1534 (Isolated Web) S 1 1 0 0 -1 4194560 1523 0 0 0 12 7 0 0 20 0 1 0 9000000 0 0\n"));
        QCOMPARE(startOf(core, QStringLiteral("1534")), QStringLiteral("Nov 15, 2023, 11:13:20\u202fPM"));
        // Two processes exit and one starts: the cache keeps a text for the living only.
        QVERIFY(QDir(dir.filePath(QStringLiteral("proc/57"))).removeRecursively());
        QVERIFY(QDir(dir.filePath(QStringLiteral("proc/2201"))).removeRecursively());
        QVERIFY(writeFile(dir.filePath(QStringLiteral("proc/4242/stat")),
                          "4242 (kworker/1:2) I 2 0 0 0 -1 69238880 0 0 0 0 0 5 0 0 20 0 1 0 9100000 0 0\n"));
        QCOMPARE(core.runningProcesses().value_or(QList<ProcessRecord>{}).size(), 7);
        QCOMPARE(core.startTimeCacheSize(), 7);
    }

    // A process's CPU share is its ticks between two scans over every CPU's ticks meanwhile.
    void processCpuShares_data()
    {
        QTest::addColumn<quint64>("busyTicks");
        QTest::addColumn<quint64>("elapsedTicks"); // of all four CPUs together
        QTest::addColumn<quint64>("startTicks");   // the process's at the second read
        QTest::addColumn<QString>("shares");       // of one CPU, of the machine
        QTest::newRow("three quarters of a CPU on four")
            << quint64(150) << quint64(800) << quint64(360500) << "75 18.75";
        QTest::newRow("two CPUs' worth, over 100 %") << quint64(400) << quint64(800) << quint64(360500) << "200 50";
        QTest::newRow("idle") << quint64(0) << quint64(800) << quint64(360500) << "0 0";
        QTest::newRow("no tick elapsed: unknown") << quint64(3) << quint64(0) << quint64(360500) << "- -";
        QTest::newRow("pid reused between the reads: the new process's ticks, all in the interval")
            << quint64(150) << quint64(800) << quint64(370000) << "75 18.75";
        QTest::newRow("more than every CPU: a read a moment late")
            << quint64(820) << quint64(800) << quint64(360500) << "400 100";
    }
    void processCpuShares()
    {
        QFETCH(quint64, busyTicks);
        QFETCH(quint64, elapsedTicks);
        QFETCH(quint64, startTicks);
        QTemporaryDir dir;
        QVERIFY(copy(path(QStringLiteral("proc-x86-desktop-units")), dir.path()));
        StatCore core(dir.path(), dir.path(), 4096);
        const auto firefox = [&core]() -> ProcessUsage {
            for (const ProcessRecord &record : core.runningProcesses().value_or(QList<ProcessRecord>{}))
                if (record.pid == u"1800")
                    return record.usage;
            return {};
        };
        const ProcessUsage first = firefox();
        QVERIFY(!first.cpuOfOneCore && !first.cpuOfMachine);
        QCOMPARE(first.residentBytes, std::optional<quint64>(105678ull * 4096));
        QString stat = QString::fromLatin1(
            "1800 (firefox-esr) S 1650 1650 1650 0 -1 4194560 998877 12345 300 4 %1 %2 40 12 20 0 87 0 %3 3968753664 "
            "105678 18446744073709551615 1 1 0 0 0 0 0 4096 1098 0 0 0 17 3 0 0 0 0 0 0 0 0 0 0 0 0 0\n");
        // A new process under the pid has only the ticks it used since.
        const bool reused = startTicks != 360500;
        QVERIFY(writeFile(
            dir.filePath(QStringLiteral("proc/1800/stat")),
            stat.arg(reused ? busyTicks : 52340 + busyTicks).arg(reused ? 0 : 9120).arg(startTicks).toLatin1()));
        QByteArray cpus = "cpu  " + QByteArray::number(3510000 + elapsedTicks) + " 0 0 0 0 0 0 0 0 0\n";
        for (int cpu = 0; cpu < 4; ++cpu)
            cpus += "cpu" + QByteArray::number(cpu) + " 1 0 0 0 0 0 0 0 0 0\n";
        QVERIFY(writeFile(dir.filePath(QStringLiteral("proc/stat")), cpus + "btime 1700000000\n"));
        const ProcessUsage second = firefox();
        const auto text = [](const std::optional<double> &share) {
            return share ? QString::number(*share) : QStringLiteral("-");
        };
        QTEST(text(second.cpuOfOneCore) + u' ' + text(second.cpuOfMachine), "shares");
    }

    void sharedCreatedOnceUnderContention()
    {
        constexpr int threadCount = 16;
        std::atomic<int> ready{0};
        StatCore *seen[threadCount] = {};
        std::vector<std::thread> threads;
        for (int i = 0; i < threadCount; ++i)
            threads.emplace_back([&, i] {
                ready.fetch_add(1);
                while (ready.load() < threadCount)
                    std::this_thread::yield();
                seen[i] = StatCore::shared();
            });
        for (std::thread &thread : threads)
            thread.join();
        for (StatCore *core : seen)
            QCOMPARE(core, StatCore::shared());
    }
};

QTEST_APPLESS_MAIN(TestStatCore)
#include "tst_statcore.moc"
