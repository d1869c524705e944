#include "ZoomViewAccessible.h"

#include "ZoomView.h"

ZoomViewAccessible::ZoomViewAccessible(QWidget *zoomView)
    : QAccessibleWidget(zoomView, QAccessible::Window)
{
}

QAccessibleInterface *ZoomViewAccessible::deviceScreen() const
{
    return QAccessible::queryAccessibleInterface(static_cast<ZoomView *>(widget())->deviceScreen());
}

int ZoomViewAccessible::childCount() const
{
    return deviceScreen() ? 1 : 0;
}

QAccessibleInterface *ZoomViewAccessible::child(int index) const
{
    return index == 0 ? deviceScreen() : nullptr;
}

int ZoomViewAccessible::indexOfChild(const QAccessibleInterface *child) const
{
    return child && child == deviceScreen() ? 0 : -1;
}

QAccessibleInterface *ZoomViewAccessible::childAt(int x, int y) const
{
    return rect().contains(x, y) ? deviceScreen() : nullptr;
}

QAccessibleInterface *ZoomViewAccessible::factory(const QString &className, QObject *object)
{
    auto *widget = qobject_cast<QWidget *>(object);
    return widget && className == QLatin1String("ZoomView") ? new ZoomViewAccessible(widget) : nullptr;
}
