#include "OOStateBarAccessible.h"

#include "OOStateBarView.h"

#include <cmath>

OOStateBarAccessible::OOStateBarAccessible(QWidget *stateBar)
    : QAccessibleWidget(stateBar, QAccessible::ProgressBar)
{
}

QString OOStateBarAccessible::text(QAccessible::Text t) const
{
    if (t == QAccessible::Value)
        return QStringLiteral("%1%").arg(std::lround(currentValue().toDouble()));
    return QAccessibleWidget::text(t);
}

void *OOStateBarAccessible::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::ValueInterface)
        return static_cast<QAccessibleValueInterface *>(this);
    return QAccessibleWidget::interface_cast(type);
}

QVariant OOStateBarAccessible::currentValue() const
{
    return static_cast<const OOStateBarView *>(widget())->filledPercent();
}
