// Costs of one refresh tick of the statistics core, beside the floor that no
// reader can beat: opening, reading and closing every /proc/[pid]/stat.
#include "GeneratedProcTree.h"
#include "MetricsExposition.h"
#include "ProcReader.h"
#include "ProcessDetailsReader.h"
#include "StatCore.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
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
// scrape interval spends this once a second.
void BM_MetricsScrape(benchmark::State &state)
{
    StatCore core(treeFor(state), QDir::homePath());
    qsizetype bytes = 0;
    for (auto _ : state) {
        const QByteArray body = MetricsExposition::render(MetricsExposition::sample(core),
                                                          MetricsExposition::Format::OpenMetrics);
        bytes = body.size();
        benchmark::DoNotOptimize(body);
    }
    state.counters["bytes"] = double(bytes);
    state.SetLabel(labelFor(state));
}
BENCHMARK(BM_MetricsScrape)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
