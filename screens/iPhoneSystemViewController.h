#pragma once

#include "SystemPage.h"

// The phone's "System" page: the system list under the 20-point title band.
class iPhoneSystemViewController : public SystemPage {
    Q_OBJECT
public:
    explicit iPhoneSystemViewController(QWidget *parent = nullptr);

    // Lays the page out again after it has been made shorter for a banner.
    void setFrameForAd();
};
