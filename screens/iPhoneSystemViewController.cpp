#include "iPhoneSystemViewController.h"

iPhoneSystemViewController::iPhoneSystemViewController(QWidget *parent)
    : SystemPage(PhoneInsets, InfoCellDelegate::PhoneSystemCell, parent)
{
}

void iPhoneSystemViewController::setFrameForAd()
{
    layoutForSize();
}
