#pragma once

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QHash>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <QUrl>

#include <functional>

// An HTTP/1.1 server on 127.0.0.1: one handler per path, 404 for the rest, and a log of the
// requests ("/path?query") on the server's own clock.
class LoopbackHttpServer : public QTcpServer {
public:
    struct Request {
        QByteArray target;
        qint64 atMs;
    };
    using Handler = std::function<void(QTcpSocket *socket, const QByteArray &path)>;

    LoopbackHttpServer()
    {
        _clock.start();
        connect(this, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket *socket = nextPendingConnection()) {
                connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { serve(socket); });
                connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            }
        });
    }
    QUrl url(const QByteArray &path) const
    {
        return QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(serverPort()).arg(QString::fromLatin1(path)));
    }
    qint64 elapsedMs() const { return _clock.elapsed(); }
    void route(const QByteArray &path, Handler handler) { _routes.insert(path, std::move(handler)); }
    void routeReply(const QByteArray &path, const QByteArray &body, const QByteArray &status = "200 OK")
    {
        route(path, [=](QTcpSocket *s, const QByteArray &) { reply(s, status, body); });
    }
    QList<Request> requests(const QByteArray &path) const
    {
        QList<Request> matching;
        std::copy_if(_log.begin(), _log.end(), std::back_inserter(matching),
                     [&](const Request &r) { return r.target.split('?')[0] == path; });
        return matching;
    }
    static void reply(QTcpSocket *socket, const QByteArray &status, const QByteArray &body,
                      const QByteArray &headers = {})
    {
        socket->write("HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(body.size())
                      + "\r\nConnection: close\r\n" + headers + "\r\n" + body);
        socket->disconnectFromHost();
    }

private:
    void serve(QTcpSocket *socket)
    {
        if (!socket->peek(64 * 1024).contains("\r\n\r\n"))
            return;
        disconnect(socket, &QTcpSocket::readyRead, socket, nullptr);
        const QByteArray target = socket->readAll().split(' ').value(1), path = target.split('?')[0];
        _log.append({target, _clock.elapsed()});
        _routes.value(path, [](QTcpSocket *s, const QByteArray &) { reply(s, "404 Not Found", "no such thing"); })(
            socket, path);
    }

    QHash<QByteArray, Handler> _routes;
    QList<Request> _log;
    QElapsedTimer _clock;
};

// Servers an HTTP client must give up on. Wherever the client has to refuse the answer anyway,
// it is the test's good body, so that a client which let it through would succeed instead.
struct HostileServer {
    enum Refusal { Timeout, TooLarge, AnnouncedTooLarge, Status, Network };
    const char *name;
    Refusal refusal;
    void (*serve)(QTcpSocket *socket, const QByteArray &good, const QByteArray &path);

    LoopbackHttpServer::Handler serving(const QByteArray &good) const
    {
        return [serve = serve, good](QTcpSocket *socket, const QByteArray &path) { serve(socket, good, path); };
    }
    static QList<HostileServer> all()
    {
        using S = QTcpSocket;
        using B = QByteArray;
        return {
            {"stalls", Timeout, [](S *, const B &, const B &) {}},
            {"drips the body past the deadline", Timeout,
             [](S *s, const B &good, const B &) {
                 s->write("HTTP/1.1 200 OK\r\nContent-Length: " + B::number(good.size() + 1) + "\r\n\r\n");
                 auto *drip = new QTimer(s);
                 QObject::connect(drip, &QTimer::timeout, s,
                                  [s, good, at = 0]() mutable { s->write(good.mid(at++, 1)); });
                 drip->start(10);
             }},
            {"announces a huge body, then stalls", AnnouncedTooLarge,
             [](S *s, const B &good, const B &) {
                 s->write("HTTP/1.1 200 OK\r\nContent-Length: 1073741824\r\n\r\n" + good.left(1));
             }},
            {"sends an endless body without a length", TooLarge,
             [](S *s, const B &good, const B &) { s->write("HTTP/1.1 200 OK\r\n\r\n" + good + B(2 << 20, ' ')); }},
            {"answers 500", Status,
             [](S *s, const B &good, const B &) { LoopbackHttpServer::reply(s, "500 Internal Server Error", good); }},
            {"closes before the announced length", Network,
             [](S *s, const B &good, const B &) {
                 s->write("HTTP/1.1 200 OK\r\nContent-Length: " + B::number(good.size() + 100) + "\r\n\r\n" + good);
                 s->flush();
                 s->abort();
             }},
            {"redirects to itself", Network,
             [](S *s, const B &good, const B &path) {
                 LoopbackHttpServer::reply(s, "302 Found", good,
                                           "Location: http://127.0.0.1:" + B::number(s->localPort()) + path + "\r\n");
             }},
            {"redirects to file:", Network,
             [](S *s, const B &good, const B &) {
                 LoopbackHttpServer::reply(s, "302 Found", good, "Location: file:///etc/hostname\r\n");
             }},
        };
    }
};
