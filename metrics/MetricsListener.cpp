#include "MetricsListener.h"

#include <QTcpSocket>
#include <QTimer>

#include <unistd.h>

namespace {

// A socket that counts what has been written to it: a connection that has been
// answered since the last look is making progress.
class WatchedSocket : public QTcpSocket {
public:
    using QTcpSocket::QTcpSocket;

    qint64 written() const { return _written; }

protected:
    qint64 writeData(const char *data, qint64 size) override
    {
        const qint64 done = QTcpSocket::writeData(data, size);
        if (done > 0)
            _written += done;
        return done;
    }

private:
    qint64 _written = 0;
};

} // namespace

struct MetricsListener::Connection {
    QPointer<WatchedSocket> socket;
    qint64 written = 0;      // bytes answered by the last sweep
    qint64 lastAnswer = 0;   // ms on the clock: connected, or answered last
    qint64 requestSince = 0; // ms on the clock since a request is awaited; -1 between requests
};

MetricsListener::MetricsListener(QObject *parent)
    : MetricsListener(Limits{}, parent)
{
}

MetricsListener::MetricsListener(Limits limits, QObject *parent)
    : QTcpServer(parent)
    , _limits(limits)
    , _sweep(new QTimer(this))
{
    _clock.start();
    _sweep->setInterval(_limits.sweepMs);
    connect(_sweep, &QTimer::timeout, this, &MetricsListener::sweep);
}

MetricsListener::~MetricsListener() = default;

void MetricsListener::incomingConnection(qintptr descriptor)
{
    _connections.removeIf([](const Connection &connection) { return !connection.socket; });
    if (_connections.size() >= _limits.maxConnections) {
        ::close(int(descriptor)); // a scraper that finds no room tries again at its next interval
        return;
    }
    auto *socket = new WatchedSocket(this);
    if (!socket->setSocketDescriptor(descriptor)) {
        delete socket;
        return;
    }
    // The HTTP server keeps every byte of a request until it is whole; past this the
    // rest waits in the kernel, and the request deadline ends it.
    socket->setReadBufferSize(_limits.requestBytes);
    // The first request is awaited from the start: a client that connects and says nothing
    // holds a place no longer than a slow request does.
    _connections.append({socket, 0, _clock.elapsed(), _clock.elapsed()});
    addPendingConnection(socket);
    if (!_sweep->isActive())
        _sweep->start();
}

void MetricsListener::sweep()
{
    const qint64 now = _clock.elapsed();
    for (Connection &connection : _connections) {
        WatchedSocket *socket = connection.socket;
        if (!socket)
            continue;
        if (socket->written() != connection.written) {
            connection.written = socket->written();
            connection.lastAnswer = now;
            connection.requestSince = -1;
        }
        // The server reads a request inside a transaction that it commits once the request is whole.
        if (socket->isTransactionStarted() && connection.requestSince < 0)
            connection.requestSince = now;
        const bool overdue = connection.requestSince >= 0 && now - connection.requestSince >= _limits.requestMs;
        const bool idle = connection.requestSince < 0 && now - connection.lastAnswer >= _limits.idleMs;
        if (overdue || idle) {
            socket->abort();
            socket->deleteLater();
            connection.socket.clear();
        }
    }
    _connections.removeIf([](const Connection &connection) { return !connection.socket; });
    if (_connections.isEmpty())
        _sweep->stop();
}
