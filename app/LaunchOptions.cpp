#include "LaunchOptions.h"

#include "BoundedFetch.h"

#include <QCommandLineParser>

namespace {

struct Parser {
    QCommandLineParser parser;
    QCommandLineOption helpOption{{QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Show this help and exit.")};
    QCommandLineOption versionOption{{QStringLiteral("v"), QStringLiteral("version")},
                                     QStringLiteral("Show the version and exit.")};
    QCommandLineOption snapshotOption{QStringLiteral("snapshot"),
                                      QStringLiteral("Print one sample of every figure as JSON and exit.")};
    QCommandLineOption screenshotOption{QStringLiteral("screenshot"),
                                        QStringLiteral("Render every page offscreen into DIR as PNG files and exit."),
                                        QStringLiteral("DIR")};
    QCommandLineOption idiomOption{QStringLiteral("idiom"),
                                   QStringLiteral("Layout to use: phone or tablet (default: by screen size)."),
                                   QStringLiteral("phone|tablet")};
    QCommandLineOption adServerOption{QStringLiteral("ad-server"),
                                      QStringLiteral("Ask this ad server for banners instead of the build's "
                                                     "(also the environment variable KOVAR_AD_SERVER)."),
                                      QStringLiteral("URL")};

    Parser()
    {
        parser.setApplicationDescription(
            QStringLiteral("KOVAR shows what this device is doing: CPU, memory, disk, battery, "
                           "processes, system and network information."));
        parser.addOptions({helpOption, versionOption, snapshotOption, screenshotOption, idiomOption, adServerOption});
    }
};

} // namespace

LaunchOptions LaunchOptions::parse(const QStringList &arguments, const QProcessEnvironment &environment)
{
    Parser p;
    LaunchOptions options;
    if (!p.parser.parse(arguments)) {
        options.error = p.parser.errorText();
        return options;
    }
    if (!p.parser.positionalArguments().isEmpty()) {
        options.error = QStringLiteral("Unexpected argument: %1").arg(p.parser.positionalArguments().first());
        return options;
    }
    options.help = p.parser.isSet(p.helpOption);
    options.version = p.parser.isSet(p.versionOption);
    options.snapshot = p.parser.isSet(p.snapshotOption);
    options.screenshotDir = p.parser.value(p.screenshotOption);
    if (p.parser.isSet(p.screenshotOption) && options.screenshotDir.isEmpty())
        options.error = QStringLiteral("--screenshot needs a directory");
    if (p.parser.isSet(p.idiomOption)) {
        const QString idiom = p.parser.value(p.idiomOption);
        if (idiom == QLatin1String("phone"))
            options.idiom = Idiom::Phone;
        else if (idiom == QLatin1String("tablet"))
            options.idiom = Idiom::Tablet;
        else
            options.error = QStringLiteral("Unknown idiom \"%1\": use phone or tablet").arg(idiom);
    }

    const QString variable = environment.value(QStringLiteral("KOVAR_AD_SERVER"));
    const bool adServerOption = p.parser.isSet(p.adServerOption);
    if (adServerOption || !variable.isEmpty()) {
        const QString text = adServerOption ? p.parser.value(p.adServerOption) : variable;
        const QUrl url(text, QUrl::StrictMode);
        if (BoundedFetch::isWebUrl(url))
            options.adServer = url;
        else if (options.error.isEmpty())
            options.error = QStringLiteral("%1 \"%2\" is not an http or https address with a host")
                                .arg(adServerOption ? QStringLiteral("--ad-server") : QStringLiteral("KOVAR_AD_SERVER"), text);
    }

    // The snapshot shows no screen: a layout, screenshots or banners asked for with it would be ignored.
    for (const QCommandLineOption *screenOnly : {&p.screenshotOption, &p.idiomOption, &p.adServerOption}) {
        if (options.snapshot && p.parser.isSet(*screenOnly) && options.error.isEmpty())
            options.error = QStringLiteral("--snapshot shows no screen, so it cannot go with --%1")
                                .arg(screenOnly->names().first());
    }
    return options;
}

QString LaunchOptions::helpText()
{
    Parser p;
    // No application object exists yet, so Qt cannot know the program's name.
    return p.parser.helpText().replace(QStringLiteral("<executable_name>"), QStringLiteral("kovar"));
}
