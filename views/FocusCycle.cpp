#include "FocusCycle.h"

#include <QWidget>

bool FocusCycle::step(QWidget *screen, bool next)
{
    QWidget *from = screen->focusWidget();
    if (!from)
        from = screen;
    QWidget *candidate = from;
    // The focus chain is a ring through every widget of the window: one lap at most.
    const qsizetype lap = screen->findChildren<QWidget *>().size() + 1;
    for (qsizetype i = 0; i < lap; ++i) {
        candidate = next ? candidate->nextInFocusChain() : candidate->previousInFocusChain();
        if (candidate == from)
            return false;
        if (screen->isAncestorOf(candidate) && (candidate->focusPolicy() & Qt::TabFocus) && candidate->isEnabled()
            && candidate->isVisibleTo(screen)) {
            candidate->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            return true;
        }
    }
    return false;
}
