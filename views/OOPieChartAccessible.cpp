#include "OOPieChartAccessible.h"

#include "OOPieChartView.h"

#include <cmath>

OOPieChartAccessible::OOPieChartAccessible(QWidget *pieChart)
    : QAccessibleWidget(pieChart, QAccessible::Chart)
{
}

QString OOPieChartAccessible::text(QAccessible::Text t) const
{
    if (t != QAccessible::Name)
        return QAccessibleWidget::text(t);
    const auto *view = static_cast<const OOPieChartView *>(widget());
    QString name = widget()->accessibleName();
    if (name.isEmpty())
        name = QStringLiteral("Chart");

    const QList<PieChartItem> &items = view->itemData();
    double total = 0;
    for (const PieChartItem &item : items)
        total += double(item.value());
    if (!(total > 0))
        return name + QStringLiteral(": no data");

    QStringList parts;
    for (qsizetype i = 0; i < items.size(); ++i) {
        const QString segment = view->itemNames().value(i, QStringLiteral("segment %1").arg(i + 1));
        parts << QStringLiteral("%1 %2%").arg(segment).arg(std::lround(double(items.at(i).value()) / total * 100.0));
    }
    return name + QStringLiteral(": ") + parts.join(QStringLiteral(", "));
}
