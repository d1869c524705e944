#include "FixtureTree.h"
#include "ProcReader.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

QByteArray statLine(int pid, const QByteArray &comm, int priority, quint64 startTicks)
{
    return QByteArray::number(pid) + " (" + comm + ") S 1 1 0 0 -1 4194560 1523 0 0 0 12 7 0 0 "
        + QByteArray::number(priority) + " 0 1 0 " + QByteArray::number(startTicks)
        + " 5435392 710 18446744073709551615 0 0 0 0 0 0 0\n";
}

} // namespace

class TestProcReader : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void parseCpuLine_data();
    void parseCpuLine();
    void parseMemInfo_data();
    void parseMemInfo();
    void parseProcStat_data();
    void parseProcStat();
    void fixtureCounters_data();
    void fixtureCounters();
    void processStatsOfTrees_data();
    void processStatsOfTrees();
    void pidDirectoryWithoutStatIsSkipped();
};

void TestProcReader::parseCpuLine_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<quint32>("user");
    QTest::addColumn<quint32>("system");
    QTest::addColumn<quint32>("idle");
    QTest::addColumn<quint32>("nice");

    QTest::newRow("old kernel with four columns") << QByteArray("cpu 5 6 7 8") << true << 5u << 7u << 8u << 6u;
    QTest::newRow("64-bit counter cut to 32 bits")
        << QByteArray("cpu  4294967396 0 0 0\n") << true << 100u << 0u << 0u << 0u;
    QTest::newRow("per-cpu line alone is not the total") << QByteArray("cpu0 1 2 3 4\n") << false << 0u << 0u << 0u << 0u;
    QTest::newRow("truncated after three columns") << QByteArray("cpu  1 2 3") << false << 0u << 0u << 0u << 0u;
    QTest::newRow("garbage column") << QByteArray("cpu  12 oops 34 56\n") << false << 0u << 0u << 0u << 0u;
    QTest::newRow("empty file") << QByteArray() << false << 0u << 0u << 0u << 0u;
    QTest::newRow("total line after other lines")
        << QByteArray("intr 1 2 3\ncpu  1 2 3 4 5 6 7\n") << true << 1u << 16u << 9u << 2u;
}

void TestProcReader::parseCpuLine()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, valid);
    const std::optional<ProcReader::CpuTicks> ticks = ProcReader::parseCpuLine(text.constData(), text.size());
    QCOMPARE(ticks.has_value(), valid);
    if (!valid)
        return;
    QFETCH(quint32, user);
    QFETCH(quint32, system);
    QFETCH(quint32, idle);
    QFETCH(quint32, nice);
    QCOMPARE(ticks->user, user);
    QCOMPARE(ticks->system, system);
    QCOMPARE(ticks->idle, idle);
    QCOMPARE(ticks->nice, nice);
}

void TestProcReader::parseMemInfo_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<qint64>("memTotal"); // -1: missing
    QTest::addColumn<qint64>("memFree");
    QTest::addColumn<qint64>("active");
    QTest::addColumn<qint64>("inactive");

    QTest::newRow("Active(anon) is not Active")
        << QByteArray("MemTotal: 4000 kB\nActive(anon): 1 kB\nInactive(anon): 2 kB\nMemFree: 400 kB\n"
                      "Active: 800 kB\nInactive: 1200 kB\n")
        << qint64(4000) << qint64(400) << qint64(800) << qint64(1200);
    QTest::newRow("MemAvailable is not MemFree")
        << QByteArray("MemTotal: 10 kB\nMemAvailable: 9 kB\n") << qint64(10) << qint64(-1) << qint64(-1) << qint64(-1);
    QTest::newRow("value without digits") << QByteArray("MemTotal:        not-a-number kB\nMemFree: \n")
                                          << qint64(-1) << qint64(-1) << qint64(-1) << qint64(-1);
    QTest::newRow("last line without newline") << QByteArray("Inactive: 77")
                                               << qint64(-1) << qint64(-1) << qint64(-1) << qint64(77);
    QTest::newRow("empty file") << QByteArray() << qint64(-1) << qint64(-1) << qint64(-1) << qint64(-1);
}

