#include "FixtureTree.h"
#include "MetricsServer.h"
#include "StatCore.h"

#include <QtNetwork>
#include <QtTest>

#include <array>

class TestMetricsServer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // Each kind of client is closed when its time is up and not before: the deadlines are
    // short here, and each check waits for its condition.
    void metricsConnectionsEnd()
    {
        const QString tree = FixtureTree::path(QStringLiteral("proc-x86-laptop"));
        StatCore core(tree, tree, 4096, SystemInfoReader::SystemCalls{}, NetworkInfoReader::Seams{});
        QLoggingCategory::setFilterRules(QStringLiteral("kovar.stats*.warning=false"));
        MetricsServer server(core, nullptr);
        QVERIFY(server.start(QHostAddress::LocalHost, 0, {8, 1024, 400, 1200, 25}));
        const quint16 port = server.listener()->serverPort();
        const QByteArray get = "GET /metrics HTTP/1.1\r\nHost: kovar\r\n\r\n";
        QTcpSocket answered, quiet, silent, partial;
        for (QTcpSocket *client : {&answered, &quiet, &silent, &partial}) {
            client->connectToHost(QHostAddress::LocalHost, port);
            QVERIFY(client->waitForConnected(2000));
            connect(client, &QIODevice::readyRead, client, [client] { client->readAll(); });
        }
        quiet.write(get);
        partial.write("GET /met");
        QTimer again; // a scraper that keeps asking
        connect(&again, &QTimer::timeout, &answered, [&] { answered.write(get); });
        again.start(100);
        const auto open = [](const QTcpSocket &client) { return client.state() == QAbstractSocket::ConnectedState; };
        QTRY_VERIFY_WITH_TIMEOUT(!open(silent) && !open(partial), 3000);
        QVERIFY(open(quiet) && open(answered));
        QTRY_VERIFY_WITH_TIMEOUT(!open(quiet), 5000);
        QVERIFY(open(answered));
        // Eight at most: beside the scraper, seven more are let in and the eighth is closed at once.
        std::array<QTcpSocket, 8> crowd;
        for (QTcpSocket &client : crowd)
            client.connectToHost(QHostAddress::LocalHost, port);
        const auto closed = [](const QTcpSocket &client) {
            return client.state() == QAbstractSocket::UnconnectedState;
        };
        QTRY_COMPARE_WITH_TIMEOUT(std::count_if(crowd.begin(), crowd.end(), closed), 1, 3000);
        QCOMPARE(std::count_if(crowd.begin(), crowd.end(), open), 7);
    }
};

QTEST_GUILESS_MAIN(TestMetricsServer)
#include "tst_metricsserver.moc"
