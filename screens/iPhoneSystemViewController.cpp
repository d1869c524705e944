#include "iPhoneSystemViewController.h"

iPhoneSystemViewController::iPhoneSystemViewController(QWidget *parent)
    : InfoPage(QStringLiteral("System Information"), parent)
{
}
