#include "Device.h"
#include "PrivateBus.h"

#include <QDBusObjectPath>
#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace {

const QString fixtures = QStringLiteral(KOVAR_FIXTURES "/power_supply/");
const QString displayDevice = QStringLiteral("/org/freedesktop/UPower/devices/DisplayDevice");

// UPower's device kinds and states as they travel on the bus.
constexpr uint kindUnknown = 0;
constexpr uint kindBattery = 2;
constexpr uint kindUps = 3;
constexpr uint upCharging = 1;
constexpr uint upDischarging = 2;
constexpr uint upEmpty = 3;
constexpr uint upFullyCharged = 4;
constexpr uint upPendingCharge = 5;
constexpr uint upPendingDischarge = 6;

bool copyTree(const QString &from, const QString &to)
{
    QDir source(from);
    if (!QDir().mkpath(to))
        return false;
    for (const QFileInfo &entry : source.entryInfoList(QDir::Dirs | QDir::Files | QDir::NoDotAndDotDot)) {
        const QString target = to + QLatin1Char('/') + entry.fileName();
        const bool copied = entry.isDir() ? copyTree(entry.filePath(), target)
                                          : QFile::copy(entry.filePath(), target);
        if (!copied)
            return false;
    }
    return true;
}

// Replaced whole, so that a poll never sees a half-written file.
bool writeAttribute(const QString &root, const QString &supply, const QString &name, const QByteArray &value)
{
    QSaveFile file(root + QStringLiteral("/sys/class/power_supply/") + supply + QLatin1Char('/') + name);
    return file.open(QIODevice::WriteOnly) && file.write(value + '\n') == value.size() + 1 && file.commit();
}

QVariantList displayDeviceSetup(uint kind, uint state, double percentage, bool present)
{
    return {kind, state, percentage, 0.0, 0.0, 0.0, qlonglong(0), qlonglong(0), present, QString(), uint(1)};
}

} // namespace

class TestDevice : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void identityFromTheSameRoot();

    void sysfsBattery_data();
    void sysfsBattery();
    void monitoringSwitch_data();
    void monitoringSwitch();
    void sysfsChangesArePolled_data();
    void sysfsChangesArePolled();

    void upowerDisplayDevice_data();
    void upowerDisplayDevice();
    void upowerChanges_data();
    void upowerChanges();
    void upowerVanishes_data();
    void upowerVanishes();
    void upowerAppearsLater();
    void upowerIgnoredWhileNotMonitoring();

private:
    std::unique_ptr<PrivateBus> m_bus;
};

void TestDevice::initTestCase()
{
    m_bus = std::make_unique<PrivateBus>();
    QVERIFY2(m_bus->isRunning(), "could not start a private dbus-daemon");
}

void TestDevice::identityFromTheSameRoot()
{
    const Device device(QStringLiteral(KOVAR_FIXTURES "/sys-x86-vm"));
    QCOMPARE(device.name(), QStringLiteral("Lab VM \"7\""));
    QCOMPARE(device.uniqueIdentifier(), QStringLiteral("4c4c4544004b3510804cb4c04f383232"));
    QCOMPARE(device.systemName(), QStringLiteral("Debian GNU/Linux"));
    QCOMPARE(device.systemVersion(), QStringLiteral("12"));

    const Device bare(QStringLiteral(KOVAR_FIXTURES "/sys-empty-tree"));
    QCOMPARE(bare.systemName(), QString());
}

