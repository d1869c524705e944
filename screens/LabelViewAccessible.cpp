#include "LabelViewAccessible.h"

#include "LabelView.h"

LabelViewAccessible::LabelViewAccessible(QWidget *label)
    : QAccessibleWidget(label, QAccessible::StaticText)
{
}

QString LabelViewAccessible::text(QAccessible::Text t) const
{
    if (t == QAccessible::Name && widget()->accessibleName().isEmpty())
        return static_cast<const LabelView *>(widget())->spokenText();
    return QAccessibleWidget::text(t);
}

QAccessible::Role LabelViewAccessible::role() const
{
    return static_cast<const LabelView *>(widget())->readAs();
}
