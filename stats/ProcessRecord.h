#pragma once

#include "ProcessUsage.h"

#include <QJsonObject>
#include <QString>
#include <QVariantMap>

#include <optional>

// One row of the process table. The four texts are what the screens show; the map and
// JSON forms use the keys the screens and the snapshot look up. The JSON form also has the
// figures as numbers, for scripts: "pid", "priority" and "startedAt" (seconds since 1970,
// null where the start time cannot be known), and what the process costs under keys of
// their own (see ProcessUsage).
struct ProcessRecord {
    QString pid;
    QString processName;
    QString priority;
    QString startTime;
    std::optional<qint64> startedAt;
    ProcessUsage usage;

    static const QString pidKey;
    static const QString processNameKey;
    static const QString priorityKey;
    static const QString startTimeKey;

    QVariantMap toVariantMap() const;
    QJsonObject toJson() const;

    friend bool operator==(const ProcessRecord &, const ProcessRecord &) = default;
};
