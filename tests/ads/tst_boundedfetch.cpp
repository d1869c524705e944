#include "BoundedFetch.h"
#include "LoopbackHttpServer.h"

#include <QNetworkAccessManager>
#include <QtTest>

// One GET from an untrusted server: the body whole when it is good and within the cap, and
// otherwise exactly one failure, in time, whatever the server does.
class TestBoundedFetch : public QObject {
    Q_OBJECT

    LoopbackHttpServer _server;
    QNetworkAccessManager _manager;
    const QByteArray _body = QByteArray(4096, 'k');

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(_server.listen(QHostAddress::LocalHost));
        _server.routeReply("/good", _body);
        _server.route("/moved", [](QTcpSocket *socket, const QByteArray &) {
            LoopbackHttpServer::reply(socket, "301 Moved Permanently", {},
                                      "Location: http://127.0.0.1:" + QByteArray::number(socket->localPort())
                                          + "/good\r\n");
        });
    }

    void fetch_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<int>("timeoutMs");
        QTest::addColumn<int>("code"); // -1: succeeded with the good body
        QTest::newRow("a good body") << "/good" << 3000 << -1;
        QTest::newRow("a redirect to http") << "/moved" << 3000 << -1;
        QTest::newRow("connection refused") << "http://127.0.0.1:1/" << 3000 << int(GADRequestError::NetworkError);
        const GADRequestError::Code codes[] = {GADRequestError::Timeout, GADRequestError::TooLarge,
                                               GADRequestError::TooLarge, GADRequestError::ServerError,
                                               GADRequestError::NetworkError};
        for (const HostileServer &hostile : HostileServer::all()) {
            const QByteArray path = "/hostile/" + QByteArray(hostile.name).replace(' ', '-');
            _server.route(path, hostile.serving(_body));
            QTest::newRow(hostile.name) << QString::fromLatin1(path)
                                        << (hostile.refusal == HostileServer::Timeout ? 150 : 3000)
                                        << int(codes[hostile.refusal]);
        }
    }
    void fetch()
    {
        QFETCH(QString, path);
        QFETCH(int, timeoutMs);
        QFETCH(int, code);
        const QUrl url = path.startsWith(u"http") ? QUrl(path) : _server.url(path.toLatin1());
        BoundedFetch fetch(&_manager, url, 1 << 20, timeoutMs);
        QSignalSpy finished(&fetch, &BoundedFetch::finished);
        QVERIFY(finished.wait(timeoutMs + 2000));
        QCOMPARE(fetch.succeeded(), code == -1);
        if (code == -1)
            QCOMPARE(fetch.body(), _body);
        else
            QCOMPARE(int(fetch.error().code), code);
        QTest::qWait(50); // nothing comes after the end
        QCOMPARE(finished.count(), 1);
    }

    void cancelledFetchSaysNothing()
    {
        _server.route("/stall", [](QTcpSocket *, const QByteArray &) {});
        BoundedFetch fetch(&_manager, _server.url("/stall"), 1 << 20, 100);
        QSignalSpy finished(&fetch, &BoundedFetch::finished);
        fetch.cancel();
        QTest::qWait(300); // past the deadline
        QCOMPARE(finished.count(), 0);
    }
};

QTEST_GUILESS_MAIN(TestBoundedFetch)
#include "tst_boundedfetch.moc"
