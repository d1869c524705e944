#include "LaunchOptions.h"

#include "BoundedFetch.h"

#include <QCommandLineParser>
#include <QHostAddress>

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
    QCommandLineOption zoomOption{QStringLiteral("zoom"),
                                  QStringLiteral("Open the window at this zoom, 50 to 300 percent (default: the "
                                                 "largest step that fits the screen)."),
                                  QStringLiteral("PERCENT")};
    QCommandLineOption adServerOption{QStringLiteral("ad-server"),
                                      QStringLiteral("Ask this ad server for banners instead of the build's "
                                                     "(also the environment variable KOVAR_AD_SERVER)."),
                                      QStringLiteral("URL")};
    QCommandLineOption metricsOption{QStringLiteral("serve-metrics"),
                                     QStringLiteral("Open no window; serve the figures to Prometheus at "
                                                    "http://ADDRESS:PORT/metrics (ADDRESS defaults to 127.0.0.1; "
                                                    "PORT 0 takes a free port)."),
                                     QStringLiteral("[ADDRESS:]PORT")};
    QCommandLineOption webConfigOption{QStringLiteral("web-config"),
                                       QStringLiteral("With --serve-metrics: TLS and basic-auth users from this file, "
                                                      "in Prometheus's web configuration format."),
                                       QStringLiteral("FILE")};

    Parser()
    {
        parser.setApplicationDescription(
            QStringLiteral("KOVAR shows what this device is doing: CPU, memory, disk, battery, "
                           "processes, system and network information."));
        parser.addOptions({helpOption, versionOption, snapshotOption, screenshotOption, idiomOption, zoomOption,
                           adServerOption, metricsOption, webConfigOption});
    }
};

// "[ADDRESS:]PORT", an IPv6 address in brackets ("[::1]:9100"); false when it is not one.
bool parseListenAddress(const QString &text, QString &address, quint16 &port)
{
    QString host = QStringLiteral("127.0.0.1");
    QString portText = text;
    if (const qsizetype colon = text.lastIndexOf(u':'); colon >= 0) {
        host = text.left(colon);
        portText = text.mid(colon + 1);
        if (host.startsWith(u'[') && host.endsWith(u']'))
            host = host.mid(1, host.size() - 2);
        else if (host.contains(u':'))
            return false; // an IPv6 address needs its brackets, or its last group reads as the port
        if (QHostAddress(host).isNull())
            return false;
    }
    bool ok = false;
    const uint number = portText.toUInt(&ok);
    if (!ok || number > 65535 || portText.startsWith(u'+'))
        return false;
    address = host;
    port = quint16(number);
    return true;
}

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
    if (p.parser.isSet(p.zoomOption)) {
        const QString text = p.parser.value(p.zoomOption);
        bool ok = false;
        const int percent = text.endsWith(u'%') ? text.chopped(1).toInt(&ok) : text.toInt(&ok);
        if (ok && percent >= 50 && percent <= 300)
            options.zoomPercent = percent;
        else if (options.error.isEmpty())
            options.error = QStringLiteral("--zoom \"%1\" is not a percentage from 50 to 300").arg(text);
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
                                .arg(adServerOption ? QStringLiteral("--ad-server") : QStringLiteral("KOVAR_AD_SERVER"),
                                     text);
    }

    if (p.parser.isSet(p.metricsOption)) {
        const QString text = p.parser.value(p.metricsOption);
        options.serveMetrics = parseListenAddress(text, options.metricsAddress, options.metricsPort);
        if (!options.serveMetrics && options.error.isEmpty())
            options.error = QStringLiteral("--serve-metrics \"%1\" is not [ADDRESS:]PORT, such as 9877 or "
                                           "192.0.2.7:9877")
                                .arg(text);
    }

    if (p.parser.isSet(p.webConfigOption)) {
        options.webConfig = p.parser.value(p.webConfigOption);
        if (!p.parser.isSet(p.metricsOption) && options.error.isEmpty())
            options.error = QStringLiteral("--web-config configures --serve-metrics, which is not asked for");
    }

    // The snapshot shows no screen, nor does the metrics endpoint: a layout, screenshots or banners asked
    // for with either would be ignored.
    if (options.snapshot && options.serveMetrics && options.error.isEmpty())
        options.error = QStringLiteral("--snapshot prints once and --serve-metrics serves until stopped: choose one");
    for (const QCommandLineOption *windowless : {&p.snapshotOption, &p.metricsOption}) {
        for (const QCommandLineOption *screenOnly :
             {&p.screenshotOption, &p.idiomOption, &p.zoomOption, &p.adServerOption}) {
            if (p.parser.isSet(*windowless) && p.parser.isSet(*screenOnly) && options.error.isEmpty())
                options.error = QStringLiteral("--%1 shows no screen, so it cannot go with --%2")
                                    .arg(windowless->names().first(), screenOnly->names().first());
        }
    }
    return options;
}

QString LaunchOptions::helpText()
{
    Parser p;
    // No application object exists yet, so Qt cannot know the program's name.
    return p.parser.helpText().replace(QStringLiteral("<executable_name>"), QStringLiteral("kovar"));
}
