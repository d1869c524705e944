// Costs of one refresh tick of the statistics core, beside the floor that no
// reader can beat: opening, reading and closing every /proc/[pid]/stat.
#include "ProcReader.h"
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

// A tree of 1,000 processes with real-looking stat lines, built once per run.
class GeneratedTree {
public:
    static GeneratedTree &instance()
    {
        static GeneratedTree tree;
        return tree;
    }
    QString root() const { return m_dir.path(); }

private:
    GeneratedTree()
    {
        const QByteArray proc = QFile::encodeName(m_dir.path()) + "/proc";
        ::mkdir(proc.constData(), 0755);
        const QByteArray stat = "cpu  31186 17 14108 988118 734 5 364 9 0 0\nbtime 1700000000\n";
        writeFile(proc + "/stat", stat);
        for (int pid = 1; pid <= 1000; ++pid) {
            const QByteArray dir = proc + '/' + QByteArray::number(pid);
            ::mkdir(dir.constData(), 0755);
            const QByteArray line = QByteArray::number(pid) + " (worker-" + QByteArray::number(pid)
                + ") S 1 1 0 0 -1 4194560 1523 0 0 0 12 7 0 0 20 0 1 0 " + QByteArray::number(pid * 37)
                + " 5435392 710 18446744073709551615 94815633768448 94815634557853 140734943515104 0 0 0 65536 "
                  "3670016 1132560123 1 0 0 17 1 0 0 0 0 0 94815634791152 94815634839396 94816016547840 "
                  "140734943517498 140734943517513 140734943517513 140734943518698 0\n";
            writeFile(dir + "/stat", line);
        }
    }
    static void writeFile(const QByteArray &path, const QByteArray &data)
    {
        const int fd = ::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        if (fd < 0)
            return;
        if (::write(fd, data.constData(), size_t(data.size())) != data.size())
            std::fputs("bench_stats: short write while building the tree\n", stderr);
        ::close(fd);
    }
    QTemporaryDir m_dir;
};

QString treeFor(const benchmark::State &state)
{
    return state.range(0) == 0 ? QStringLiteral("/") : GeneratedTree::instance().root();
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

} // namespace

BENCHMARK_MAIN();
