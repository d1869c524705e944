#include "iPhoneNetworkViewController.h"

iPhoneNetworkViewController::iPhoneNetworkViewController(QWidget *parent)
    : NetworkPage(PhoneInsets, InfoCellDelegate::PhoneNetworkCell, parent)
{
}

void iPhoneNetworkViewController::setFrameForAd()
{
    layoutForSize();
}
