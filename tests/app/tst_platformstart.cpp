#include "PlatformStart.h"

#include <QtTest>

// Where there is no session bus, none is started on our behalf: it would outlive us.
class TestPlatformStart : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sessionBusAddress_data()
    {
        QTest::addColumn<QString>("address"); // DBUS_SESSION_BUS_ADDRESS; "-" unset
        QTest::addColumn<QString>("runtime"); // XDG_RUNTIME_DIR: "-" unset, "bus" holding a bus, "empty"
        QTest::addColumn<QByteArray>("set");  // what to set; empty: leave it alone
        QTest::newRow("a desktop session names its bus") << "unix:path=/run/user/1000/bus"
                                                         << "bus" << QByteArray();
        QTest::newRow("systemd's user bus without the variable") << "-"
                                                                 << "bus" << QByteArray();
        QTest::newRow("no bus and no runtime directory") << "-"
                                                         << "-" << QByteArray("disabled:");
        QTest::newRow("a runtime directory without a bus") << "-"
                                                           << "empty" << QByteArray("disabled:");
        QTest::newRow("an empty address names no bus") << ""
                                                       << "empty" << QByteArray("disabled:");
    }
    void sessionBusAddress()
    {
        QFETCH(QString, address);
        QFETCH(QString, runtime);
        QTemporaryDir directory;
        if (runtime == u"bus") {
            QFile bus(directory.filePath(QStringLiteral("bus")));
            QVERIFY(bus.open(QIODevice::WriteOnly));
        }
        QProcessEnvironment environment;
        if (address != u"-")
            environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), address);
        if (runtime != u"-")
            environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), directory.path());
        QTEST(PlatformStart::sessionBusAddress(environment), "set");
    }
};

QTEST_APPLESS_MAIN(TestPlatformStart)
#include "tst_platformstart.moc"
