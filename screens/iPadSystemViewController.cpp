#include "iPadSystemViewController.h"

iPadSystemViewController::iPadSystemViewController(QWidget *parent)
    : SystemPage(TabletInsets, InfoCellDelegate::TabletSystemCell, parent)
{
}

void iPadSystemViewController::initWithFrame(const QRect &frame)
{
    setGeometry(frame);
    viewDidLoad();
}

bool iPadSystemViewController::shouldAutorotateToInterfaceOrientation(InterfaceOrientation) const
{
    return true;
}
