#pragma once

#include <QRect>
#include <QString>

#include <functional>

class QWidget;

// The banner kinds this application knows, by name. The controllers look the platform's
// banner up here rather than linking it, so a platform without one simply has no entry.
class BannerKinds {
public:
    using Factory = std::function<QWidget *(const QRect &frame)>;

    static void add(const QString &name, Factory factory);
    static void remove(const QString &name);
    // An empty factory when the kind is unknown.
    static Factory find(const QString &name);
};