void TestProcReader::parseMemInfo()
{
    QFETCH(QByteArray, text);
    QFETCH(qint64, memTotal);
    QFETCH(qint64, memFree);
    QFETCH(qint64, active);
    QFETCH(qint64, inactive);
    const ProcReader::MemInfo info = ProcReader::parseMemInfo(text.constData(), text.size());
    const auto value = [](const std::optional<quint64> &field) { return field ? qint64(*field) : qint64(-1); };
    QCOMPARE(value(info.memTotal), memTotal);
    QCOMPARE(value(info.memFree), memFree);
    QCOMPARE(value(info.active), active);
    QCOMPARE(value(info.inactive), inactive);
}

void TestProcReader::parseProcStat_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<int>("pid");
    QTest::addColumn<QByteArray>("comm");
    QTest::addColumn<int>("priority");
    QTest::addColumn<quint64>("startTicks");

    QTest::newRow("plain process") << statLine(1534, "bash", 20, 532878) << true << 1534 << QByteArray("bash") << 20
                                   << quint64(532878);
    QTest::newRow("name with spaces") << statLine(7, "Web Content", 20, 10) << true << 7 << QByteArray("Web Content")
                                      << 20 << quint64(10);
    QTest::newRow("name with ')' and '(' runs to the last ')'")
        << statLine(8, "a) b (c", 39, 11) << true << 8 << QByteArray("a) b (c") << 39 << quint64(11);
    QTest::newRow("name in its own parentheses") << statLine(812, "(sd-pam)", 20, 12) << true << 812
                                                 << QByteArray("(sd-pam)") << 20 << quint64(12);
    QTest::newRow("real-time task has a negative priority")
        << statLine(15, "migration/0", -100, 1300) << true << 15 << QByteArray("migration/0") << -100 << quint64(1300);
    QTest::newRow("empty name") << statLine(9, "", 20, 13) << true << 9 << QByteArray() << 20 << quint64(13);
    QTest::newRow("start time beyond 32 bits") << statLine(3, "x", 20, 5000000000ULL) << true << 3 << QByteArray("x")
                                               << 20 << quint64(5000000000ULL);
    QTest::newRow("truncated before the start time")
        << QByteArray("101 (trunc) S 1 1 0 0 -1 4194560 1523\n") << false << 0 << QByteArray() << 0 << quint64(0);
    QTest::newRow("no parentheses") << QByteArray("this is not a stat line\n") << false << 0 << QByteArray() << 0
                                    << quint64(0);
    QTest::newRow("no closing parenthesis") << QByteArray("105 (no close paren S 1 1 0\n") << false << 0
                                            << QByteArray() << 0 << quint64(0);
    QTest::newRow("letters where the priority belongs")
        << QByteArray("4 (x) S 1 1 0 0 -1 4194560 1523 0 0 0 12 7 0 0 high 0 1 0 99 0\n") << false << 0
        << QByteArray() << 0 << quint64(0);
    QTest::newRow("pid is not a number") << statLine(1, "x", 20, 1).replace(0, 1, "z") << false << 0 << QByteArray()
                                         << 0 << quint64(0);
}

void TestProcReader::parseProcStat()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, valid);
    const std::optional<ProcReader::ProcStat> stat = ProcReader::parseProcStat(text.constData(), text.size());
    QCOMPARE(stat.has_value(), valid);
    if (!valid)
        return;
    QFETCH(int, pid);
    QFETCH(QByteArray, comm);
    QFETCH(int, priority);
    QFETCH(quint64, startTicks);
    QCOMPARE(stat->pid, pid);
    QCOMPARE(stat->comm, comm);
    QCOMPARE(stat->priority, priority);
    QCOMPARE(stat->startTicks, startTicks);
}

