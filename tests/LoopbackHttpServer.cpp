#include "LoopbackHttpServer.h"

#include <QHostAddress>
#include <QPointer>
#include <QTcpSocket>
#include <QTimer>

#include <memory>

LoopbackHttpServer::LoopbackHttpServer()
{
    m_clock.start();
    connect(this, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket *socket = nextPendingConnection()) {
            ++m_connections;
            connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { serve(socket); });
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            connect(socket, &QObject::destroyed, this, [this, socket] { m_pending.remove(socket); });
        }
    });
}

bool LoopbackHttpServer::start()
{
    return listen(QHostAddress::LocalHost, 0);
}

QUrl LoopbackHttpServer::url(const QString &path) const
{
    return QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(serverPort()).arg(path));
}

void LoopbackHttpServer::route(const QByteArray &path, Handler handler)
{
    m_routes.insert(path, std::move(handler));
}

void LoopbackHttpServer::routeReply(const QByteArray &path, const QByteArray &status, const QByteArray &body,
                                    const QByteArray &contentType)
{
    route(path, [status, body, contentType](QTcpSocket *socket, const Request &) {
        reply(socket, status, body, contentType);
    });
}

QList<LoopbackHttpServer::Request> LoopbackHttpServer::requests(const QByteArray &path) const
{
    QList<Request> matching;
    for (const Request &request : m_log) {
        if (request.path == path)
            matching.append(request);
    }
    return matching;
}

void LoopbackHttpServer::reply(QTcpSocket *socket, const QByteArray &status, const QByteArray &body,
                               const QByteArray &contentType)
{
    socket->write("HTTP/1.1 " + status + "\r\nContent-Type: " + contentType + "\r\nContent-Length: "
                  + QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" + body);
    socket->disconnectFromHost();
}

void LoopbackHttpServer::replyChunked(QTcpSocket *socket, const QByteArray &body, const QByteArray &contentType)
{
    socket->write("HTTP/1.1 200 OK\r\nContent-Type: " + contentType
                  + "\r\nTransfer-Encoding: chunked\r\nConnection: close\r\n\r\n");
    for (qsizetype at = 0; at < body.size(); at += 1024) {
        const QByteArray chunk = body.mid(at, 1024);
        socket->write(QByteArray::number(chunk.size(), 16) + "\r\n" + chunk + "\r\n");
    }
    socket->write("0\r\n\r\n");
    socket->disconnectFromHost();
}

void LoopbackHttpServer::trickle(QTcpSocket *socket, int intervalMs)
{
    socket->write("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n");
    auto *timer = new QTimer(socket);
    QPointer<QTcpSocket> guarded(socket);
    auto sent = std::make_shared<int>(0);
    QObject::connect(timer, &QTimer::timeout, socket, [guarded, timer, sent] {
        if (!guarded || ++*sent > 500) {
            timer->stop();
            return;
        }
        guarded->write("1");
    });
    timer->start(intervalMs);
}

void LoopbackHttpServer::serve(QTcpSocket *socket)
{
    QByteArray &buffer = m_pending[socket];
    buffer += socket->readAll();
    if (!buffer.contains("\r\n\r\n"))
        return;
    const QByteArray target = buffer.split(' ').value(1);
    m_pending.remove(socket);
    disconnect(socket, &QTcpSocket::readyRead, socket, nullptr);

    const QUrl url = QUrl::fromEncoded(target);
    Request request;
    request.path = url.path(QUrl::FullyEncoded).toLatin1();
    request.query = QUrlQuery(url);
    request.atMs = m_clock.elapsed();
    m_log.append(request);

    const auto handler = m_routes.constFind(request.path);
    if (handler == m_routes.constEnd())
        reply(socket, "404 Not Found", "no such thing");
    else
        (*handler)(socket, request);
}
