#pragma once

#include "MetricsExposition.h"
#include "WebConfig.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QHostAddress>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

#include <cstddef>

struct MHD_Connection;
struct MHD_Daemon;
struct MHD_Response;
class Device;
class QSocketNotifier;
class QTimer;
class StatCore;

// kovar --serve-metrics: answers GET /metrics with the figures of the moment in the format
// the scraper asks for, and GET / with a page that links there, over GNU libmicrohttpd,
// which keeps HTTP/1.0 and 1.1 as they are written (persistent connections, pipelining,
// refusing what does not parse). Everything runs on the main thread, from Qt's event loop.
// A body is sampled at most once per half second and format, so a crowd of scrapers costs
// no more than one, and the device's names once a minute.
//
// Clients cannot hold it hostage: a request must arrive whole within requestMs (from the
// connection, or from its first line on a connection that was answered before); with
// maxConnections open, a new one closes the oldest that has no whole request, never one
// that has; a connection with nothing to do closes after idleSeconds.
class MetricsServer : public QObject {
    Q_OBJECT

public:
    struct Limits {
        int maxConnections = 64;
        int requestMs = 10'000;
        unsigned idleSeconds = 120;
        std::size_t connectionBytes = 32 * 1024; // the request line and headers use half: 16 KiB
        qint64 bodyBytes = 1024;                 // what a GET or HEAD may carry
        int sweepMs = 1'000;
    };

    // device may be null: the battery then reads as unknown.
    MetricsServer(StatCore &core, Device *device, QObject *parent = nullptr);
    ~MetricsServer() override;

    // Listens on address and port (0: any free one); false with errorString() when it cannot.
    // With web's TLS it serves HTTPS alone, and with its users only to one of them.
    bool start(const QHostAddress &address, quint16 port);
    bool start(const QHostAddress &address, quint16 port, const Limits &limits, const WebConfig &web = WebConfig());
    // Serves with web from now on, on the same port; false, serving as before, when libmicrohttpd
    // will not take it (a certificate that does not load). Open connections close.
    bool reconfigure(const WebConfig &web);
    // Whether anyone who reaches the port can read the figures: no TLS or no password.
    bool open() const { return !_web.hasTls() || !_web.hasUsers(); }
    QString errorString() const { return _error; }
    // Where the endpoint listens, as a scrape target: "127.0.0.1:9877", "[::1]:9877".
    QString target() const;
    quint16 port() const { return _port; }
    // Connections open now.
    qsizetype connectionCount() const { return _connections.size(); }

private:
    struct Connection;
    struct Callbacks; // libmicrohttpd's, with the signatures it wants
    friend struct Callbacks;

    bool respond(MHD_Connection *connection, Connection *state, const char *url, const char *method);
    MHD_Response *metrics(MetricsExposition::Format format);
    MHD_Daemon *startDaemon(void *socketAddress, int listenFd);
    void watchDaemon();
    void opened(Connection *connection);
    void sweep();
    void run();

    StatCore &_core;
    FileSystemReader _fileSystems;
    QPointer<Device> _device;
    Limits _limits;
    WebConfig _web;
    MHD_Daemon *_daemon = nullptr;
    QSocketNotifier *_events = nullptr;
    QTimer *_due = nullptr;   // when libmicrohttpd next wants to run: a time-out, data it holds
    QTimer *_sweep = nullptr; // requests overdue
    QElapsedTimer _clock;
    QList<Connection *> _connections;
    QHostAddress _address;
    quint16 _port = 0;
    int _listenFd = -1;
    QString _error;
    struct CachedBody {
        MHD_Response *response = nullptr; // shared by every connection it is queued on
        QElapsedTimer age;
    };
    CachedBody _cache[2];
    QList<std::pair<QByteArray, QString>> _deviceInfo;
    QElapsedTimer _deviceInfoAge;
    std::optional<ModemManagerCarrier::Signal> _modem;
    QElapsedTimer _modemAge;
};
