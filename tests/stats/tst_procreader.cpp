#include "FixtureTree.h"
#include "ProcReader.h"

#include <QtTest>

using namespace FixtureTree;

namespace {

QString optional(const std::optional<quint64> &value)
{
    return value ? QString::number(*value) : QStringLiteral("-");
}

} // namespace

// The kernel's text files as the reader sees them in trees copied from real machines,
// damaged ones included: a garbled figure is left out, never guessed.
class TestProcReader : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void readers_data() { addRows("proc-reader.tsv", {"tree", "cpu", "memory", "boot", "processes"}); }
    void readers()
    {
        QFETCH(QString, tree);
        const ProcReader reader(path(tree));

        const std::optional<ProcReader::CpuTicks> ticks = reader.cpuTicks();
        QTEST(ticks ? QStringLiteral("%1 %2 %3").arg(ticks->user).arg(ticks->system).arg(ticks->idle)
                    : QStringLiteral("-"),
              "cpu");
        if (ticks)
            QCOMPARE(ticks->nice, quint64(0));

        const ProcReader::MemInfo memory = reader.memInfo().value_or(ProcReader::MemInfo{});
        QTEST(QStringList({optional(memory.memTotal), optional(memory.memFree), optional(memory.active),
                           optional(memory.inactive)})
                  .join(u' '),
              "memory");

        const std::optional<qint64> boot = reader.bootTime();
        QTEST(boot ? QString::number(*boot) : QStringLiteral("-"), "boot");

        const std::optional<QList<ProcReader::ProcStat>> stats = reader.processStats();
        QStringList processes;
        for (const ProcReader::ProcStat &stat : stats.value_or(QList<ProcReader::ProcStat>{}))
            processes << QStringLiteral("%1:%2:%3:%4")
                             .arg(stat.pid)
                             .arg(QString::fromUtf8(stat.comm))
                             .arg(stat.priority)
                             .arg(stat.startTicks);
        QTEST(stats ? processes.join(u'|') : QStringLiteral("<none>"), "processes");

        // The pid list is the directories, whether or not their stat files can be read.
        const std::optional<QList<int>> pids = reader.pids();
        QCOMPARE(bool(pids), bool(stats));
        if (pids) {
            QVERIFY(std::is_sorted(pids->begin(), pids->end()));
            QVERIFY(pids->size() >= stats->size());
        }
    }
};

QTEST_APPLESS_MAIN(TestProcReader)
#include "tst_procreader.moc"
