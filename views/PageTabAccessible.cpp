#include "PageTabAccessible.h"

#include "DotPageControl.h"
#include "OOPageControl.h"

PageTabAccessible::PageTabAccessible(QAccessibleInterface *list, QWidget *control, int page)
    : _list(list)
    , _control(control)
    , _page(page)
{
}

bool PageTabAccessible::isValid() const
{
    return _list->isValid() && _page < _list->childCount();
}

QWindow *PageTabAccessible::window() const
{
    return _list->window();
}

QAccessibleInterface *PageTabAccessible::parent() const
{
    return _list;
}

QString PageTabAccessible::text(QAccessible::Text t) const
{
    if (t != QAccessible::Name)
        return {};
    if (const auto *titled = qobject_cast<const OOPageControl *>(_control))
        return titled->title(_page);
    if (const auto *dots = qobject_cast<const DotPageControl *>(_control))
        return dots->titles().value(_page, QStringLiteral("Page %1").arg(_page + 1));
    return {};
}

QRect PageTabAccessible::rect() const
{
    QRectF local;
    if (const auto *titled = qobject_cast<const OOPageControl *>(_control))
        local = titled->cellRect(_page);
    else if (const auto *dots = qobject_cast<const DotPageControl *>(_control))
        local = dots->dotRect(_page);
    return local.toAlignedRect().translated(_control->mapToGlobal(QPoint(0, 0)));
}

bool PageTabAccessible::isCurrent() const
{
    if (const auto *titled = qobject_cast<const OOPageControl *>(_control))
        return titled->currentPage() == _page;
    if (const auto *dots = qobject_cast<const DotPageControl *>(_control))
        return dots->currentPage() == _page;
    return false;
}

QAccessible::State PageTabAccessible::state() const
{
    QAccessible::State state;
    state.selectable = true;
    state.selected = isCurrent();
    state.focusable = false;
    state.invisible = _list->state().invisible;
    return state;
}

void *PageTabAccessible::interface_cast(QAccessible::InterfaceType type)
{
    return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface *>(this) : nullptr;
}

QStringList PageTabAccessible::actionNames() const
{
    return {pressAction(), setFocusAction()};
}

void PageTabAccessible::doAction(const QString &actionName)
{
    // A tab's focus action is how some readers switch tabs: both turn to the page.
    if (actionName != pressAction() && actionName != setFocusAction())
        return;
    if (auto *titled = qobject_cast<OOPageControl *>(_control))
        titled->requestPage(_page);
    else if (auto *dots = qobject_cast<DotPageControl *>(_control))
        dots->requestPage(_page);
}
