#include "InfoDictionary.h"

#include <QJsonArray>
#include <QStringList>

void InfoDictionary::addSection(const QString &name, const InfoSection &rows)
{
    InfoSection cleaned;
    cleaned.reserve(rows.size());
    for (const InfoRow &row : rows)
        cleaned.append(
            {row.key.isNull() ? QStringLiteral("") : row.key, row.value.isNull() ? QStringLiteral("") : row.value});
    for (auto &entry : _sections) {
        if (entry.first == name) {
            entry.second = cleaned;
            return;
        }
    }
    _sections.append({name, cleaned});
}

bool InfoDictionary::contains(const QString &name) const
{
    for (const auto &entry : _sections) {
        if (entry.first == name)
            return true;
    }
    return false;
}

InfoSection InfoDictionary::section(const QString &name) const
{
    for (const auto &entry : _sections) {
        if (entry.first == name)
            return entry.second;
    }
    return {};
}

QStringList InfoDictionary::sectionNames() const
{
    QStringList names;
    for (const auto &entry : _sections)
        names.append(entry.first);
    return names;
}

QJsonObject InfoDictionary::toJson() const
{
    QJsonObject result;
    for (const auto &entry : _sections) {
        QJsonArray rows;
        for (const InfoRow &row : entry.second)
            rows.append(QJsonObject{
                {QStringLiteral("Key"), row.key},
                {QStringLiteral("Value"), row.value.isEmpty() ? QJsonValue(QJsonValue::Null) : QJsonValue(row.value)}});
        result.insert(entry.first, rows);
    }
    return result;
}