void TestProcReader::fixtureCounters_data()
{
    QTest::addColumn<QString>("tree");
    QTest::addColumn<bool>("haveCpu");
    QTest::addColumn<quint32>("user");
    QTest::addColumn<quint32>("system");
    QTest::addColumn<qint64>("bootTime"); // -1: none
    QTest::addColumn<qint64>("memTotal"); // -1: none

    QTest::newRow("x86-64 laptop") << FixtureTree::path("proc-x86-laptop") << true << 31186u << 14477u << qint64(1700000000)
                                   << qint64(24683620);
    QTest::newRow("arm64 phone, 8 cpus") << FixtureTree::path("proc-arm64-phone") << true << 402817u << 193117u
                                         << qint64(1699990000) << qint64(3809856);
    QTest::newRow("container with empty files") << FixtureTree::path("proc-container-empty") << false << 0u << 0u << qint64(-1)
                                                << qint64(-1);
    QTest::newRow("damaged counters") << FixtureTree::path("proc-x86-damaged") << false << 0u << 0u << qint64(-1) << qint64(-1);
    QTest::newRow("no proc at all") << FixtureTree::path("does-not-exist") << false << 0u << 0u << qint64(-1) << qint64(-1);
}

void TestProcReader::fixtureCounters()
{
    QFETCH(QString, tree);
    QFETCH(bool, haveCpu);
    QFETCH(quint32, user);
    QFETCH(quint32, system);
    QFETCH(qint64, bootTime);
    QFETCH(qint64, memTotal);

    const ProcReader reader(tree);
    const std::optional<ProcReader::CpuTicks> ticks = reader.cpuTicks();
    QCOMPARE(ticks.has_value(), haveCpu);
    if (ticks) {
        QCOMPARE(ticks->user, user);
        QCOMPARE(ticks->system, system);
    }
    QCOMPARE(reader.bootTime().value_or(-1), bootTime);
    const std::optional<ProcReader::MemInfo> info = reader.memInfo();
    QCOMPARE(info && info->memTotal ? qint64(*info->memTotal) : qint64(-1), memTotal);
}

void TestProcReader::processStatsOfTrees_data()
{
    QTest::addColumn<QString>("tree");
    QTest::addColumn<bool>("readable");
    QTest::addColumn<QList<int>>("pids"); // sorted

    QTest::newRow("laptop: every pid read") << FixtureTree::path("proc-x86-laptop") << true
                                            << QList<int>{1, 2, 15, 57, 812, 1534, 2201};
    QTest::newRow("phone: every pid read") << FixtureTree::path("proc-arm64-phone") << true << QList<int>{1, 214, 640, 1320, 2675};
    QTest::newRow("damaged: only the sound stat survives, non-pid dirs ignored")
        << FixtureTree::path("proc-x86-damaged") << true << QList<int>{100};
    QTest::newRow("container: readable but empty") << FixtureTree::path("proc-container-empty") << true << QList<int>{};
    QTest::newRow("missing proc is unreadable") << FixtureTree::path("does-not-exist") << false << QList<int>{};
}

void TestProcReader::processStatsOfTrees()
{
    QFETCH(QString, tree);
    QFETCH(bool, readable);
    QFETCH(QList<int>, pids);

    const std::optional<QList<ProcReader::ProcStat>> stats = ProcReader(tree).processStats();
    QCOMPARE(stats.has_value(), readable);
    if (!stats)
        return;
    QList<int> found;
    for (const ProcReader::ProcStat &stat : *stats)
        found.append(stat.pid);
    std::sort(found.begin(), found.end());
    QCOMPARE(found, pids);
}

void TestProcReader::pidDirectoryWithoutStatIsSkipped()
{
    // A process that exits between the directory read and the open leaves a
    // directory (or nothing) behind; the scan goes on without it.
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QVERIFY(QDir(dir.path()).mkpath(QStringLiteral("proc/104")));
    QVERIFY(QDir(dir.path()).mkpath(QStringLiteral("proc/200")));
    QVERIFY(FixtureTree::writeFile(dir.filePath(QStringLiteral("proc/200/stat")), statLine(200, "survivor", 20, 5)));

    const std::optional<QList<ProcReader::ProcStat>> stats = ProcReader(dir.path()).processStats();
    QVERIFY(stats);
    QCOMPARE(stats->size(), 1);
    QCOMPARE(stats->first().pid, 200);
    QCOMPARE(stats->first().comm, QByteArray("survivor"));
}

QTEST_APPLESS_MAIN(TestProcReader)
#include "tst_procreader.moc"