void TestDevice::sysfsBattery_data()
{
    QTest::addColumn<QString>("tree");
    QTest::addColumn<float>("level");
    QTest::addColumn<int>("state");

    QTest::newRow("laptop discharging") << "laptop-discharging" << 0.57f << int(Device::BatteryStateUnplugged);
    QTest::newRow("laptop charging") << "laptop-charging" << 0.83f << int(Device::BatteryStateCharging);
    QTest::newRow("full at 100 %") << "laptop-full" << 1.0f << int(Device::BatteryStateFull);
    QTest::newRow("'Not charging' reads as full") << "laptop-not-charging" << 0.8f << int(Device::BatteryStateFull);
    QTest::newRow("status Unknown keeps the level") << "phone-status-unknown" << 0.42f << int(Device::BatteryStateUnknown);
    QTest::newRow("energy counters without capacity") << "laptop-energy-only" << 0.5f << int(Device::BatteryStateUnplugged);
    QTest::newRow("charge counters without capacity") << "laptop-charge-only" << 0.25f << int(Device::BatteryStateCharging);
    QTest::newRow("capacity over 100 is clamped") << "laptop-capacity-over-100" << 1.0f << int(Device::BatteryStateFull);
    QTest::newRow("empty capacity file") << "laptop-capacity-garbage" << -1.0f << int(Device::BatteryStateCharging);
    QTest::newRow("peripheral ahead of the system battery") << "phone-with-headset" << 0.64f << int(Device::BatteryStateUnplugged);
    QTest::newRow("only a wireless mouse's battery") << "desktop-wireless-mouse" << -1.0f << int(Device::BatteryStateUnknown);
    QTest::newRow("battery slot empty") << "laptop-battery-removed" << -1.0f << int(Device::BatteryStateUnknown);
    QTest::newRow("desktop with mains only") << "desktop-ac-only" << -1.0f << int(Device::BatteryStateUnknown);
    QTest::newRow("container without power_supply") << "no-such-tree" << -1.0f << int(Device::BatteryStateUnknown);
}

void TestDevice::sysfsBattery()
{
    QFETCH(QString, tree);
    QFETCH(float, level);
    QFETCH(int, state);

    Device device(fixtures + tree);
    QSignalSpy levelSpy(&device, &Device::batteryLevelDidChange);
    QSignalSpy stateSpy(&device, &Device::batteryStateDidChange);
    QCOMPARE(device.batteryLevel(), -1.0f);

    device.setBatteryMonitoringEnabled(true);
    QVERIFY(!device.isUsingUPower());
    QCOMPARE(device.batteryLevel(), level);
    QCOMPARE(int(device.batteryState()), state);
    // A signal for each figure that moved away from "unknown", and none for the others.
    QCOMPARE(levelSpy.count(), level == -1.0f ? 0 : 1);
    QCOMPARE(stateSpy.count(), state == Device::BatteryStateUnknown ? 0 : 1);
}

void TestDevice::monitoringSwitch_data()
{
    QTest::addColumn<QList<bool>>("switches");
    QTest::addColumn<QList<float>>("levels");
    QTest::addColumn<int>("levelSignals");

    QTest::newRow("on") << QList<bool>{true} << QList<float>{0.57f} << 1;
    QTest::newRow("on, off: off reads unknown") << QList<bool>{true, false} << QList<float>{0.57f, -1.0f} << 2;
    QTest::newRow("on twice signals once") << QList<bool>{true, true} << QList<float>{0.57f, 0.57f} << 1;
    QTest::newRow("off while off signals nothing") << QList<bool>{false, false} << QList<float>{-1.0f, -1.0f} << 0;
    QTest::newRow("on, off, on reads again")
        << QList<bool>{true, false, true} << QList<float>{0.57f, -1.0f, 0.57f} << 3;
}

void TestDevice::monitoringSwitch()
{
    QFETCH(QList<bool>, switches);
    QFETCH(QList<float>, levels);
    QFETCH(int, levelSignals);

    Device device(fixtures + QStringLiteral("laptop-discharging"));
    QSignalSpy levelSpy(&device, &Device::batteryLevelDidChange);
    QSignalSpy stateSpy(&device, &Device::batteryStateDidChange);
    for (qsizetype i = 0; i < switches.size(); ++i) {
        device.setBatteryMonitoringEnabled(switches[i]);
        QCOMPARE(device.isBatteryMonitoringEnabled(), switches[i]);
        QCOMPARE(device.batteryLevel(), levels[i]);
        QCOMPARE(device.batteryState(),
                 levels[i] < 0 ? Device::BatteryStateUnknown : Device::BatteryStateUnplugged);
    }
    QCOMPARE(levelSpy.count(), levelSignals);
    QCOMPARE(stateSpy.count(), levelSignals);
}

