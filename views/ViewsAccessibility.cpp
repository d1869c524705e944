#include "ViewsAccessibility.h"

#include "OOHistogramAccessible.h"
#include "OOPieChartAccessible.h"
#include "OOStateBarAccessible.h"
#include "PageTabListAccessible.h"

#include <QAccessible>
#include <QWidget>

void ViewsAccessibility::install()
{
    static const bool installed = [] {
        QAccessible::installFactory(&ViewsAccessibility::factory);
        return true;
    }();
    Q_UNUSED(installed);
}

QAccessibleInterface *ViewsAccessibility::factory(const QString &className, QObject *object)
{
    auto *widget = qobject_cast<QWidget *>(object);
    if (!widget)
        return nullptr;
    if (className == QLatin1String("OOPageControl") || className == QLatin1String("DotPageControl"))
        return new PageTabListAccessible(widget);
    if (className == QLatin1String("OOHistogramView"))
        return new OOHistogramAccessible(widget);
    if (className == QLatin1String("OOPieChartView"))
        return new OOPieChartAccessible(widget);
    if (className == QLatin1String("OOStateBarView"))
        return new OOStateBarAccessible(widget);
    return nullptr;
}
