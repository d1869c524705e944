#include "NetworkInfoReader.h"

#include <QElapsedTimer>
#include <QHostAddress>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QTimer>

namespace {

// A loop-back HTTP server with one behaviour per path, good and hostile.
class LoopbackHttpServer : public QTcpServer {
public:
    LoopbackHttpServer()
    {
        connect(this, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket *socket = nextPendingConnection()) {
                connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { serve(socket); });
                connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            }
        });
    }

private:
    static QByteArray response(const QByteArray &status, const QByteArray &body)
    {
        return "HTTP/1.1 " + status + "\r\nContent-Type: text/plain\r\nContent-Length: "
            + QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" + body;
    }

    void serve(QTcpSocket *socket)
    {
        QByteArray &request = m_requests[socket];
        request += socket->readAll();
        if (!request.contains("\r\n\r\n"))
            return;
        const QByteArray path = request.split(' ').value(1);
        m_requests.remove(socket);

        if (path == "/good") {
            socket->write(response("200 OK", "203.0.113.7"));
            socket->disconnectFromHost();
        } else if (path == "/not-found") {
            socket->write(response("404 Not Found", "no such thing"));
            socket->disconnectFromHost();
        } else if (path == "/huge") {
            socket->write(response("200 OK", QByteArray(256 * 1024, '7')));
            socket->disconnectFromHost();
        } else if (path == "/huge-chunked") {
            // No length announced: the cap must hold while the body streams in.
            socket->write("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n");
            for (int i = 0; i < 64; ++i)
                socket->write("400\r\n" + QByteArray(1024, '8') + "\r\n");
            socket->write("0\r\n\r\n");
            socket->disconnectFromHost();
        } else if (path == "/non-ascii") {
            socket->write(response("200 OK", "203.0.113.7 \xC3\xA9t\xC3\xA9"));
            socket->disconnectFromHost();
        } else if (path == "/closes-early") {
            socket->write("HTTP/1.1 200 OK\r\nContent-Length: 50\r\n\r\n203.0");
            socket->flush();
            socket->abort();
        } else if (path == "/silent") {
            // Accepts and never answers.
        } else if (path == "/trickle") {
            // One byte at a time, never done: only an overall deadline ends it.
            socket->write("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n");
            auto *timer = new QTimer(socket);
            QPointer<QTcpSocket> guarded(socket);
            int *sent = new int(0);
            connect(timer, &QTimer::timeout, socket, [guarded, timer, sent] {
                if (!guarded || ++*sent > 200) {
                    timer->stop();
                    return;
                }
                guarded->write("1");
            });
            connect(timer, &QObject::destroyed, [sent] { delete sent; });
            timer->start(40);
        } else {
            socket->write(response("400 Bad Request", ""));
            socket->disconnectFromHost();
        }
    }

    QHash<QTcpSocket *, QByteArray> m_requests;
};

} // namespace

class TestExternalIPAddress : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void endpoint_data();
    void endpoint();
    void notConfigured_data();
    void notConfigured();

private:
    LoopbackHttpServer m_server;
};

void TestExternalIPAddress::initTestCase()
{
    QVERIFY(m_server.listen(QHostAddress::LocalHost, 0));
}

void TestExternalIPAddress::endpoint_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("timeout");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<bool>("exact");   // false: expected is a part of the error text

    QTest::newRow("good body") << "/good" << 5000 << "203.0.113.7" << true;
    QTest::newRow("error status gives the error text") << "/not-found" << 5000 << "Not Found" << false;
    QTest::newRow("silent server times out") << "/silent" << 400 << "The request timed out." << true;
    QTest::newRow("trickling body still times out") << "/trickle" << 600 << "The request timed out." << true;
    QTest::newRow("oversized body") << "/huge" << 5000 << "The response is too large to be an address." << true;
    QTest::newRow("oversized body without length") << "/huge-chunked" << 5000
                                                   << "The response is too large to be an address." << true;
    QTest::newRow("server closes before the announced length") << "/closes-early" << 5000 << "closed" << false;
    QTest::newRow("non-ASCII body") << "/non-ascii" << 5000 << "The response is not ASCII text." << true;
}

void TestExternalIPAddress::endpoint()
{
    QFETCH(QString, path);
    QFETCH(int, timeout);
    QFETCH(QString, expected);
    QFETCH(bool, exact);

    NetworkInfoReader reader(QStringLiteral("/"), NetworkInfoReader::Seams{});
    reader.setExternalIPUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(m_server.serverPort()).arg(path));
    reader.setExternalIPTimeout(timeout);

    QElapsedTimer clock;
    clock.start();
    const QString result = reader.externalIPAddress();
    const qint64 elapsed = clock.elapsed();

    if (exact)
        QCOMPARE(result, expected);
    else
        QVERIFY2(result.contains(expected), qPrintable(result));
    // Never longer than the time-out, with room for a slow machine.
    QVERIFY2(elapsed < timeout + 2000, qPrintable(QString::number(elapsed)));
}

void TestExternalIPAddress::notConfigured_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("expected");

    QTest::newRow("no endpoint configured") << "" << "No external address endpoint is configured";
    QTest::newRow("not plain HTTP") << "https://127.0.0.1:1/" << "The external address endpoint is not a plain HTTP address";
    QTest::newRow("no host") << "http:///path" << "The external address endpoint is not a plain HTTP address";
}

void TestExternalIPAddress::notConfigured()
{
    QFETCH(QString, url);
    QFETCH(QString, expected);
    NetworkInfoReader reader(QStringLiteral("/"), NetworkInfoReader::Seams{});
    reader.setExternalIPUrl(url);
    QCOMPARE(reader.externalIPAddress(), expected);
}

QTEST_GUILESS_MAIN(TestExternalIPAddress)
#include "tst_externalipaddress.moc"
