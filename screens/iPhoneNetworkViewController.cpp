#include "iPhoneNetworkViewController.h"

iPhoneNetworkViewController::iPhoneNetworkViewController(QWidget *parent)
    : InfoPage(QStringLiteral("Network Information"), parent)
{
}
