#pragma once

#include <QJsonObject>
#include <QString>
#include <QVariantMap>

// One row of the process table. Every value is display text; the map and JSON
// forms use the keys the screens and the snapshot look up.
struct ProcessRecord {
    QString pid;
    QString processName;
    QString priority;
    QString startTime;

    static const QString pidKey;
    static const QString processNameKey;
    static const QString priorityKey;
    static const QString startTimeKey;

    QVariantMap toVariantMap() const;
    QJsonObject toJson() const;

    friend bool operator==(const ProcessRecord &, const ProcessRecord &) = default;
};