void TestDevice::sysfsChangesArePolled_data()
{
    QTest::addColumn<QString>("tree");
    QTest::addColumn<QString>("change");      // "name=value;...", "remove" or "nothing"
    QTest::addColumn<float>("level");
    QTest::addColumn<int>("state");
    QTest::addColumn<int>("levelSignals");
    QTest::addColumn<int>("stateSignals");

    QTest::newRow("capacity drops, state stays")
        << "laptop-discharging" << "capacity=56" << 0.56f << int(Device::BatteryStateUnplugged) << 1 << 0;
    QTest::newRow("charger plugged in, level stays")
        << "laptop-discharging" << "status=Charging" << 0.57f << int(Device::BatteryStateCharging) << 0 << 1;
    QTest::newRow("battery pulled out")
        << "laptop-discharging" << "remove" << -1.0f << int(Device::BatteryStateUnknown) << 1 << 1;
    QTest::newRow("battery put back into an empty slot")
        << "laptop-battery-removed" << "present=1;capacity=20;status=Discharging" << 0.2f
        << int(Device::BatteryStateUnplugged) << 1 << 1;
    QTest::newRow("nothing changes: no signal on re-reading")
        << "laptop-charging" << "nothing" << 0.83f << int(Device::BatteryStateCharging) << 0 << 0;
}

void TestDevice::sysfsChangesArePolled()
{
    QFETCH(QString, tree);
    QFETCH(QString, change);
    QFETCH(float, level);
    QFETCH(int, state);
    QFETCH(int, levelSignals);
    QFETCH(int, stateSignals);

    QTemporaryDir root;
    QVERIFY(root.isValid());
    QVERIFY(copyTree(fixtures + tree, root.path()));
    const QString supply = QDir(root.path() + QStringLiteral("/sys/class/power_supply"))
                               .entryList({QStringLiteral("BAT*")}, QDir::Dirs).value(0);
    QVERIFY(!supply.isEmpty());

    Device device(root.path());
    device.setPollInterval(20);
    device.setBatteryMonitoringEnabled(true);
    QSignalSpy levelSpy(&device, &Device::batteryLevelDidChange);
    QSignalSpy stateSpy(&device, &Device::batteryStateDidChange);

    if (change == QLatin1String("remove")) {
        // Moved out in one step, as a hot-unplugged battery leaves the folder.
        QVERIFY(QDir().rename(root.path() + QStringLiteral("/sys/class/power_supply/") + supply,
                              root.path() + QStringLiteral("/unplugged")));
    } else if (change != QLatin1String("nothing")) {
        for (const QString &assignment : change.split(QLatin1Char(';'))) {
            const QStringList parts = assignment.split(QLatin1Char('='));
            QVERIFY(writeAttribute(root.path(), supply, parts[0], parts[1].toUtf8()));
        }
    }

    // Several poll periods pass in any case, so a signal on an unchanged re-read shows.
    QTest::qWait(10 * device.pollInterval());
    QTRY_COMPARE_WITH_TIMEOUT(device.batteryLevel(), level, 5000);
    QTRY_COMPARE_WITH_TIMEOUT(int(device.batteryState()), state, 5000);
    QCOMPARE(levelSpy.count(), levelSignals);
    QCOMPARE(stateSpy.count(), stateSignals);
}

void TestDevice::upowerDisplayDevice_data()
{
    QTest::addColumn<uint>("kind");
    QTest::addColumn<uint>("upState");
    QTest::addColumn<double>("percentage");
    QTest::addColumn<bool>("present");
    QTest::addColumn<float>("level");
    QTest::addColumn<int>("state");

    QTest::newRow("discharging") << kindBattery << upDischarging << 57.0 << true << 0.57f << int(Device::BatteryStateUnplugged);
    QTest::newRow("charging") << kindBattery << upCharging << 83.0 << true << 0.83f << int(Device::BatteryStateCharging);
    QTest::newRow("fully charged") << kindBattery << upFullyCharged << 100.0 << true << 1.0f << int(Device::BatteryStateFull);
    QTest::newRow("pending charge reads as full") << kindBattery << upPendingCharge << 80.0 << true << 0.8f << int(Device::BatteryStateFull);
    QTest::newRow("empty still runs on battery") << kindBattery << upEmpty << 0.0 << true << 0.0f << int(Device::BatteryStateUnplugged);
    QTest::newRow("pending discharge is unknown") << kindBattery << upPendingDischarge << 90.0 << true << 0.9f << int(Device::BatteryStateUnknown);
    QTest::newRow("fractional percentage") << kindBattery << upDischarging << 12.5 << true << 0.125f << int(Device::BatteryStateUnplugged);
    QTest::newRow("desktop: display device not present") << kindUnknown << 0u << 0.0 << false << -1.0f << int(Device::BatteryStateUnknown);
    QTest::newRow("present but a UPS, not a battery") << kindUps << upDischarging << 70.0 << true << -1.0f << int(Device::BatteryStateUnknown);
    QTest::newRow("battery kind but not present") << kindBattery << upDischarging << 70.0 << false << -1.0f << int(Device::BatteryStateUnknown);
}

