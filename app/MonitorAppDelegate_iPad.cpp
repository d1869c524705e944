#include "MonitorAppDelegate_iPad.h"

#include "iPadRootViewController.h"

MonitorAppDelegate_iPad::MonitorAppDelegate_iPad(QSize windowSize, Device *device, QObject *parent)
    : MonitorAppDelegate(windowSize, device, parent)
{
}

iPadRootViewController *MonitorAppDelegate_iPad::rootViewController() const
{
    return _rootViewController;
}

bool MonitorAppDelegate_iPad::application(QGuiApplication *application,
                                          const LaunchOptions &didFinishLaunchingWithOptions)
{
    MonitorAppDelegate::application(application, didFinishLaunchingWithOptions);
    // The window is already visible when the root screen goes in, so the root screen
    // builds itself at its final size. A second launch call keeps the first root screen.
    if (!_rootViewController) {
        _rootViewController = new iPadRootViewController(nullptr, device());
        installRootView(_rootViewController);
        _rootViewController->viewDidLoad();
    }
    return true;
}
