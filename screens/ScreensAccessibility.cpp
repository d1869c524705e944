#include "ScreensAccessibility.h"

#include "LabelViewAccessible.h"
#include "ViewsAccessibility.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QWidget>

void ScreensAccessibility::install()
{
    ViewsAccessibility::install();
    static const bool installed = [] {
        QAccessible::installFactory(&ScreensAccessibility::factory);
        return true;
    }();
    Q_UNUSED(installed);
}

QAccessibleInterface *ScreensAccessibility::factory(const QString &className, QObject *object)
{
    auto *widget = qobject_cast<QWidget *>(object);
    if (!widget)
        return nullptr;
    if (className == QLatin1String("LabelView"))
        return new LabelViewAccessible(widget);
    // A plain container that was given a name is a titled group of figures (a Summary panel).
    if (className == QLatin1String("QWidget") && !widget->accessibleName().isEmpty())
        return new QAccessibleWidget(widget, QAccessible::Grouping);
    return nullptr;
}
