#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QHash>
#include <QList>
#include <QTcpServer>
#include <QUrl>
#include <QUrlQuery>

#include <functional>

class QTcpSocket;

// An HTTP/1.1 server on the loop-back interface for tests, with one behaviour per path:
// good answers and hostile ones (silence, early close, a trickle, oversized bodies).
class LoopbackHttpServer : public QTcpServer
{
public:
    struct Request
    {
        QByteArray path;
        QUrlQuery query;
        qint64 atMs = 0; // on elapsedMs()'s clock
    };
    using Handler = std::function<void(QTcpSocket *socket, const Request &request)>;

    LoopbackHttpServer();

    // Listens on 127.0.0.1 at a free port.
    bool start();
    QUrl url(const QString &path = QString()) const;

    void route(const QByteArray &path, Handler handler);
    // Shorthands for the usual handlers.
    void routeReply(const QByteArray &path, const QByteArray &status, const QByteArray &body,
                    const QByteArray &contentType = "text/plain");

    QList<Request> requests() const { return m_log; }
    QList<Request> requests(const QByteArray &path) const;
    int connectionCount() const { return m_connections; }
    qint64 elapsedMs() const { return m_clock.elapsed(); }

    // A complete response with its Content-Length, then the connection is closed.
    static void reply(QTcpSocket *socket, const QByteArray &status, const QByteArray &body,
                      const QByteArray &contentType = "text/plain");
    // The body in 1 KiB chunks without any length announced.
    static void replyChunked(QTcpSocket *socket, const QByteArray &body, const QByteArray &contentType);
    // Headers announcing a 1000-byte body, then one byte every intervalMs, never done (a bounded
    // number of bytes, so the test process does not keep a timer for ever).
    static void trickle(QTcpSocket *socket, int intervalMs);

private:
    void serve(QTcpSocket *socket);

    QHash<QByteArray, Handler> m_routes;
    QHash<QTcpSocket *, QByteArray> m_pending;
    QList<Request> m_log;
    QElapsedTimer m_clock;
    int m_connections = 0;
};