void TestDevice::upowerDisplayDevice()
{
    QFETCH(uint, kind);
    QFETCH(uint, upState);
    QFETCH(double, percentage);
    QFETCH(bool, present);
    QFETCH(float, level);
    QFETCH(int, state);

    QVERIFY(m_bus->startUPower());
    QVERIFY(m_bus->callMock(QStringLiteral("SetupDisplayDevice"),
                            displayDeviceSetup(kindBattery, upDischarging, 11.0, true)));

    // A sysfs battery that UPower must win over.
    Device device(m_bus->connection(), fixtures + QStringLiteral("laptop-charging"));
    device.setBatteryMonitoringEnabled(true);
    QVERIFY(device.isUsingUPower());
    QTRY_COMPARE_WITH_TIMEOUT(device.batteryLevel(), 0.11f, 5000);

    // From a known battery, so that rows expecting "no battery" see a real change.
    QVERIFY(m_bus->callMock(QStringLiteral("SetupDisplayDevice"), displayDeviceSetup(kind, upState, percentage, present)));
    QTRY_COMPARE_WITH_TIMEOUT(device.batteryLevel(), level, 5000);
    QTRY_COMPARE_WITH_TIMEOUT(int(device.batteryState()), state, 5000);
    m_bus->stopUPower();
}

void TestDevice::upowerChanges_data()
{
    QTest::addColumn<QString>("property");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<float>("level");
    QTest::addColumn<int>("state");
    QTest::addColumn<int>("levelSignals");
    QTest::addColumn<int>("stateSignals");

    QTest::newRow("percentage drops") << "Percentage" << QVariant(49.0) << 0.49f
                                      << int(Device::BatteryStateUnplugged) << 1 << 0;
    QTest::newRow("charger plugged in") << "State" << QVariant(upCharging) << 0.5f
                                        << int(Device::BatteryStateCharging) << 0 << 1;
    QTest::newRow("same percentage again: no signal") << "Percentage" << QVariant(50.0) << 0.5f
                                                      << int(Device::BatteryStateUnplugged) << 0 << 0;
    QTest::newRow("battery disappears") << "IsPresent" << QVariant(false) << -1.0f
                                        << int(Device::BatteryStateUnknown) << 1 << 1;
    QTest::newRow("unrelated property: no signal") << "TimeToEmpty" << QVariant(qlonglong(3600)) << 0.5f
                                                   << int(Device::BatteryStateUnplugged) << 0 << 0;
}

void TestDevice::upowerChanges()
{
    QFETCH(QString, property);
    QFETCH(QVariant, value);
    QFETCH(float, level);
    QFETCH(int, state);
    QFETCH(int, levelSignals);
    QFETCH(int, stateSignals);

    QVERIFY(m_bus->startUPower());
    QVERIFY(m_bus->callMock(QStringLiteral("SetupDisplayDevice"),
                            displayDeviceSetup(kindBattery, upDischarging, 50.0, true)));
    Device device(m_bus->connection(), fixtures + QStringLiteral("no-such-tree"));
    device.setBatteryMonitoringEnabled(true);
    QTRY_COMPARE_WITH_TIMEOUT(device.batteryLevel(), 0.5f, 5000);
    QTRY_COMPARE_WITH_TIMEOUT(device.batteryState(), Device::BatteryStateUnplugged, 5000);

    QSignalSpy levelSpy(&device, &Device::batteryLevelDidChange);
    QSignalSpy stateSpy(&device, &Device::batteryStateDidChange);
    QVERIFY(m_bus->callMock(QStringLiteral("SetDeviceProperties"),
                            {QVariant::fromValue(QDBusObjectPath(displayDevice)), QVariantMap{{property, value}}}));
    // The mock signals before it answers, so the change is queued by now; the wait lets
    // any surplus signal show.
    QTest::qWait(200);

    QTRY_COMPARE_WITH_TIMEOUT(device.batteryLevel(), level, 5000);
    QTRY_COMPARE_WITH_TIMEOUT(int(device.batteryState()), state, 5000);
    QCOMPARE(levelSpy.count(), levelSignals);
    QCOMPARE(stateSpy.count(), stateSignals);
    m_bus->stopUPower();
}

