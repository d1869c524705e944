#include "NetworkInfoReader.h"

#include "LoopbackHttpServer.h"

#include <QElapsedTimer>
#include <QTcpSocket>
#include <QTest>

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
    using Request = LoopbackHttpServer::Request;
    m_server.routeReply("/good", "200 OK", "203.0.113.7");
    m_server.routeReply("/not-found", "404 Not Found", "no such thing");
    m_server.routeReply("/huge", "200 OK", QByteArray(256 * 1024, '7'));
    // No length announced: the cap must hold while the body streams in.
    m_server.route("/huge-chunked", [](QTcpSocket *socket, const Request &) {
        LoopbackHttpServer::replyChunked(socket, QByteArray(64 * 1024, '8'), "text/plain");
    });
    m_server.routeReply("/non-ascii", "200 OK", "203.0.113.7 \xC3\xA9t\xC3\xA9");
    m_server.route("/closes-early", [](QTcpSocket *socket, const Request &) {
        socket->write("HTTP/1.1 200 OK\r\nContent-Length: 50\r\n\r\n203.0");
        socket->flush();
        socket->abort();
    });
    m_server.route("/silent", [](QTcpSocket *, const Request &) {});
    // One byte at a time, never done: only an overall deadline ends it.
    m_server.route("/trickle", [](QTcpSocket *socket, const Request &) { LoopbackHttpServer::trickle(socket, 40); });
    QVERIFY(m_server.start());
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
    reader.setExternalIPUrl(m_server.url(path).toString());
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
