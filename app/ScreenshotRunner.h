#pragma once

#include <QString>

class MonitorAppDelegate;

// --screenshot: lets the launched phone screen run two refresh ticks, then renders the
// whole window once per page into DIR as NN-name.png.
class ScreenshotRunner {
public:
    // Returns the process exit status: 0 when every page was written.
    static int run(MonitorAppDelegate *delegate, const QString &directory);
};
