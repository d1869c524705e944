#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QSize>

#include <memory>

class Device;
class LaunchOptions;
class QGuiApplication;
class QWidget;
class ZoomView;

// The application delegate: owns the window (a band standing for the opaque black
// status bar, and the root view under it, drawn at the window's zoom), switches battery monitoring on while the
// application is active and off while it is hidden or minimised. The idiom's subclass
// installs the root screen. Ctrl+Q closes the window, and so does the window system
// destroying it; the application ends when its window closes.
class MonitorAppDelegate : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    // device: whose battery monitoring follows the application; Device::currentDevice()
    // when null.
    explicit MonitorAppDelegate(QSize windowSize, Device *device = nullptr, QObject *parent = nullptr);
    ~MonitorAppDelegate() override;

    // The window, which shows the device screen (status bar and root view) zoomed.
    ZoomView *window() const;
    QWidget *statusBar() const;
    QWidget *rootView() const; // the area under the status bar

    // Launch: the ad server asked for on the command line, battery monitoring on, window
    // shown. Returns true.
    virtual bool application(QGuiApplication *application, const LaunchOptions &didFinishLaunchingWithOptions);

    void applicationWillResignActive(QGuiApplication *application);
    void applicationDidEnterBackground(QGuiApplication *application);
    void applicationWillEnterForeground(QGuiApplication *application);
    void applicationDidBecomeActive(QGuiApplication *application);
    void applicationWillTerminate(QGuiApplication *application);

    // Another X client may destroy the window: that closes it too.
    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

public Q_SLOTS:
    // Fed by QGuiApplication::applicationStateChanged; a minimised window counts as hidden.
    void applicationStateDidChange(Qt::ApplicationState state);

protected:
    Device *device() const;
    // Puts the root screen's widget into the root view, filling it.
    void installRootView(QWidget *root);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    Device *_device;
    std::unique_ptr<ZoomView> _window;
    QWidget *_statusBar = nullptr;
    QWidget *_rootView = nullptr;
    QGuiApplication *_application = nullptr;
    bool _inBackground = false;
    bool _minimised = false;
};
