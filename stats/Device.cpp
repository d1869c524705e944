#include "Device.h"

#include "DeviceIdentity.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDir>
#include <QFile>
#include <QTimer>

#include <algorithm>

namespace {

const QString upowerService = QStringLiteral("org.freedesktop.UPower");
const QString displayDevicePath = QStringLiteral("/org/freedesktop/UPower/devices/DisplayDevice");
const QString upowerDeviceInterface = QStringLiteral("org.freedesktop.UPower.Device");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

constexpr uint upowerKindBattery = 2;
constexpr int defaultPollInterval = 5000;

// Small attribute files only; sysfs reports a page as their size whatever they hold.
QString readAttribute(const QString &directory, const QString &name)
{
    QFile file(directory + QLatin1Char('/') + name);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromUtf8(file.read(256)).trimmed();
}

std::optional<double> readNumber(const QString &directory, const QString &name)
{
    const QString text = readAttribute(directory, name);
    bool ok = false;
    const double value = text.toDouble(&ok);
    if (!ok)
        return std::nullopt;
    return value;
}

float levelFromPercent(double percent)
{
    return float(std::clamp(percent, 0.0, 100.0) / 100.0);
}

} // namespace

Device::Device(const QString &sysfsRoot, QObject *parent)
    : QObject(parent)
    , _sysfsRoot(sysfsRoot)
{
    _pollTimer = new QTimer(this);
    _pollTimer->setInterval(defaultPollInterval);
    connect(_pollTimer, &QTimer::timeout, this, &Device::readSysfs);
}

Device::Device(const QDBusConnection &bus, const QString &sysfsRoot, QObject *parent)
    : Device(sysfsRoot, parent)
{
    if (!bus.isConnected())
        return;
    _bus = bus;
    _serviceWatcher = new QDBusServiceWatcher(
        upowerService, bus, QDBusServiceWatcher::WatchForRegistration | QDBusServiceWatcher::WatchForUnregistration,
        this);
    connect(_serviceWatcher, &QDBusServiceWatcher::serviceRegistered, this, [this] {
        if (_monitoring)
            useUPower();
    });
    connect(_serviceWatcher, &QDBusServiceWatcher::serviceUnregistered, this, [this] {
        if (_monitoring)
            useSysfs();
    });
}

Device::~Device()
{
    stop();
}

Device *Device::currentDevice()
{
    // Made on first use (safely from any thread) and kept until the process ends.
    static Device *const device = [] {
        const QDBusConnection systemBus = QDBusConnection::systemBus();
        Device *made = systemBus.isConnected() ? new Device(systemBus, QStringLiteral("/"))
                                               : new Device(QStringLiteral("/"));
        if (QCoreApplication *application = QCoreApplication::instance();
            application && made->thread() != application->thread())
            made->moveToThread(application->thread());
        return made;
    }();
    return device;
}

void Device::setBatteryMonitoringEnabled(bool enabled)
{
    if (enabled == _monitoring)
        return;
    _monitoring = enabled;
    if (enabled) {
        start();
    } else {
        stop();
        report(-1.0f, BatteryStateUnknown);
    }
}

bool Device::isBatteryMonitoringEnabled() const
{
    return _monitoring;
}

float Device::batteryLevel() const
{
    return _level;
}

Device::BatteryState Device::batteryState() const
{
    return _state;
}

int Device::pollInterval() const
{
    return _pollTimer->interval();
}

void Device::setPollInterval(int milliseconds)
{
    _pollTimer->setInterval(std::max(1, milliseconds));
}

bool Device::isUsingUPower() const
{
    return _usingUPower;
}

QString Device::name() const
{
    return DeviceIdentity(_sysfsRoot).name();
}

QString Device::uniqueIdentifier() const
{
    return DeviceIdentity(_sysfsRoot).uniqueIdentifier();
}

QString Device::systemName() const
{
    return DeviceIdentity(_sysfsRoot).systemName();
}

QString Device::systemVersion() const
{
    return DeviceIdentity(_sysfsRoot).systemVersion();
}

Device::BatteryState Device::stateFromUPower(uint upowerState)
{
    switch (upowerState) {
    case 1: // charging
        return BatteryStateCharging;
    case 2: // discharging
    case 3: // empty: still running from the battery
        return BatteryStateUnplugged;
    case 4: // fully charged
    case 5: // pending charge: plugged in but held, what sysfs calls "Not charging"
        return BatteryStateFull;
    default:
        return BatteryStateUnknown;
    }
}

Device::BatteryState Device::stateFromSysfsStatus(const QString &status)
{
    if (status == QLatin1String("Discharging"))
        return BatteryStateUnplugged;
    if (status == QLatin1String("Charging"))
        return BatteryStateCharging;
    if (status == QLatin1String("Full") || status == QLatin1String("Not charging"))
        return BatteryStateFull;
    return BatteryStateUnknown;
}

void Device::start()
{
    if (_bus && _bus->interface() && _bus->interface()->isServiceRegistered(upowerService))
        useUPower();
    else
        useSysfs();
}

