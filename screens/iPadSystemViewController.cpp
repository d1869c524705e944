#include "iPadSystemViewController.h"

iPadSystemViewController::iPadSystemViewController(QWidget *parent)
    : SystemPage(TabletInsets, InfoCellDelegate::TabletSystemCell, parent)
{
}

bool iPadSystemViewController::shouldAutorotateToInterfaceOrientation(InterfaceOrientation) const
{
    return true;
}
