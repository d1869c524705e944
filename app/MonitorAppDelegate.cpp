#include "MonitorAppDelegate.h"

#include "Device.h"
#include "GADBannerView.h"
#include "LaunchIdiom.h"
#include "LaunchOptions.h"
#include "ZoomView.h"

#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>
#include <QIcon>
#include <QPalette>
#include <QScreen>
#include <QShortcut>
#include <QWidget>

#include <cstdint>
#include <cstring>

namespace {

QWidget *makeOpaque(QWidget *widget, const QColor &color)
{
    QPalette palette = widget->palette();
    palette.setColor(QPalette::Window, color);
    widget->setPalette(palette);
    widget->setAutoFillBackground(true);
    return widget;
}

} // namespace

MonitorAppDelegate::MonitorAppDelegate(QSize windowSize, Device *device, QObject *parent)
    : QObject(parent)
    , _device(device ? device : Device::currentDevice())
{
    // The device screen keeps its size in points; the window shows it zoomed.
    auto *deviceScreen = makeOpaque(new QWidget, Qt::black);
    deviceScreen->setObjectName(QStringLiteral("deviceScreen"));
    deviceScreen->resize(windowSize);
    _statusBar = makeOpaque(new QWidget(deviceScreen), Qt::black);
    _statusBar->setObjectName(QStringLiteral("statusBar"));
    _statusBar->setGeometry(0, 0, windowSize.width(), LaunchIdiom::statusBarHeight);

    _rootView = new QWidget(deviceScreen);
    _rootView->setObjectName(QStringLiteral("rootView"));
    _rootView->setGeometry(0, LaunchIdiom::statusBarHeight, windowSize.width(),
                           windowSize.height() - LaunchIdiom::statusBarHeight);

    _window = std::make_unique<ZoomView>(deviceScreen);
    _window->setWindowTitle(QStringLiteral("KOVAR"));
    _window->setWindowIcon(QIcon(QStringLiteral(":/icons/kovar.svg")));
    // Linux's Quit key, named outright: platform themes without a key scheme have no Quit.
    auto *quit = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q), _window.get());
    quit->setContext(Qt::ApplicationShortcut);
    connect(quit, &QShortcut::activated, _window.get(), &QWidget::close);
    _window->installEventFilter(this);
}

MonitorAppDelegate::~MonitorAppDelegate()
{
    if (_application)
        _application->removeNativeEventFilter(this);
    _window->removeEventFilter(this);
}

ZoomView *MonitorAppDelegate::window() const
{
    return _window.get();
}

QWidget *MonitorAppDelegate::statusBar() const
{
    return _statusBar;
}

QWidget *MonitorAppDelegate::rootView() const
{
    return _rootView;
}

bool MonitorAppDelegate::application(QGuiApplication *application, const LaunchOptions &didFinishLaunchingWithOptions)
{
    // Before the root screen is built: its banner asks the ad server as it is made.
    if (!didFinishLaunchingWithOptions.adServer.isEmpty())
        GADBannerView::setConfiguredServerUrl(didFinishLaunchingWithOptions.adServer);
    if (application && application != _application) {
        if (_application)
            _application->removeNativeEventFilter(this);
        _application = application;
        application->installNativeEventFilter(this);
        connect(application, &QGuiApplication::applicationStateChanged, this,
                &MonitorAppDelegate::applicationStateDidChange);
        connect(application, &QCoreApplication::aboutToQuit, this, [this] { applicationWillTerminate(_application); });
    }
    // The status bar is the black band built with the window; the Summary page's battery
    // panel needs monitoring on before it reads the battery.
    _device->setBatteryMonitoringEnabled(true);
    // A handheld's own screen is filled, within what its shell leaves; a desktop window
    // opens at the size it was zoomed to.
    const QScreen *screen = _window->screen();
    if (screen && LaunchIdiom::isHandheld(screen->availableSize()))
        _window->showMaximized();
    else
        _window->show();
    return true;
}

void MonitorAppDelegate::applicationWillResignActive(QGuiApplication *application)
{
    Q_UNUSED(application);
}

void MonitorAppDelegate::applicationDidEnterBackground(QGuiApplication *application)
{
    Q_UNUSED(application);
    _device->setBatteryMonitoringEnabled(false);
}

void MonitorAppDelegate::applicationWillEnterForeground(QGuiApplication *application)
{
    Q_UNUSED(application);
}

void MonitorAppDelegate::applicationDidBecomeActive(QGuiApplication *application)
{
    Q_UNUSED(application);
    _device->setBatteryMonitoringEnabled(true);
}

void MonitorAppDelegate::applicationWillTerminate(QGuiApplication *application)
{
    Q_UNUSED(application);
}

void MonitorAppDelegate::applicationStateDidChange(Qt::ApplicationState state)
{
    switch (state) {
    case Qt::ApplicationActive:
        // A minimised window stays in the background even if the application has focus.
        if (_minimised)
            return;
        if (_inBackground) {
            _inBackground = false;
            applicationWillEnterForeground(_application);
        }
        applicationDidBecomeActive(_application);
        break;
    case Qt::ApplicationInactive:
        applicationWillResignActive(_application);
        break;
    case Qt::ApplicationHidden:
    case Qt::ApplicationSuspended:
        if (!_inBackground) {
            _inBackground = true;
            applicationDidEnterBackground(_application);
        }
        break;
    }
}

Device *MonitorAppDelegate::device() const
{
    return _device;
}

void MonitorAppDelegate::installRootView(QWidget *root)
{
    root->setParent(_rootView);
    root->setGeometry(_rootView->rect());
    root->show();
}

bool MonitorAppDelegate::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == _window.get() && event->type() == QEvent::WindowStateChange) {
        const bool minimised = _window->windowState() & Qt::WindowMinimized;
        if (minimised != _minimised) {
            _minimised = minimised;
            // Desktop window managers seldom report a minimised application as hidden;
            // the window's own state says it. Restoring a window brings it to the front.
            applicationStateDidChange(minimised ? Qt::ApplicationHidden : Qt::ApplicationActive);
        }
    }
    return QObject::eventFilter(watched, event);
}

bool MonitorAppDelegate::nativeEventFilter(const QByteArray &eventType, void *message, qintptr *)
{
    // The X protocol's DestroyNotify: event code 17 (the top bit marks a sent event), the
    // destroyed window's id at byte 8. Every X event arrives as 32 bytes.
    constexpr std::uint8_t DestroyNotify = 17;
    if (eventType != "xcb_generic_event_t" || !message)
        return false;
    const auto *bytes = static_cast<const std::uint8_t *>(message);
    if ((bytes[0] & 0x7f) != DestroyNotify)
        return false;
    std::uint32_t destroyed = 0;
    std::memcpy(&destroyed, bytes + 8, sizeof destroyed);
    if (destroyed != 0 && destroyed == _window->internalWinId())
        QMetaObject::invokeMethod(_window.get(), &QWidget::close, Qt::QueuedConnection);
    return false;
}
