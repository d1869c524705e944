#include "LaunchIdiom.h"
#include "LaunchOptions.h"
#include "MonitorAppDelegate.h"

#include <QApplication>
#include <QCoreApplication>
#include <QScreen>

#include <cstdio>

int main(int argc, char *argv[])
{
    QCoreApplication::setApplicationName(QStringLiteral("kovar"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KOVAR_VERSION));

    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    const LaunchOptions options = LaunchOptions::parse(arguments);

    if (!options.error.isEmpty()) {
        std::fprintf(stderr, "kovar: %s\n%s", qPrintable(options.error), qPrintable(LaunchOptions::helpText()));
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

    QApplication app(argc, argv);
    const QSize screen = app.primaryScreen() ? app.primaryScreen()->availableSize() : QSize();
    const LaunchIdiom::Kind idiom = LaunchIdiom::choose(options.idiom, screen);
    const auto delegate = MonitorAppDelegate::create(idiom, LaunchIdiom::windowSize(idiom, screen));
    delegate->application(&app, options);
    return app.exec();
}
