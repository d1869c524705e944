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
    return {{pidKey, pid},
            {processNameKey, processName},
            {priorityKey, priority},
            {startTimeKey, startTime},
            {QStringLiteral("pid"), pid.toLongLong()},
            {QStringLiteral("priority"), priority.toLongLong()},
            {QStringLiteral("startedAt"), startedAt ? QJsonValue(*startedAt) : QJsonValue(QJsonValue::Null)}};
}
