#pragma once

#include <QElapsedTimer>
#include <QList>
#include <QPointer>
#include <QTcpServer>

class QTcpSocket;
class QTimer;

// The metrics endpoint's listening socket. It hands connections to the HTTP server as
// any QTcpServer does, and keeps a hostile or broken client from holding the process
// hostage: it takes at most maxConnections at once, buffers at most requestBytes of a
// request, and closes a connection whose request (the first one included, from the
// moment it connects) has not come in whole within requestMs, and one that stays idle
// after an answer for idleMs.
class MetricsListener : public QTcpServer {
    Q_OBJECT

public:
    struct Limits {
        int maxConnections = 64;
        qint64 requestBytes = 128 * 1024; // above the HTTP parser's own limit for headers
        int requestMs = 10'000;
        int idleMs = 120'000;
        int sweepMs = 1'000;
    };

    explicit MetricsListener(QObject *parent = nullptr);
    MetricsListener(Limits limits, QObject *parent = nullptr);
    ~MetricsListener() override;

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    struct Connection;
    void sweep();

    Limits _limits;
    QTimer *_sweep;
    QElapsedTimer _clock;
    QList<Connection> _connections;
};
