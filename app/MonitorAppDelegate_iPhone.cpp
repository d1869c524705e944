#include "MonitorAppDelegate_iPhone.h"

#include "iPhoneRootViewController.h"

MonitorAppDelegate_iPhone::MonitorAppDelegate_iPhone(QSize windowSize, Device *device, QObject *parent)
    : MonitorAppDelegate(windowSize, device, parent)
{
}

iPhoneRootViewController *MonitorAppDelegate_iPhone::rootViewController() const
{
    return _rootViewController;
}

bool MonitorAppDelegate_iPhone::application(QGuiApplication *application,
                                            const LaunchOptions &didFinishLaunchingWithOptions)
{
    MonitorAppDelegate::application(application, didFinishLaunchingWithOptions);
    // The window is already visible when the root screen goes in, so the root screen
    // builds itself at its final size. A second launch call keeps the first root screen.
    if (!_rootViewController) {
        _rootViewController = new iPhoneRootViewController(nullptr, device());
        installRootView(_rootViewController);
        _rootViewController->viewDidLoad();
    }
    return true;
}
