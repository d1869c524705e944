#include "Device.h"
#include "FixtureTree.h"
#include "PrivateBus.h"

#include <QtDBus>
#include <QtTest>

namespace {

const QString upowerPath = QStringLiteral("/org/freedesktop/UPower");
const QString displayPath = QStringLiteral("/org/freedesktop/UPower/devices/DisplayDevice");

// "Name=value;..." as UPower sends the values: a flag, a fraction, or a whole number.
QVariantMap properties(const QString &assignments)
{
    QVariantMap map;
    for (const QString &assignment : assignments.split(u';')) {
        const QString value = assignment.section(u'=', 1);
        map[assignment.section(u'=', 0, 0)] = value == u"false" || value == u"true" ? QVariant(value == u"true")
            : value.contains(u'.')                                                  ? QVariant(value.toDouble())
                                                                                    : QVariant(value.toUInt());
    }
    return map;
}

// The device as a listener sees it: "level state".
QString figures(const Device &device)
{
    const char *state = QMetaEnum::fromType<Device::BatteryState>().valueToKey(device.batteryState());
    return QString::number(device.batteryLevel(), 'g', 3) + u' '
        + QString::fromLatin1(state).remove(QStringLiteral("BatteryState"));
}

// How often each of the device's signals comes from now on: "level state".
struct Signals {
    QSignalSpy level;
    QSignalSpy state;
    explicit Signals(Device &device)
        : level(&device, &Device::batteryLevelDidChange)
        , state(&device, &Device::batteryStateDidChange)
    {
    }
    QString counts() const { return QStringLiteral("%1 %2").arg(level.count()).arg(state.count()); }
};

} // namespace

class TestDevice : public QObject {
    Q_OBJECT

    PrivateBus bus;
    bool startUPower() { return bus.startMock(QStringLiteral("org.freedesktop.UPower"), {"--template", "upower"}); }
    bool setDisplayDevice(const QString &assignments)
    {
        return bus.callMock(upowerPath, QStringLiteral("SetDeviceProperties"),
                            {QVariant::fromValue(QDBusObjectPath(displayPath)), properties(assignments)});
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY2(startUPower(), "no private bus with a mock UPower"); }

    void sysfsBattery_data()
    {
        FixtureTree::addRows("device-sysfs.tsv", {"tree", "read", "change", "then", "signals"});
    }
    void sysfsBattery()
    {
        QFETCH(QString, tree);
        QFETCH(QString, read);
        QFETCH(QString, change);
        QFETCH(QString, then);
        QFETCH(QString, signals);
        QTemporaryDir root;
        QVERIFY(FixtureTree::copy(FixtureTree::path(QStringLiteral("power_supply/") + tree), root.path()));
        Device device(root.path());
        device.setPollInterval(1);
        for (bool on : {true, true}) // switching on twice reads once
            device.setBatteryMonitoringEnabled(on);
        QCOMPARE(figures(device), read);
        const Signals polled(device);

        const QString battery = root.path() + QStringLiteral("/sys/class/power_supply/BAT0/");
        if (change == u"remove") // in one step, as a hot-unplugged battery leaves
            QVERIFY(QDir().rename(battery, root.path() + QStringLiteral("/unplugged")));
        for (const QString &assignment : change == u"remove" ? QStringList() : change.split(u';', Qt::SkipEmptyParts)) {
            QSaveFile file(battery + assignment.section(u'=', 0, 0)); // replaced whole, never seen half-written
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(assignment.section(u'=', 1).toUtf8() + '\n') > 0
                    && file.commit());
        }
        QTRY_COMPARE_WITH_TIMEOUT(figures(device), then, 5000);
        QCOMPARE(polled.counts(), signals);
        device.setBatteryMonitoringEnabled(false); // off reads unknown again
        QCOMPARE(figures(device), QStringLiteral("-1 Unknown"));
    }

    void upower_data() { FixtureTree::addRows("device-upower.tsv", {"display", "change", "then", "signals"}); }
    void upower()
    {
        QFETCH(QString, display);
        QFETCH(QString, change);
        QFETCH(QString, then);
        QFETCH(QString, signals);
        QVERIFY(setDisplayDevice(display));
        // A sysfs battery that UPower must win over.
        Device device(bus.connection(), FixtureTree::path(QStringLiteral("power_supply/laptop-charging")));
        device.setBatteryMonitoringEnabled(true);
        bus.settle();
        const Signals changed(device);
        QVERIFY(change.isEmpty() || setDisplayDevice(change));
        bus.settle();
        QCOMPARE(figures(device), then);
        QCOMPARE(changed.counts(), signals);
    }

    void changeBeforeTheFirstWholeAnswer()
    {
        // UPower answers before its display device is there; a lone change then must not
        // read as "no battery" for want of the rest.
        QVERIFY(bus.callMock(upowerPath, QStringLiteral("RemoveObject"), {displayPath}));
        Device device(bus.connection(), FixtureTree::path(QStringLiteral("power_supply/no-such-tree")));
        device.setBatteryMonitoringEnabled(true);
        bus.settle();
        QVERIFY(bus.callMock(upowerPath, QStringLiteral("AddObject"),
                             {displayPath, QStringLiteral("org.freedesktop.UPower.Device"),
                              properties("Type=2;State=1;Percentage=40.0;IsPresent=true"), QVariantList()}));
        QVERIFY(setDisplayDevice(QStringLiteral("Percentage=44.0")));
        bus.settle();
        QCOMPARE(figures(device), QStringLiteral("0.44 Charging"));
    }

    void upowerComesAndGoes()
    {
        QVERIFY(startUPower()); // afresh, with its own display device
        QVERIFY(setDisplayDevice(QStringLiteral("Type=2;State=2;Percentage=70.0;IsPresent=true")));
        Device device(bus.connection(), FixtureTree::path(QStringLiteral("power_supply/laptop-charging")));
        device.setBatteryMonitoringEnabled(true);
        bus.settle();
        // Switched on again, the figure is fetched afresh.
        device.setBatteryMonitoringEnabled(false);
        QVERIFY(setDisplayDevice(QStringLiteral("Percentage=20.0")));
        device.setBatteryMonitoringEnabled(true);
        bus.settle();
        QCOMPARE(figures(device), QStringLiteral("0.2 Unplugged"));
        // UPower leaves: the sysfs battery takes over at once, one signal per figure.
        const Signals leaving(device);
        bus.stopMock();
        QTRY_VERIFY_WITH_TIMEOUT(!device.isUsingUPower(), 5000);
        QCOMPARE(figures(device) + u' ' + leaving.counts(), QStringLiteral("0.83 Charging 1 1"));
        // UPower comes back: followed again.
        QVERIFY(startUPower());
        QTRY_VERIFY_WITH_TIMEOUT(device.isUsingUPower(), 5000);
        QVERIFY(setDisplayDevice(QStringLiteral("Type=2;State=2;Percentage=64.0;IsPresent=true")));
        bus.settle();
        QCOMPARE(figures(device), QStringLiteral("0.64 Unplugged"));
    }
};

QTEST_GUILESS_MAIN(TestDevice)
#include "tst_device.moc"
