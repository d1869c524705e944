#include "MonitorAppDelegate.h"

#include "Device.h"
#include "GADBannerView.h"
#include "LaunchIdiom.h"
#include "LaunchOptions.h"

#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>
#include <QIcon>
#include <QPalette>
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
    , m_device(device ? device : Device::currentDevice())
    , m_window(std::make_unique<QWidget>())
{
    m_window->setWindowTitle(QStringLiteral("KOVAR"));
    m_window->setWindowIcon(QIcon(QStringLiteral(":/icons/kovar.svg")));
    // Linux's Quit key, named outright: platform themes without a key scheme have no Quit.
    auto *quit = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q), m_window.get());
    quit->setContext(Qt::ApplicationShortcut);
    connect(quit, &QShortcut::activated, m_window.get(), &QWidget::close);
    // Portrait only: whatever the window manager tries, the device screen keeps its shape.
    m_window->setFixedSize(windowSize);
    makeOpaque(m_window.get(), Qt::black);

    m_statusBar = makeOpaque(new QWidget(m_window.get()), Qt::black);
    m_statusBar->setObjectName(QStringLiteral("statusBar"));
    m_statusBar->setGeometry(0, 0, windowSize.width(), LaunchIdiom::statusBarHeight);

    m_rootView = new QWidget(m_window.get());
    m_rootView->setObjectName(QStringLiteral("rootView"));
    m_rootView->setGeometry(0, LaunchIdiom::statusBarHeight, windowSize.width(),
                            windowSize.height() - LaunchIdiom::statusBarHeight);

    m_window->installEventFilter(this);
}

MonitorAppDelegate::~MonitorAppDelegate()
{
    if (m_application)
        m_application->removeNativeEventFilter(this);
    m_window->removeEventFilter(this);
}

QWidget *MonitorAppDelegate::window() const
{
    return m_window.get();
}

QWidget *MonitorAppDelegate::statusBar() const
{
    return m_statusBar;
}

QWidget *MonitorAppDelegate::rootView() const
{
    return m_rootView;
}

bool MonitorAppDelegate::application(QGuiApplication *application, const LaunchOptions &didFinishLaunchingWithOptions)
{
    // Before the root screen is built: its banner asks the ad server as it is made.
    if (!didFinishLaunchingWithOptions.adServer.isEmpty())
        GADBannerView::setConfiguredServerUrl(didFinishLaunchingWithOptions.adServer);
    if (application && application != m_application) {
        if (m_application)
            m_application->removeNativeEventFilter(this);
        m_application = application;
        application->installNativeEventFilter(this);
        connect(application, &QGuiApplication::applicationStateChanged,
                this, &MonitorAppDelegate::applicationStateDidChange);
        connect(application, &QCoreApplication::aboutToQuit, this, [this] {
            applicationWillTerminate(m_application);
        });
    }
    // The status bar is the black band built with the window; the Summary page's battery
    // panel needs monitoring on before it reads the battery.
    m_device->setBatteryMonitoringEnabled(true);
    m_window->show();
    return true;
}

void MonitorAppDelegate::applicationWillResignActive(QGuiApplication *application)
{
    Q_UNUSED(application);
}

void MonitorAppDelegate::applicationDidEnterBackground(QGuiApplication *application)
{
    Q_UNUSED(application);
    m_device->setBatteryMonitoringEnabled(false);
}

void MonitorAppDelegate::applicationWillEnterForeground(QGuiApplication *application)
{
    Q_UNUSED(application);
}

void MonitorAppDelegate::applicationDidBecomeActive(QGuiApplication *application)
{
    Q_UNUSED(application);
    m_device->setBatteryMonitoringEnabled(true);
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
        if (m_minimised)
            return;
        if (m_inBackground) {
            m_inBackground = false;
            applicationWillEnterForeground(m_application);
        }
        applicationDidBecomeActive(m_application);
        break;
    case Qt::ApplicationInactive:
        applicationWillResignActive(m_application);
        break;
    case Qt::ApplicationHidden:
    case Qt::ApplicationSuspended:
        if (!m_inBackground) {
            m_inBackground = true;
            applicationDidEnterBackground(m_application);
        }
        break;
    }
}

Device *MonitorAppDelegate::device() const
{
    return m_device;
}

void MonitorAppDelegate::installRootView(QWidget *root)
{
    root->setParent(m_rootView);
    root->setGeometry(m_rootView->rect());
    root->show();
}

bool MonitorAppDelegate::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_window.get() && event->type() == QEvent::WindowStateChange) {
        const bool minimised = m_window->windowState() & Qt::WindowMinimized;
        if (minimised != m_minimised) {
            m_minimised = minimised;
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
    if (destroyed != 0 && destroyed == m_window->internalWinId())
        QMetaObject::invokeMethod(m_window.get(), &QWidget::close, Qt::QueuedConnection);
    return false;
}
