#include "ADControlForiPad.h"

ADControlForiPad::ADControlForiPad(QObject *parent)
    : ADControlBase(parent)
{
}

ADControlForiPad *ADControlForiPad::defaultsADForiPad()
{
    return sharedInstance<ADControlForiPad>();
}

ADControlForiPad::Frames ADControlForiPad::frames(float y) const
{
    // The network banner comes back from a platform failure at x 0 but arrives at x 20;
    // the tablet has always placed it so.
    return {
        QRectF(0, y + 66 + 24, 768, 66).toRect(), QRectF(0, y + 12, 768, 66).toRect(),
        QRectF(20, y + 90, 728, 90).toRect(),     QRectF(20, y, 728, 90).toRect(),
        QRectF(0, y, 728, 90).toRect(),
    };
}

void ADControlForiPad::announce(const QString &)
{
}
