#include "PageTabListAccessible.h"

#include "DotPageControl.h"
#include "OOPageControl.h"
#include "PageTabAccessible.h"

PageTabListAccessible::PageTabListAccessible(QWidget *control)
    : QAccessibleWidget(control, QAccessible::PageTabList)
{
}

PageTabListAccessible::~PageTabListAccessible()
{
    for (QAccessible::Id id : std::as_const(_tabs))
        QAccessible::deleteAccessibleInterface(id);
}

int PageTabListAccessible::childCount() const
{
    if (const auto *titled = qobject_cast<const OOPageControl *>(widget()))
        return titled->numberOfPages();
    if (const auto *dots = qobject_cast<const DotPageControl *>(widget()))
        return dots->numberOfPages();
    return 0;
}

QAccessibleInterface *PageTabListAccessible::child(int index) const
{
    if (index < 0 || index >= childCount())
        return nullptr;
    if (const auto found = _tabs.constFind(index); found != _tabs.constEnd())
        return QAccessible::accessibleInterface(*found);
    auto *tab = new PageTabAccessible(const_cast<PageTabListAccessible *>(this), widget(), index);
    _tabs.insert(index, QAccessible::registerAccessibleInterface(tab));
    return tab;
}

int PageTabListAccessible::indexOfChild(const QAccessibleInterface *child) const
{
    const QAccessible::Id id = QAccessible::uniqueId(const_cast<QAccessibleInterface *>(child));
    return _tabs.key(id, -1);
}

QAccessibleInterface *PageTabListAccessible::childAt(int x, int y) const
{
    for (int page = 0; page < childCount(); ++page) {
        if (QAccessibleInterface *tab = child(page); tab->rect().contains(x, y))
            return tab;
    }
    return nullptr;
}

QString PageTabListAccessible::text(QAccessible::Text t) const
{
    if (t == QAccessible::Name && widget()->accessibleName().isEmpty())
        return QStringLiteral("Pages");
    return QAccessibleWidget::text(t);
}
