// One refresh tick of the phone screen with 1,000 processes, in its three parts:
// sampling the statistics core, updating the pages' models and labels, and painting
// the visible page. A tick must stay well inside one 16 ms frame.
#include "GeneratedProcTree.h"
#include "StatCore.h"
#include "ZoomView.h"
#include "iPhoneProcessesViewController.h"
#include "iPhoneTotalViewController.h"

#include <QApplication>
#include <QDir>
#include <QImage>
#include <QPainter>

#include <benchmark/benchmark.h>

namespace {

struct Tick {
    CpuUsageData cpu;
    MemoryUsageData memory;
    std::optional<QList<ProcessRecord>> processes;
};

StatCore &core()
{
    static StatCore core(GeneratedProcTree::instance().root(), QDir::homePath());
    return core;
}

Tick sample()
{
    return Tick{core().cpuUsage(), core().memoryUsage(), core().runningProcesses()};
}

template<typename Page>
std::unique_ptr<Page> makePage()
{
    auto page = std::make_unique<Page>();
    page->resize(320, 460);
    page->viewDidLoad();
    return page;
}

void BM_TickSampling(benchmark::State &state)
{
    sample(); // start times cached, as after the first tick
    for (auto _ : state)
        benchmark::DoNotOptimize(sample());
}
BENCHMARK(BM_TickSampling)->Unit(benchmark::kMicrosecond);

void BM_TickModelUpdate(benchmark::State &state)
{
    auto summary = makePage<iPhoneTotalViewController>();
    auto processes = makePage<iPhoneProcessesViewController>();
    const Tick tick = sample();
    for (auto _ : state) {
        summary->setCpuUsageData(tick.cpu);
        processes->setCpuUsageData(tick.cpu);
        summary->setMemoryUsageData(tick.memory);
        processes->setProcData(tick.processes);
    }
    state.counters["processes"] = double(tick.processes ? tick.processes->size() : 0);
}
BENCHMARK(BM_TickModelUpdate)->Unit(benchmark::kMicrosecond);

// Painting the page on screen after a tick (the other pages are off screen).
template<typename Page>
void BM_TickPaint(benchmark::State &state)
{
    auto page = makePage<Page>();
    const Tick tick = sample();
    if constexpr (std::is_same_v<Page, iPhoneTotalViewController>) {
        for (int i = 0; i < 60; ++i)
            page->setCpuUsageData(CpuUsageData{quint32(10 + i), 5, 85, 15.0});
        page->setMemoryUsageData(tick.memory);
    } else {
        page->setProcData(tick.processes);
    }
    QImage image(page->size(), QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state) {
        image.fill(Qt::black);
        page->render(&image);
        benchmark::DoNotOptimize(image.bits());
    }
}
BENCHMARK(BM_TickPaint<iPhoneTotalViewController>)->Name("BM_TickPaint/Summary")->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_TickPaint<iPhoneProcessesViewController>)->Name("BM_TickPaint/Processes")->Unit(benchmark::kMicrosecond);

// What the window repaints after a tick of the Summary page, zoomed (percent): new CPU and memory
// figures, then the window's update drawn through the zooming view into its backing store.
void BM_TickRepaintZoomed(benchmark::State &state)
{
    const qreal zoom = state.range(0) / 100.0;
    auto *screen = new QWidget;
    screen->resize(320, 460);
    auto *page = new iPhoneTotalViewController(screen);
    page->resize(320, 460);
    page->viewDidLoad();
    Tick tick = sample();
    for (int i = 0; i < 60; ++i)
        page->setCpuUsageData(CpuUsageData{quint32(10 + i), 5, 85, 15.0});
    page->setMemoryUsageData(tick.memory);
    ZoomView view(screen);
    view.resize((QSizeF(320, 460) * zoom).toSize());
    view.show();
    QCoreApplication::processEvents();
    quint32 busy = 0;
    for (auto _ : state) {
        busy = (busy + 7) % 90;
        page->setCpuUsageData(CpuUsageData{busy, 5, 95 - busy, 15.0});
        tick.memory.free += 4 << 20; // a figure that moves, as it does between ticks
        page->setMemoryUsageData(tick.memory);
        QCoreApplication::processEvents();
    }
    state.counters["zoom"] = zoom;
}
BENCHMARK(BM_TickRepaintZoomed)->Arg(100)->Arg(175)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
