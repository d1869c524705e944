#include "iPadRootViewController.h"

#include <QPalette>

iPadRootViewController::iPadRootViewController(QWidget *parent)
    : QWidget(parent)
{
    QPalette palette = this->palette();
    palette.setColor(QPalette::Window, QColor(0x1c, 0x1c, 0x1e));
    setPalette(palette);
    setAutoFillBackground(true);
}
