// Soak: 20,000 refresh ticks (sampling, the pages' models and labels, painting the
// visible page, no timer wait) over a generated /proc of 1,000 processes of which
// 10 % are replaced every tick, pids reused. Prints the resident set and the live
// heap every 2,000 ticks; memory held for dead processes shows up as growth.
//   bench_soak [TICKS [PROCESSES]]
#include "GeneratedProcTree.h"
#include "StatCore.h"
#include "iPhoneProcessesViewController.h"
#include "iPhoneTotalViewController.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QImage>

#include <cstdio>
#include <cstdlib>
#include <malloc.h>

namespace {

double mebibytes(double bytes)
{
    return bytes / (1024.0 * 1024.0);
}

double residentBytes()
{
    long pages = 0;
    long resident = 0;
    if (FILE *statm = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(statm, "%ld %ld", &pages, &resident) != 2)
            resident = 0;
        std::fclose(statm);
    }
    return double(resident) * double(::sysconf(_SC_PAGESIZE));
}

double liveHeapBytes()
{
    return double(::mallinfo2().uordblks);
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const int ticks = argc > 1 ? std::atoi(argv[1]) : 20000;
    const int processes = argc > 2 ? std::atoi(argv[2]) : 1000;
    constexpr int reportEvery = 2000;

    GeneratedProcTree tree(processes);
    StatCore core(tree.root(), QString());
    iPhoneTotalViewController summary;
    iPhoneProcessesViewController list;
    summary.resize(320, 460);
    list.resize(320, 460);
    summary.viewDidLoad();
    list.viewDidLoad();
    QImage screen(320, 460, QImage::Format_ARGB32_Premultiplied);

    std::printf("%8s %10s %10s %10s %12s %10s\n", "tick", "RSS MiB", "heap MiB", "processes", "start times", "ms/tick");
    double heapAtFirstReport = 0.0;
    double rssAtFirstReport = 0.0;
    QElapsedTimer clock;
    qint64 tickNanoseconds = 0;
    for (int tick = 1; tick <= ticks; ++tick) {
        tree.churn(processes / 10);
        clock.start();
        const CpuUsageData cpu = core.cpuUsage();
        summary.setCpuUsageData(cpu);
        list.setCpuUsageData(cpu);
        summary.setMemoryUsageData(core.memoryUsage());
        list.setProcData(core.runningProcesses());
        // The page on screen alternates, as a user turns pages now and then.
        if ((tick / 50) % 2)
            list.render(&screen);
        else
            summary.render(&screen);
        app.processEvents();
        tickNanoseconds += clock.nsecsElapsed();

        if (tick % reportEvery == 0 || tick == ticks) {
            const double heap = liveHeapBytes();
            const double rss = residentBytes();
            if (tick == reportEvery || (ticks < reportEvery && tick == ticks)) {
                heapAtFirstReport = heap;
                rssAtFirstReport = rss;
            }
            std::printf("%8d %10.2f %10.2f %10lld %12lld %10.3f\n", tick, mebibytes(rss), mebibytes(heap),
                        static_cast<long long>(tree.processCount()), static_cast<long long>(core.startTimeCacheSize()),
                        double(tickNanoseconds) / 1e6 / double(tick % reportEvery ? tick % reportEvery : reportEvery));
            std::fflush(stdout);
            tickNanoseconds = 0;
        }
    }
    const double heapGrowth = liveHeapBytes() - heapAtFirstReport;
    const double rssGrowth = residentBytes() - rssAtFirstReport;
    std::printf("growth after tick %d: live heap %+.3f MiB, RSS %+.3f MiB (goal: under 1 MiB)\n", reportEvery,
                mebibytes(heapGrowth), mebibytes(rssGrowth));
    return heapGrowth < 1024.0 * 1024.0 ? 0 : 1;
}
