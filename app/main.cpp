#include "Device.h"
#include "IdiomDelegate.h"
#include "LaunchIdiom.h"
#include "LaunchOptions.h"
#include "MetricsServer.h"
#include "MonitorAppDelegate.h"
#include "PlatformStart.h"
#include "ScreensAccessibility.h"
#include "ScreenshotRunner.h"
#include "StatCore.h"
#include "StatSnapshot.h"
#include "TerminationSignals.h"
#include "WebConfigWatch.h"
#include "ZoomView.h"
#include "ZoomViewAccessible.h"

#include <QAccessible>
#include <QApplication>
#include <QCoreApplication>
#include <QHostAddress>
#include <QProcessEnvironment>
#include <QScreen>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <memory>

int main(int argc, char *argv[])
{
    QCoreApplication::setApplicationName(QStringLiteral("kovar"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KOVAR_VERSION));
    // Wayland compositors and phone shells find the desktop entry, and so the icon, by this name.
    QGuiApplication::setDesktopFileName(QStringLiteral(KOVAR_APP_ID));

    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    const LaunchOptions options = LaunchOptions::parse(arguments);

    if (!options.error.isEmpty()) {
        std::fprintf(stderr, "kovar: %s\nTry \"kovar --help\" for the options.\n", qPrintable(options.error));
        return 2;
    }
    if (options.help) {
        std::fputs(qPrintable(LaunchOptions::helpText()), stdout);
        return 0;
    }
    if (options.version) {
        std::printf("kovar %s\n", KOVAR_VERSION);
        return 0;
    }

    if (options.snapshot) {
        // No display needed: the snapshot only reads the system's counters.
        QCoreApplication app(argc, argv);
        const QByteArray json = StatSnapshot::toJson(
            StatSnapshot::capture(*StatCore::shared(), Device::currentDevice(), std::chrono::seconds(1)));
        // A script must learn that its snapshot did not arrive whole (a full disk, a reader
        // that went away): a failed write is an error, not a signal that ends us silently.
        std::signal(SIGPIPE, SIG_IGN);
        if (std::fwrite(json.constData(), 1, size_t(json.size()), stdout) != size_t(json.size())
            || std::fflush(stdout) != 0) {
            std::fprintf(stderr, "kovar: cannot write the snapshot: %s\n", std::strerror(errno));
            return 1;
        }
        return 0;
    }

    if (options.serveMetrics) {
        // No display either: the endpoint samples the same counters for every scrape.
        QCoreApplication app(argc, argv);
        WebConfig web;
        if (!options.webConfig.isEmpty()) {
            QString problem;
            const std::optional<WebConfig> read = WebConfig::load(options.webConfig, &problem);
            if (!read) {
                std::fprintf(stderr, "kovar: --web-config %s: %s\n", qPrintable(options.webConfig),
                             qPrintable(problem));
                return 2;
            }
            web = *read;
        }
        MetricsServer server(*StatCore::shared(), Device::currentDevice());
        if (!server.start(QHostAddress(options.metricsAddress), options.metricsPort, MetricsServer::Limits(), web)) {
            std::fprintf(stderr, "kovar: cannot serve metrics on %s port %u: %s\n", qPrintable(options.metricsAddress),
                         unsigned(options.metricsPort), qPrintable(server.errorString()));
            return 1;
        }
        // Scripts and tests that asked for port 0 learn the port from this line.
        const char *scheme = web.hasTls() ? "https" : "http";
        std::printf("kovar: serving metrics at %s://%s/metrics\n", scheme, qPrintable(server.target()));
        if (server.open() && !QHostAddress(options.metricsAddress).isLoopback())
            std::fprintf(stderr,
                         "kovar: warning: without TLS and a password (--web-config), the figures at %s://%s/metrics "
                         "are readable by anyone who can reach that port\n",
                         scheme, qPrintable(server.target()));
        std::fflush(stdout);
        if (options.webConfig.isEmpty()) {
            const TerminationSignals endOnSignal;
            return app.exec();
        }
        WebConfigWatch watch(options.webConfig, web.files, server);
        const TerminationSignals endOnSignal([&watch] { watch.reload(); });
        return app.exec();
    }

    const bool screenshot = !options.screenshotDir.isEmpty();
    if (screenshot)
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (const QByteArray none = PlatformStart::sessionBusAddress(QProcessEnvironment::systemEnvironment());
        !none.isEmpty())
        qputenv("DBUS_SESSION_BUS_ADDRESS", none);
    const std::unique_ptr<QApplication> application = PlatformStart::open(argc, argv);
    QApplication &app = *application;
    // Before any window exists, so that a screen reader never sees the widgets undescribed.
    ScreensAccessibility::install();
    QAccessible::installFactory(&ZoomViewAccessible::factory);
    const QSize screen = app.primaryScreen() ? app.primaryScreen()->availableSize() : QSize();
    // Screenshots show the phone layout unless a layout is asked for.
    const LaunchIdiom::Kind idiom = LaunchIdiom::choose(
        screenshot && options.idiom == LaunchOptions::Idiom::Automatic ? LaunchOptions::Idiom::Phone : options.idiom,
        screen);
    const auto delegate = IdiomDelegate::create(idiom, LaunchIdiom::windowSize(idiom, screen));
    if (!screenshot)
        delegate->window()->setZoom(LaunchIdiom::firstZoom(idiom, screen, options.zoomPercent));
    delegate->application(&app, options);
    if (screenshot)
        return ScreenshotRunner::run(delegate.get(), options.screenshotDir);
    const TerminationSignals endOnSignal;
    return app.exec();
}
