#include "ScreenshotRunner.h"

#include "MonitorAppDelegate_iPad.h"
#include "MonitorAppDelegate_iPhone.h"
#include "PagingScrollView.h"
#include "ZoomView.h"
#include "iPadRootViewController.h"
#include "iPadTotalViewController.h"
#include "iPhoneRootViewController.h"

#include <QDir>
#include <QEventLoop>
#include <QImage>
#include <QTimer>
#include <QWidget>

#include <cstdio>
#include <functional>

namespace {

void spinEventLoop(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

// Two ticks half a second apart, so the CPU figures cover a real interval.
void runTwoTicks(QTimer *timer, const std::function<void()> &refresh)
{
    timer->stop();
    spinEventLoop(500);
    refresh();
    spinEventLoop(500);
    refresh();
}

// The window's pixels within area (all of it when empty).
bool save(QWidget *window, const QRect &area, const QString &directory, int number, const char *name)
{
    const QString path = QDir(directory).filePath(
        QStringLiteral("%1-%2.png").arg(number, 2, 10, QLatin1Char('0')).arg(QLatin1String(name)));
    const QImage image = (area.isEmpty() ? window->grab() : window->grab(area)).toImage();
    if (!image.save(path)) {
        std::fprintf(stderr, "kovar: cannot write %s\n", qPrintable(path));
        return false;
    }
    std::printf("%s\n", qPrintable(path));
    return true;
}

int phonePages(MonitorAppDelegate *delegate, iPhoneRootViewController *root, const QString &directory)
{
    runTwoTicks(root->systemStateGetTimer(), [root] { root->refreshSystemState(); });
    const char *names[] = {"summary", "processes", "system", "network"};
    for (int page = 0; page < 4; ++page) {
        root->mainScrollView()->scrollToPage(page, false);
        root->scrollViewDidEndDecelerating(root->mainScrollView());
        if (!save(delegate->window()->deviceScreen(), QRect(), directory, page + 1, names[page]))
            return 1;
    }
    return 0;
}

int tabletScreen(MonitorAppDelegate *delegate, iPadRootViewController *root, const QString &directory)
{
    runTwoTicks(root->systemStateGetTimer(), [root] { root->refreshSystemState(); });
    QWidget *window = delegate->window()->deviceScreen();
    if (!save(window, QRect(), directory, 1, "tablet"))
        return 1;
    iPadTotalViewController *summary = root->totalViewController();
    PagingScrollView *pager = summary->pager();
    // The pager's area with what lies under it, the background and the dark panel.
    const QRect pagerArea(pager->mapTo(window, QPoint(0, 0)), pager->size());
    const char *names[] = {"system", "network"};
    for (int page = 0; page < 2; ++page) {
        pager->scrollToPage(page, false);
        summary->scrollViewDidEndDecelerating(pager);
        if (!save(window, pagerArea, directory, page + 2, names[page]))
            return 1;
    }
    return 0;
}

} // namespace

int ScreenshotRunner::run(MonitorAppDelegate *delegate, const QString &directory)
{
    auto *phone = qobject_cast<MonitorAppDelegate_iPhone *>(delegate);
    auto *tablet = qobject_cast<MonitorAppDelegate_iPad *>(delegate);
    const bool launched = (phone && phone->rootViewController()) || (tablet && tablet->rootViewController());
    if (!launched) {
        std::fprintf(stderr, "kovar: --screenshot needs a launched screen\n");
        return 2;
    }
    if (!QDir().mkpath(directory)) {
        std::fprintf(stderr, "kovar: cannot create %s\n", qPrintable(directory));
        return 1;
    }
    if (phone)
        return phonePages(delegate, phone->rootViewController(), directory);
    return tabletScreen(delegate, tablet->rootViewController(), directory);
}
