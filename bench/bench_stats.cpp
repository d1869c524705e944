// Costs of one refresh tick of the statistics core, beside the floor that no
// reader can beat: opening, reading and closing every /proc/[pid]/stat.
#include "FileSystemReader.h"
#include "GeneratedProcTree.h"
#include "MetricsExposition.h"
#include "ProcReader.h"
#include "ProcessDetailsReader.h"
#include "StatCore.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace {

QString treeFor(const benchmark::State &state)
{
    return state.range(0) == 0 ? QStringLiteral("/") : GeneratedProcTree::instance().root();
}

const char *labelFor(const benchmark::State &state)
{
    return state.range(0) == 0 ? "live /proc" : "1,000-process tree";
}

// The floor: only open, read and close each stat file of the same pids.
void BM_Floor_OpenReadClose(benchmark::State &state)
{
    const ProcReader reader(treeFor(state));
    QList<QByteArray> paths;
    for (int pid : reader.pids().value_or(QList<int>()))
        paths.append(reader.statPath(pid));
    char buffer[4096];
    for (auto _ : state) {
        for (const QByteArray &path : paths) {
            const int fd = ::open(path.constData(), O_RDONLY | O_CLOEXEC);
            if (fd < 0)
                continue;
            benchmark::DoNotOptimize(::read(fd, buffer, sizeof buffer));
            ::close(fd);
        }
    }
    state.counters["processes"] = double(paths.size());
    state.SetLabel(labelFor(state));
}
BENCHMARK(BM_Floor_OpenReadClose)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

// A refresh as the timer does it: start times come from the cache after the first scan.
void BM_RunningProcesses(benchmark::State &state)
{
    const QString root = treeFor(state);
    StatCore core(root, QDir::homePath());
    core.runningProcesses(); // fills the start-time cache
    qsizetype count = 0;
    for (auto _ : state) {
        const std::optional<QList<ProcessRecord>> processes = core.runningProcesses();
        count = processes ? processes->size() : 0;
        benchmark::DoNotOptimize(processes);
    }
    state.counters["processes"] = double(count);
    state.SetLabel(labelFor(state));
}
BENCHMARK(BM_RunningProcesses)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

// The first scan of a fresh core formats every start time.
void BM_RunningProcessesColdCache(benchmark::State &state)
{
    const QString root = treeFor(state);
    for (auto _ : state) {
        state.PauseTiming();
        auto core = std::make_unique<StatCore>(root, QDir::homePath());
        state.ResumeTiming();
        benchmark::DoNotOptimize(core->runningProcesses());
    }
    state.SetLabel(labelFor(state));
}
BENCHMARK(BM_RunningProcessesColdCache)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

void BM_CpuAndMemoryUsage(benchmark::State &state)
{
    StatCore core(QStringLiteral("/"), QDir::homePath());
    for (auto _ : state) {
        benchmark::DoNotOptimize(core.cpuUsage());
        benchmark::DoNotOptimize(core.memoryUsage());
    }
}
BENCHMARK(BM_CpuAndMemoryUsage)->Unit(benchmark::kMicrosecond);

// Beside the generated processes: eight CPUs, a few network devices, pressure files and
// 50 mounted file systems (directories of the tree, so that statvfs finds them), the rest
// of what a scrape reads on a busy server. Written once.
void addServerFiles(const QString &root)
{
    static bool written = false;
    if (written)
        return;
    written = true;
    const auto write = [&](const QString &relative, const QByteArray &data) {
        QDir().mkpath(QFileInfo(root + relative).path());
        QFile file(root + relative);
        if (file.open(QIODevice::WriteOnly))
            file.write(data);
    };
    QFile statFile(root + QStringLiteral("/proc/stat"));
    QByteArray stat = statFile.open(QIODevice::ReadOnly) ? statFile.readAll() : QByteArray();
    for (int cpu = 7; cpu >= 0; --cpu)
        stat.insert(stat.indexOf('\n') + 1, "cpu" + QByteArray::number(cpu) + " 1203 12 912 90331 120 0 31 0 0 0\n");
    write(QStringLiteral("/proc/stat"), stat);
    write(QStringLiteral("/proc/loadavg"), "3.02 2.91 2.80 4/1021 91203\n");
    for (const char *resource : {"cpu", "memory", "io"})
        write(QStringLiteral("/proc/pressure/") + QLatin1String(resource),
              "some avg10=0.41 avg60=0.38 avg300=0.46 total=145027577\nfull avg10=0.00 avg60=0.25 avg300=0.39 "
              "total=107896913\n");
    QByteArray dev = "Inter-|   Receive\n face |bytes\n";
    for (const char *name : {"lo", "eno1", "eno2", "bond0", "docker0", "veth1a2b3c"})
        dev += QByteArray(name) + ": 912033120 1203312 0 0 0 0 0 0 912033120 1203312 0 0 0 0 0 0\n";
    write(QStringLiteral("/proc/net/dev"), dev);
    QByteArray mounts = "22 1 0:21 / /proc rw - proc proc rw\n23 1 0:22 / /sys rw - sysfs sysfs rw\n";
    for (int i = 0; i < 50; ++i) {
        const QByteArray point = "/srv/data" + QByteArray::number(i);
        QDir().mkpath(root + QString::fromLatin1(point));
        mounts += QByteArray::number(30 + i) + " 1 253:" + QByteArray::number(i) + " / " + point
            + " rw,noatime - xfs /dev/mapper/vg0-data" + QByteArray::number(i) + " rw\n";
    }
    write(QStringLiteral("/proc/self/mountinfo"), mounts);
}

// What the details sheet adds to a tick: the files of the one process it shows (this one,
// live: command line, executable, cgroup, owner and smaps_rollup's PSS).
void BM_ProcessDetails(benchmark::State &state)
{
    const ProcessDetailsReader reader;
    const int pid = int(::getpid());
    for (auto _ : state)
        benchmark::DoNotOptimize(reader.details(pid));
}
BENCHMARK(BM_ProcessDetails)->Unit(benchmark::kMicrosecond);

// What one scrape of kovar --serve-metrics samples and writes, the battery aside (the
// device keeps that figure itself) and the device's names (read once a minute): a 1 s
// scrape interval spends this once a second. The CPU time is the process's, so that the
// file-system worker's share counts.
void BM_MetricsScrape(benchmark::State &state)
{
    const QString root = treeFor(state);
    if (state.range(0) != 0)
        addServerFiles(root);
    StatCore core(root, QDir::homePath());
    FileSystemReader fileSystems(root);
    qsizetype bytes = 0;
    qsizetype mounts = 0;
    for (auto _ : state) {
        const MetricsExposition::Sample sample = MetricsExposition::sample(core, &fileSystems);
        const QByteArray body = MetricsExposition::render(sample, MetricsExposition::Format::OpenMetrics);
        bytes = body.size();
        mounts = sample.fileSystems.size();
        benchmark::DoNotOptimize(body);
    }
    state.counters["bytes"] = double(bytes);
    state.counters["file systems"] = double(mounts);
    state.SetLabel(labelFor(state));
}
BENCHMARK(BM_MetricsScrape)->Arg(0)->Arg(1)->MeasureProcessCPUTime()->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
