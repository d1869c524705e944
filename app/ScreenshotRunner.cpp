#include "ScreenshotRunner.h"

#include "MonitorAppDelegate_iPhone.h"
#include "PagingScrollView.h"
#include "iPhoneRootViewController.h"

#include <QDir>
#include <QEventLoop>
#include <QImage>
#include <QTimer>
#include <QWidget>

#include <cstdio>

namespace {

void spinEventLoop(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace

int ScreenshotRunner::run(MonitorAppDelegate *delegate, const QString &directory)
{
    auto *phone = qobject_cast<MonitorAppDelegate_iPhone *>(delegate);
    if (!phone || !phone->rootViewController()) {
        std::fprintf(stderr, "kovar: --screenshot renders the phone pages; use --idiom phone\n");
        return 2;
    }
    if (!QDir().mkpath(directory)) {
        std::fprintf(stderr, "kovar: cannot create %s\n", qPrintable(directory));
        return 1;
    }
    iPhoneRootViewController *root = phone->rootViewController();

    // Two ticks half a second apart, so the CPU figures cover a real interval.
    root->systemStateGetTimer()->stop();
    spinEventLoop(500);
    root->refreshSystemState();
    spinEventLoop(500);
    root->refreshSystemState();

    const char *names[] = {"summary", "processes", "system", "network"};
    for (int page = 0; page < 4; ++page) {
        root->mainScrollView()->setContentOffset(QPointF(page * root->width(), 0), false);
        root->scrollViewDidEndDecelerating(root->mainScrollView());
        const QString path = QDir(directory).filePath(QStringLiteral("%1-%2.png")
                                                          .arg(page + 1, 2, 10, QLatin1Char('0'))
                                                          .arg(QLatin1String(names[page])));
        if (!delegate->window()->grab().toImage().save(path)) {
            std::fprintf(stderr, "kovar: cannot write %s\n", qPrintable(path));
            return 1;
        }
        std::printf("%s\n", qPrintable(path));
    }
    return 0;
}
