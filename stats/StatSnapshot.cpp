#include "StatSnapshot.h"

#include "Device.h"
#include "ProcessDetailsReader.h"
#include "StatCore.h"

#include <QDateTime>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTimer>

#include <cmath>

namespace {

QJsonValue number(double value)
{
    if (!std::isfinite(value))
        return QJsonValue(QJsonValue::Null);
    // Whole byte counts read better (and compare with df) as integers than as 1.2e+11.
    if (value == std::trunc(value) && std::fabs(value) < 9007199254740992.0)
        return QJsonValue(qint64(value));
    return QJsonValue(value);
}

QJsonValue number(quint64 value)
{
    return QJsonValue(qint64(value));
}

// A one-off sample can afford what the screens read for one process only; PSS excepted,
// which makes the kernel walk every mapping of every process.
QJsonValue withDetails(const QJsonValue &table, const ProcessDetailsReader &reader)
{
    if (!table.isArray())
        return table;
    QJsonArray rows;
    for (const QJsonValue &value : table.toArray()) {
        QJsonObject row = value.toObject();
        const ProcessDetails details = reader.details(row.value(QStringLiteral("pid")).toInt());
        row.insert(QStringLiteral("commandLine"), details.commandLine);
        row.insert(QStringLiteral("executable"), details.executable);
        row.insert(QStringLiteral("cgroup"), details.cgroup);
        row.insert(QStringLiteral("unit"), details.unit);
        row.insert(QStringLiteral("user"), details.user);
        rows.append(row);
    }
    return rows;
}

} // namespace

QJsonObject StatSnapshot::capture(StatCore &core, Device *device, std::chrono::milliseconds cpuInterval)
{
    if (device)
        device->setBatteryMonitoringEnabled(true);
    core.cpuUsage();         // discards the ticks since the previous sample
    core.runningProcesses(); // and the processes' own, so their shares are over the interval
    if (cpuInterval.count() > 0) {
        QEventLoop interval;
        QTimer::singleShot(cpuInterval, &interval, &QEventLoop::quit);
        interval.exec();
    }
    QJsonObject snapshot;
    snapshot.insert(QStringLiteral("timestamp"), QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs));
    snapshot.insert(QStringLiteral("cpuInterval"), double(cpuInterval.count()) / 1000.0);
    snapshot.insert(QStringLiteral("cpuUsage"), cpuUsageJson(core.cpuUsage()));
    snapshot.insert(QStringLiteral("memoryUsage"), memoryUsageJson(core.memoryUsage()));
    snapshot.insert(QStringLiteral("diskUsage"), diskUsageJson(core.diskUsage()));
    snapshot.insert(QStringLiteral("runningProcesses"),
                    withDetails(runningProcessesJson(core.runningProcesses()), ProcessDetailsReader(core.rootDir())));
    snapshot.insert(QStringLiteral("systemInfo"), core.systemInfo().toJson());
    snapshot.insert(QStringLiteral("networkInfo"), core.networkInfo().toJson());
    snapshot.insert(QStringLiteral("battery"),
                    device ? batteryJson(device->batteryLevel(), device->batteryState())
                           : batteryJson(-1.0f, Device::BatteryStateUnknown));
    return snapshot;
}

QByteArray StatSnapshot::toJson(const QJsonObject &snapshot)
{
    return QJsonDocument(snapshot).toJson(QJsonDocument::Indented);
}

QJsonObject StatSnapshot::cpuUsageJson(const CpuUsageData &data)
{
    return {
        {QStringLiteral("user"), qint64(data.user)},
        {QStringLiteral("system"), qint64(data.system)},
        {QStringLiteral("idle"), qint64(data.idle)},
        {QStringLiteral("usage"), number(data.usage)},
    };
}

QJsonObject StatSnapshot::memoryUsageJson(const MemoryUsageData &data)
{
    return {
        {QStringLiteral("pageSize"), data.pageSize},
        {QStringLiteral("totalPages"), data.totalPages},
        {QStringLiteral("wired"), number(data.wired)},
        {QStringLiteral("active"), number(data.active)},
        {QStringLiteral("inactive"), number(data.inactive)},
        {QStringLiteral("free"), number(data.free)},
        {QStringLiteral("total"), number(data.total)},
        {QStringLiteral("wiredPercent"), number(data.wiredPercent)},
        {QStringLiteral("activePercent"), number(data.activePercent)},
        {QStringLiteral("inactivePercent"), number(data.inactivePercent)},
        {QStringLiteral("freePercent"), number(data.freePercent)},
        {QStringLiteral("physical"), number(data.physical)},
        {QStringLiteral("user"), number(data.user)},
    };
}

QJsonObject StatSnapshot::diskUsageJson(const DiskUsageData &data)
{
    return {
        {QStringLiteral("totalSize"), number(data.totalSize)},
        {QStringLiteral("freeSize"), number(data.freeSize)},
    };
}

QJsonValue StatSnapshot::runningProcessesJson(const std::optional<QList<ProcessRecord>> &processes)
{
    if (!processes)
        return QJsonValue(QJsonValue::Null);
    QJsonArray array;
    for (const ProcessRecord &record : *processes)
        array.append(record.toJson());
    return array;
}

QJsonObject StatSnapshot::batteryJson(float level, int state)
{
    static const char *const states[] = {"unknown", "unplugged", "charging", "full"};
    const bool known = level >= 0.0f && level <= 1.0f;
    return {
        // A float's own digits: 0.87f prints as 0.87, not 0.8700000047683716.
        {QStringLiteral("level"), known ? QJsonValue(QString::number(level).toDouble()) : QJsonValue(QJsonValue::Null)},
        {QStringLiteral("state"), QLatin1String(states[state >= 0 && state <= 3 ? state : 0])},
    };
}
