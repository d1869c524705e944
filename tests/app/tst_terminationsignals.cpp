#include "TerminationSignals.h"

#include <QtTest>

#include <csignal>

class TestTerminationSignals : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void signalEndsEventLoop_data()
    {
        QTest::addColumn<int>("signalNumber");
        QTest::newRow("SIGTERM") << SIGTERM;
        QTest::newRow("SIGINT, as Ctrl+C sends") << SIGINT;
    }
    void signalEndsEventLoop()
    {
        QFETCH(int, signalNumber);
        const TerminationSignals ending;
        QTimer::singleShot(0, [signalNumber] { std::raise(signalNumber); });
        QTimer stuck; // bounds the wait for a loop that the signal failed to end
        stuck.callOnTimeout([] { QCoreApplication::exit(1); });
        stuck.start(5000);
        QCOMPARE(QCoreApplication::exec(), 0); // as a quit ends it, for the same teardown
    }
};

QTEST_GUILESS_MAIN(TestTerminationSignals)
#include "tst_terminationsignals.moc"
