#pragma once

#include <QString>

class QAccessibleInterface;
class QObject;

// How a screen reader sees the pages' own painted widgets (the labels), on top of what
// ViewsAccessibility gives the drawing widgets. install() installs both, once.
class ScreensAccessibility {
public:
    static void install();
    static QAccessibleInterface *factory(const QString &className, QObject *object);
};
