#pragma once

#include <QString>

// Text helpers for figures: thousands grouping and blank trimming.
// A null QString stands for "no string" and comes back null.
class StringPrivate {
public:
    static QString stringByCommifyWithString(const QString &s);
    static QString stringByCommifyWithString(const QString &s, const QString &unit);
    static QString stringByTrimmingSpaceWithString(const QString &s);
};