void TestDevice::upowerVanishes_data()
{
    QTest::addColumn<QString>("tree");
    QTest::addColumn<float>("level");
    QTest::addColumn<int>("state");

    QTest::newRow("no battery in sysfs either") << "no-such-tree" << -1.0f << int(Device::BatteryStateUnknown);
    QTest::newRow("sysfs battery takes over") << "laptop-charging" << 0.83f << int(Device::BatteryStateCharging);
}

void TestDevice::upowerVanishes()
{
    QFETCH(QString, tree);
    QFETCH(float, level);
    QFETCH(int, state);

    QVERIFY(m_bus->startUPower());
    QVERIFY(m_bus->callMock(QStringLiteral("SetupDisplayDevice"),
                            displayDeviceSetup(kindBattery, upDischarging, 33.0, true)));
    Device device(m_bus->connection(), fixtures + tree);
    device.setBatteryMonitoringEnabled(true);
    QTRY_COMPARE_WITH_TIMEOUT(device.batteryLevel(), 0.33f, 5000);

    QSignalSpy levelSpy(&device, &Device::batteryLevelDidChange);
    QSignalSpy stateSpy(&device, &Device::batteryStateDidChange);
    m_bus->stopUPower();
    QTRY_VERIFY_WITH_TIMEOUT(!device.isUsingUPower(), 5000);
    QCOMPARE(device.batteryLevel(), level);
    QCOMPARE(int(device.batteryState()), state);
    QCOMPARE(levelSpy.count(), 1);
    QCOMPARE(stateSpy.count(), 1);
}

void TestDevice::upowerAppearsLater()
{
    Device device(m_bus->connection(), fixtures + QStringLiteral("no-such-tree"));
    device.setBatteryMonitoringEnabled(true);
    QVERIFY(!device.isUsingUPower());
    QCOMPARE(device.batteryLevel(), -1.0f);

    QVERIFY(m_bus->startUPower());
    QTRY_VERIFY_WITH_TIMEOUT(device.isUsingUPower(), 5000);
    QVERIFY(m_bus->callMock(QStringLiteral("SetupDisplayDevice"),
                            displayDeviceSetup(kindBattery, upCharging, 64.0, true)));
    QTRY_COMPARE_WITH_TIMEOUT(device.batteryLevel(), 0.64f, 5000);
    QTRY_COMPARE_WITH_TIMEOUT(device.batteryState(), Device::BatteryStateCharging, 5000);
    m_bus->stopUPower();
}

void TestDevice::upowerIgnoredWhileNotMonitoring()
{
    QVERIFY(m_bus->startUPower());
    QVERIFY(m_bus->callMock(QStringLiteral("SetupDisplayDevice"),
                            displayDeviceSetup(kindBattery, upDischarging, 70.0, true)));
    Device device(m_bus->connection(), fixtures + QStringLiteral("no-such-tree"));
    device.setBatteryMonitoringEnabled(true);
    QTRY_COMPARE_WITH_TIMEOUT(device.batteryLevel(), 0.7f, 5000);
    device.setBatteryMonitoringEnabled(false);
    QCOMPARE(device.batteryLevel(), -1.0f);

    QSignalSpy levelSpy(&device, &Device::batteryLevelDidChange);
    QVERIFY(m_bus->callMock(QStringLiteral("SetDeviceProperties"),
                            {QVariant::fromValue(QDBusObjectPath(displayDevice)),
                             QVariantMap{{QStringLiteral("Percentage"), 20.0}}}));
    QVERIFY(!levelSpy.wait(300));
    QCOMPARE(device.batteryLevel(), -1.0f);

    // Switched on again, the figure is fetched afresh rather than remembered.
    device.setBatteryMonitoringEnabled(true);
    QTRY_COMPARE_WITH_TIMEOUT(device.batteryLevel(), 0.2f, 5000);
    QCOMPARE(levelSpy.count(), 1);
    m_bus->stopUPower();
}

QTEST_GUILESS_MAIN(TestDevice)
#include "tst_device.moc"
