#pragma once

#include "MonitorAppDelegate.h"

class iPhoneRootViewController;

// The phone idiom's delegate: installs iPhoneRootViewController under the status bar.
class MonitorAppDelegate_iPhone : public MonitorAppDelegate {
    Q_OBJECT

public:
    explicit MonitorAppDelegate_iPhone(QSize windowSize, Device *device = nullptr, QObject *parent = nullptr);

    iPhoneRootViewController *rootViewController() const;

    bool application(QGuiApplication *application, const LaunchOptions &didFinishLaunchingWithOptions) override;

private:
    // Owned by the window's hierarchy, not by the delegate.
    iPhoneRootViewController *_rootViewController = nullptr;
};
