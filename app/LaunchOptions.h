#pragma once

#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <QUrl>

// What the command line asked for. Parsed before any application object exists,
// so that --snapshot and --help never need a display.
class LaunchOptions {
public:
    enum class Idiom { Automatic, Phone, Tablet };

    // The environment supplies KOVAR_AD_SERVER; --ad-server wins over it.
    static LaunchOptions parse(const QStringList &arguments,
                               const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment());

    bool help = false;
    bool version = false;
    bool snapshot = false;
    QString screenshotDir; // empty: no screenshot run
    Idiom idiom = Idiom::Automatic;
    int zoomPercent = 0; // --zoom: 50 to 300; 0 lets the window fit the screen
    QUrl adServer;       // empty: the build's ad server
    // --serve-metrics [ADDRESS:]PORT: no window, an HTTP endpoint for Prometheus instead.
    bool serveMetrics = false;
    QString metricsAddress;  // 127.0.0.1 unless given; an IPv6 address without brackets
    quint16 metricsPort = 0; // 0: any free port (kovar prints the one it took)
    QString webConfig;       // --web-config FILE: TLS and users for the endpoint, as Prometheus writes them
    QString error;           // non-empty when the arguments made no sense

    static QString helpText();
};
