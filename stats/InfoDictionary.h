#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>

// One line of an information page: the label shown and the text shown.
struct InfoRow {
    QString key;
    QString value;

    bool operator==(const InfoRow &other) const = default;
};

using InfoSection = QList<InfoRow>;

// Sections of rows keyed by name. Sections keep the order they were added in
// and rows keep display order; a missing value is always "" rather than null,
// so that every row can be shown and serialised.
class InfoDictionary {
public:
    void addSection(const QString &name, const InfoSection &rows);

    bool contains(const QString &name) const;
    InfoSection section(const QString &name) const; // empty when absent
    QStringList sectionNames() const;

    // {"Section": [{"Key": ..., "Value": ...}, ...], ...}; an empty value, one that cannot
    // be known, is null.
    QJsonObject toJson() const;

    bool operator==(const InfoDictionary &other) const = default;

private:
    QList<std::pair<QString, InfoSection>> _sections;
};
