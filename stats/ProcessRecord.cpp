#include "ProcessRecord.h"

const QString ProcessRecord::pidKey = QStringLiteral("PID");
const QString ProcessRecord::processNameKey = QStringLiteral("ProcessName");
const QString ProcessRecord::priorityKey = QStringLiteral("Priority");
const QString ProcessRecord::startTimeKey = QStringLiteral("StartTime");

QVariantMap ProcessRecord::toVariantMap() const
{
    return {{pidKey, pid}, {processNameKey, processName}, {priorityKey, priority}, {startTimeKey, startTime}};
}

QJsonObject ProcessRecord::toJson() const
{
    const auto share = [](const std::optional<double> &value) {
        return value ? QJsonValue(*value) : QJsonValue(QJsonValue::Null);
    };
    return {{pidKey, pid},
            {processNameKey, processName},
            {priorityKey, priority},
            {startTimeKey, startTime},
            {QStringLiteral("pid"), pid.toLongLong()},
            {QStringLiteral("priority"), priority.toLongLong()},
            {QStringLiteral("startedAt"), startedAt ? QJsonValue(*startedAt) : QJsonValue(QJsonValue::Null)},
            {QStringLiteral("state"),
             usage.state ? QJsonValue(QString(QLatin1Char(usage.state))) : QJsonValue(QJsonValue::Null)},
            {QStringLiteral("parentPid"), usage.parentPid},
            {QStringLiteral("threads"), usage.threads},
            {QStringLiteral("kernelThread"), usage.kernelThread},
            {QStringLiteral("residentBytes"),
             usage.residentBytes ? QJsonValue(qint64(*usage.residentBytes)) : QJsonValue(QJsonValue::Null)},
            {QStringLiteral("cpuPercentOfOneCpu"), share(usage.cpuOfOneCore)},
            {QStringLiteral("cpuPercentOfMachine"), share(usage.cpuOfMachine)}};
}
