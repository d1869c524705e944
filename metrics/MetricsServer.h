#pragma once

#include "MetricsExposition.h"
#include "MetricsListener.h"

#include <QAbstractHttpServer>
#include <QByteArray>
#include <QElapsedTimer>
#include <QHostAddress>
#include <QPointer>

class Device;
class StatCore;

// kovar --serve-metrics: answers GET /metrics with the figures of the moment in the
// format the scraper asks for, and GET / with a page that links there. Everything
// runs on the main thread; a body is sampled at most once per half second and
// format, so a crowd of scrapers costs no more than one, and the device's names once a
// minute.
class MetricsServer : public QAbstractHttpServer {
    Q_OBJECT

public:
    // device may be null: the battery then reads as unknown.
    MetricsServer(StatCore &core, Device *device, QObject *parent = nullptr);
    ~MetricsServer() override;

    // Listens on address and port (0: any free one); false with errorString() when it cannot.
    bool start(const QHostAddress &address, quint16 port, const MetricsListener::Limits &limits = {});
    QString errorString() const { return _error; }
    // Where the endpoint listens, as a scrape target: "127.0.0.1:9877", "[::1]:9877".
    QString target() const;

    MetricsListener *listener() const { return _listener; }

protected:
    bool handleRequest(const QHttpServerRequest &request, QTcpSocket *socket) override;
    void missingHandler(const QHttpServerRequest &request, QTcpSocket *socket) override;

private:
    const QByteArray &metrics(MetricsExposition::Format format);

    StatCore &_core;
    QPointer<Device> _device;
    MetricsListener *_listener = nullptr;
    QString _error;
    struct CachedBody {
        QByteArray body;
        QElapsedTimer age;
    };
    CachedBody _cache[2];
    QList<std::pair<QByteArray, QString>> _deviceInfo;
    QElapsedTimer _deviceInfoAge;
};
