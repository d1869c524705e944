#pragma once

#include "MonitorAppDelegate.h"

class iPadRootViewController;

// The tablet idiom's delegate: installs iPadRootViewController under the status bar.
class MonitorAppDelegate_iPad : public MonitorAppDelegate {
    Q_OBJECT

public:
    explicit MonitorAppDelegate_iPad(QSize windowSize, Device *device = nullptr, QObject *parent = nullptr);

    iPadRootViewController *rootViewController() const;

    bool application(QGuiApplication *application, const LaunchOptions &didFinishLaunchingWithOptions) override;

private:
    // Owned by the window's hierarchy, not by the delegate.
    iPadRootViewController *_rootViewController = nullptr;
};
