#pragma once

#include "InfoDictionary.h"

#include <QStringList>

// Reading the information tables in tests: a row's value by its caption, and the
// captions in display order.
inline QString rowValue(const InfoSection &section, const QString &key)
{
    for (const InfoRow &row : section) {
        if (row.key == key)
            return row.value;
    }
    return QStringLiteral("<missing row>");
}

inline QString rowValue(const InfoDictionary &info, const QString &section, const QString &key)
{
    return rowValue(info.section(section), key);
}

inline QStringList keys(const InfoSection &section)
{
    QStringList result;
    for (const InfoRow &row : section)
        result.append(row.key);
    return result;
}
