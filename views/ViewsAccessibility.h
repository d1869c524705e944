#pragma once

#include <QString>

class QAccessibleInterface;
class QObject;

// How a screen reader sees the drawing widgets that Qt cannot describe by itself: the
// page indicators as tab lists, the charts by what they show. install() is called once,
// at start (tests call it too); calling it again adds nothing.
class ViewsAccessibility {
public:
    static void install();
    static QAccessibleInterface *factory(const QString &className, QObject *object);
};
