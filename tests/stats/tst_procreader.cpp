#include "FixtureTree.h"
#include "ProcReader.h"
#include "ProcessDetailsReader.h"
#include "ProcessSignaller.h"

#include <csignal>

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

    void processFigures_data() { addRows("process-figures.tsv", {"tree", "pid", "stat", "details"}); }
    void processFigures()
    {
        QFETCH(QString, tree);
        QFETCH(QString, pid);
        const std::optional<ProcReader::ProcStat> stat = ProcReader(path(tree)).processStat(pid.toInt());
        QTEST(stat ? QStringLiteral("%1 %2 %3 %4 %5 %6")
                         .arg(QLatin1Char(stat->state))
                         .arg(stat->parentPid)
                         .arg(stat->threads)
                         .arg(int(stat->kernelThread))
                         .arg(stat->cpuTicks)
                         .arg(optional(stat->residentPages))
                   : QStringLiteral("-"),
              "stat");
        const ProcessDetails details = ProcessDetailsReader(path(tree)).details(pid.toInt());
        QTEST(QStringList({details.commandLine, details.executable, details.unit,
                           details.uid ? details.user : QStringLiteral("-"), optional(details.proportionalBytes)})
                  .join(QStringLiteral(" | ")),
              "details");
    }

    // Only the process that was listed is ever signalled, and only one that may be.
    void signaller_data()
    {
        addRows("signaller.tsv", {"tree", "pid", "listedStart", "pidfd", "answer", "ownPid", "calls", "message"});
    }
    void signaller()
    {
        QFETCH(QString, tree);
        QFETCH(QString, pid);
        QFETCH(QString, pidfd);
        QFETCH(QString, answer);
        const auto code = [](const QString &name) {
            return name == u"ENOSYS" ? -ENOSYS : name == u"EPERM" ? -EPERM : name == u"ESRCH" ? -ESRCH : name.toInt();
        };
        QStringList calls;
        ProcessSignaller::Seams seams;
        seams.openPidfd = [&](int) { return code(pidfd); };
        seams.sendByPidfd = [&](int fd, int signal) {
            calls << QStringLiteral("pidfd %1 %2").arg(fd).arg(signal);
            return code(answer);
        };
        seams.sendByPid = [&](int target, int signal) {
            calls << QStringLiteral("kill %1 %2").arg(target).arg(signal);
            return code(answer);
        };
        seams.closePidfd = [&](int fd) { calls << QStringLiteral("close %1").arg(fd); };
        QFETCH(QString, ownPid);
        seams.ownPid = ownPid.toInt();
        QFETCH(QString, listedStart);
        const std::optional<ProcReader::ProcStat> stat = ProcReader(path(tree)).processStat(pid.toInt());
        QVERIFY(stat);
        {
            ProcessSignaller signaller(path(tree), seams);
            signaller.pin(pid.toInt(), QString::fromUtf8(stat->comm), listedStart.toULongLong(), stat->kernelThread);
            const ProcessSignaller::Outcome outcome = signaller.send(SIGTERM);
            QFETCH(QString, message);
            QVERIFY2(outcome.message.contains(message), qPrintable(outcome.message));
            QCOMPARE(outcome.sent, message == u"was asked to end");
        }
        // The pidfd is closed once, when the process is let go.
        QTEST(calls.join(QStringLiteral(", ")), "calls");
    }
};

QTEST_APPLESS_MAIN(TestProcReader)
#include "tst_procreader.moc"