void Device::stop()
{
    _pollTimer->stop();
    if (_usingUPower) {
        _bus->disconnect(upowerService, displayDevicePath, propertiesInterface, QStringLiteral("PropertiesChanged"),
                         this, SLOT(upowerPropertiesChanged(QString, QVariantMap, QStringList)));
    }
    _usingUPower = false;
    ++_upowerGeneration;
    _upowerProperties.clear();
}

void Device::useUPower()
{
    stop();
    _usingUPower = true;
    _bus->connect(upowerService, displayDevicePath, propertiesInterface, QStringLiteral("PropertiesChanged"), this,
                  SLOT(upowerPropertiesChanged(QString, QVariantMap, QStringList)));
    // The figures read so far stay until UPower's first answer replaces them.
    fetchUPower();
}

void Device::useSysfs()
{
    stop();
    readSysfs();
    _pollTimer->start();
}

void Device::fetchUPower()
{
    QDBusMessage call = QDBusMessage::createMethodCall(upowerService, displayDevicePath, propertiesInterface,
                                                       QStringLiteral("GetAll"));
    call << upowerDeviceInterface;
    auto *watcher = new QDBusPendingCallWatcher(_bus->asyncCall(call), this);
    const quint64 generation = _upowerGeneration;
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, generation](QDBusPendingCallWatcher *w) {
        w->deleteLater();
        if (generation == _upowerGeneration)
            upowerReply(w);
    });
}

void Device::upowerReply(QDBusPendingCallWatcher *watcher)
{
    QDBusPendingReply<QVariantMap> reply = *watcher;
    if (reply.isError()) {
        // UPower is going away or has no display device: nothing trustworthy to show.
        _upowerProperties.clear();
        report(-1.0f, BatteryStateUnknown);
        return;
    }
    _upowerProperties = reply.value();
    applyUPower(_upowerProperties);
}

void Device::upowerPropertiesChanged(const QString &interfaceName, const QVariantMap &changed,
                                     const QStringList &invalidated)
{
    if (!_usingUPower || interfaceName != upowerDeviceInterface)
        return;
    // A partial set alone would read as "no battery": with nothing whole to patch (UPower
    // answered before its display device was ready), read the device whole again.
    if (!invalidated.isEmpty() || _upowerProperties.isEmpty()) {
        fetchUPower();
        return;
    }
    for (auto it = changed.cbegin(); it != changed.cend(); ++it)
        _upowerProperties.insert(it.key(), it.value());
    applyUPower(_upowerProperties);
}

void Device::applyUPower(const QVariantMap &properties)
{
    const bool present = properties.value(QStringLiteral("IsPresent")).toBool()
        && properties.value(QStringLiteral("Type")).toUInt() == upowerKindBattery;
    if (!present) {
        report(-1.0f, BatteryStateUnknown);
        return;
    }
    bool ok = false;
    const double percent = properties.value(QStringLiteral("Percentage")).toDouble(&ok);
    report(ok ? levelFromPercent(percent) : -1.0f, stateFromUPower(properties.value(QStringLiteral("State")).toUInt()));
}

void Device::readSysfs()
{
    const QDir folder(_sysfsRoot + QStringLiteral("/sys/class/power_supply"));
    const QStringList entries = folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    for (const QString &entry : entries) {
        const QString supply = folder.filePath(entry);
        if (readAttribute(supply, QStringLiteral("type")) != QLatin1String("Battery"))
            continue;
        // Mice, headsets and other peripherals report batteries of their own.
        if (readAttribute(supply, QStringLiteral("scope")) == QLatin1String("Device"))
            continue;
        if (readAttribute(supply, QStringLiteral("present")) == QLatin1String("0"))
            continue;

        float level = -1.0f;
        if (const auto capacity = readNumber(supply, QStringLiteral("capacity"))) {
            level = levelFromPercent(*capacity);
        } else {
            // Some drivers give only the charge or energy counters.
            for (const auto &[now, full] :
                 {std::pair{"energy_now", "energy_full"}, std::pair{"charge_now", "charge_full"}}) {
                const auto nowValue = readNumber(supply, QLatin1String(now));
                const auto fullValue = readNumber(supply, QLatin1String(full));
                if (nowValue && fullValue && *fullValue > 0) {
                    level = levelFromPercent(*nowValue * 100.0 / *fullValue);
                    break;
                }
            }
        }
        report(level, stateFromSysfsStatus(readAttribute(supply, QStringLiteral("status"))));
        return;
    }
    report(-1.0f, BatteryStateUnknown);
}

void Device::report(float level, BatteryState state)
{
    const bool levelChanged = level != _level;
    const bool stateChanged = state != _state;
    _level = level;
    _state = state;
    // Both figures are in place before either signal goes out: a listener reads both.
    if (levelChanged)
        Q_EMIT batteryLevelDidChange();
    if (stateChanged)
        Q_EMIT batteryStateDidChange();
}
