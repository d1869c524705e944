#include "ADControl.h"

ADControl::ADControl(QObject *parent)
    : ADControlBase(parent)
{
}

ADControl *ADControl::defaultsAD()
{
    return sharedInstance<ADControl>();
}

ADControl::Frames ADControl::frames(float y) const
{
    const QRect slot = QRectF(0, y, 320, 50).toRect();
    const QRect parked = slot.translated(0, 50);
    return {parked, slot, parked, slot, slot};
}

void ADControl::announce(const QString &adKind)
{
    Q_EMIT ReceiveAd(QVariantMap{{QStringLiteral("AdKind"), adKind}});
}
