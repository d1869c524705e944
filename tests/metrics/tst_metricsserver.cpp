#include "FixtureTree.h"
#include "MetricsServer.h"
#include "StatCore.h"

#include <QtNetwork>
#include <QtTest>

#include <memory>

namespace {

// The status codes a client reads, in order, until the server closes or goes quiet.
QStringList read(QTcpSocket &client, int quietMs = 300)
{
    QByteArray bytes;
    QElapsedTimer quiet;
    quiet.start();
    while (quiet.elapsed() < quietMs && client.state() == QAbstractSocket::ConnectedState) {
        QTest::qWait(10);
        if (client.bytesAvailable()) {
            bytes += client.readAll();
            quiet.restart();
        }
    }
    bytes += client.readAll();
    QStringList statuses;
    static const QRegularExpression status(QStringLiteral("(?:^|\\n)HTTP/1\\.[01] (\\d{3}) "));
    for (const QRegularExpressionMatch &m : status.globalMatch(QString::fromLatin1(bytes)))
        statuses << m.captured(1);
    return statuses;
}

} // namespace

// The endpoint in-process, on loop-back: the deadlines and limits that keep clients from
// holding it hostage, short here. (Its HTTP is checked against the program itself.)
class TestMetricsServer : public QObject {
    Q_OBJECT

    const QString tree = FixtureTree::path(QStringLiteral("proc-x86-laptop"));
    StatCore core{tree, tree, 4096, SystemInfoReader::SystemCalls{}, NetworkInfoReader::Seams{}};
    std::unique_ptr<MetricsServer> server;

    std::unique_ptr<QTcpSocket> connected()
    {
        auto client = std::make_unique<QTcpSocket>();
        client->connectToHost(QHostAddress::LocalHost, server->port());
        client->waitForConnected(2000); // the kernel's handshake: the server need not run for it
        return client;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QLoggingCategory::setFilterRules(QStringLiteral("kovar.stats*.warning=false"));
        server = std::make_unique<MetricsServer>(core, nullptr);
        MetricsServer::Limits limits;
        limits.maxConnections = 8;
        limits.requestMs = 400;
        limits.idleSeconds = 1;
        limits.sweepMs = 25;
        QVERIFY2(server->start(QHostAddress::LocalHost, 0, limits), qPrintable(server->errorString()));
        QVERIFY(server->port() > 0);
        QCOMPARE(server->target(), QStringLiteral("127.0.0.1:%1").arg(server->port()));
    }

    // Each kind of client is closed when its time is up and not before.
    void deadlines()
    {
        const std::unique_ptr<QTcpSocket> silent = connected(), partial = connected(), answered = connected();
        partial->write("GET /met");
        answered->write("GET /metrics HTTP/1.1\r\nHost: kovar\r\n\r\n");
        QCOMPARE(read(*answered), QStringList{"200"});
        QTRY_VERIFY_WITH_TIMEOUT(silent->state() != QAbstractSocket::ConnectedState
                                     && partial->state() != QAbstractSocket::ConnectedState,
                                 2000);
        QVERIFY(answered->state() == QAbstractSocket::ConnectedState); // idle, not overdue
        QTRY_VERIFY_WITH_TIMEOUT(answered->state() != QAbstractSocket::ConnectedState, 4000);
    }

    // Slow clients fill every place; a scrape that comes then is served, an old slow one goes.
    void floodOfSlowClients()
    {
        std::vector<std::unique_ptr<QTcpSocket>> slow;
        for (int i = 0; i < 8; ++i) {
            slow.push_back(connected());
            slow.back()->write("GET /metrics HTTP/1.1\r\nX-Slow: ");
            QTest::qWait(5);
        }
        QTRY_COMPARE(server->connectionCount(), 8);
        const std::unique_ptr<QTcpSocket> scrape = connected();
        scrape->write("GET /metrics HTTP/1.1\r\nHost: kovar\r\n\r\n");
        QCOMPARE(read(*scrape), QStringList{"200"});
        QTRY_VERIFY(slow.front()->state() != QAbstractSocket::ConnectedState); // the oldest
        QVERIFY(slow.back()->state() == QAbstractSocket::ConnectedState);
        QVERIFY(server->connectionCount() <= 8);
    }
};

QTEST_GUILESS_MAIN(TestMetricsServer)
#include "tst_metricsserver.moc"
