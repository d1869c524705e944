#include "OOPageCellButton.h"

OOPageCellButton::OOPageCellButton(QWidget *parent)
    : QAbstractButton(parent)
{
    setFocusPolicy(Qt::NoFocus);
    setAttribute(Qt::WA_NoSystemBackground);
}

void OOPageCellButton::paintEvent(QPaintEvent *)
{
}
