#pragma once

#include "ADControlBase.h"

#include <QVariantMap>

// The phone's banner slot: 320 x 50 at the foot of the root pager, which makes room
// when told of a banner.
class ADControl : public ADControlBase {
    Q_OBJECT

public:
    explicit ADControl(QObject *parent = nullptr);

    static ADControl *defaultsAD();

    Frames frames(float y) const override;

Q_SIGNALS:
    // Each time a banner is shown: {"AdKind": "iAd"} or {"AdKind": "AdMob"}. Repeats are normal.
    void ReceiveAd(const QVariantMap &userInfo);

protected:
    void announce(const QString &adKind) override;
};
