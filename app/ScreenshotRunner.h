#pragma once

#include <QString>

class MonitorAppDelegate;

// --screenshot: lets the launched screen run two refresh ticks, then renders it into DIR
// as NN-name.png. The phone: the whole window once per page (01-summary ... 04-network).
// The tablet: the whole window as it opens (01-tablet), then the pager's area on each of
// its pages (02-system, 03-network).
class ScreenshotRunner {
public:
    // Returns the process exit status: 0 when every picture was written.
    static int run(MonitorAppDelegate *delegate, const QString &directory);
};
