#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <optional>

class QDBusPendingCallWatcher;
class QDBusServiceWatcher;
class QTimer;

// The device this process runs on: its battery, its name and its system
// identification (read from the files under the same root).
//
// The battery comes from UPower's display device on the given bus while UPower is
// there, and from the first battery under <sysfsRoot>/sys/class/power_supply
// otherwise, re-read every pollInterval(). No battery is the normal case on a
// desktop or in a container: level -1, state unknown.
//
// While monitoring is off nothing is read and the battery reads as unknown. The two
// change signals fire once for each change of what batteryLevel() and
// batteryState() return, switching monitoring on or off included, and never when
// a reading brings nothing new.
class Device : public QObject {
    Q_OBJECT

public:
    enum BatteryState {
        BatteryStateUnknown = 0,
        BatteryStateUnplugged = 1,
        BatteryStateCharging = 2,
        BatteryStateFull = 3,
    };
    Q_ENUM(BatteryState)

    // Without a bus only the power-supply folder is read.
    explicit Device(const QString &sysfsRoot = QStringLiteral("/"), QObject *parent = nullptr);
    Device(const QDBusConnection &bus, const QString &sysfsRoot = QStringLiteral("/"), QObject *parent = nullptr);
    ~Device() override;

    // The process-wide device: the system bus (when it can be reached) and the real
    // /sys. Made on first use and kept until the process ends.
    static Device *currentDevice();

    void setBatteryMonitoringEnabled(bool enabled);
    bool isBatteryMonitoringEnabled() const;

    float batteryLevel() const; // 0..1, or -1 when unknown or not monitored
    BatteryState batteryState() const;

    // Time between two readings of the power-supply folder (default 5 s).
    int pollInterval() const;
    void setPollInterval(int milliseconds);

    // True while the figures come from UPower rather than from the folder.
    bool isUsingUPower() const;

    QString name() const;
    QString uniqueIdentifier() const;
    QString systemName() const;
    QString systemVersion() const;

Q_SIGNALS:
    void batteryLevelDidChange();
    void batteryStateDidChange();

private Q_SLOTS:
    void upowerPropertiesChanged(const QString &interfaceName, const QVariantMap &changed,
                                 const QStringList &invalidated);

private:
    static BatteryState stateFromUPower(uint upowerState);
    static BatteryState stateFromSysfsStatus(const QString &status);

    void start();
    void stop();
    void useUPower();
    void useSysfs();
    void fetchUPower();
    void upowerReply(QDBusPendingCallWatcher *watcher);
    void applyUPower(const QVariantMap &properties);
    void readSysfs();
    void report(float level, BatteryState state);

    std::optional<QDBusConnection> _bus;
    QString _sysfsRoot;
    QDBusServiceWatcher *_serviceWatcher = nullptr;
    QTimer *_pollTimer = nullptr;
    bool _monitoring = false;
    bool _usingUPower = false;
    quint64 _upowerGeneration = 0; // replies from an older subscription are dropped
    QVariantMap _upowerProperties;
    float _level = -1.0f;
    BatteryState _state = BatteryStateUnknown;
};
