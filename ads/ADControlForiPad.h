#pragma once

#include "ADControlBase.h"

// The tablet's banner slot: a 768 x 66 platform banner or a 728 x 90 network banner,
// 90 points above the foot. The tablet screen does not resize for it, so nothing is
// announced.
class ADControlForiPad : public ADControlBase {
    Q_OBJECT

public:
    explicit ADControlForiPad(QObject *parent = nullptr);

    static ADControlForiPad *defaultsADForiPad();

    Frames frames(float y) const override;

protected:
    void announce(const QString &adKind) override;
};
