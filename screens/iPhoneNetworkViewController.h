#pragma once

#include "NetworkPage.h"

// The phone's "Network" page: the network list under the 20-point title band.
class iPhoneNetworkViewController : public NetworkPage {
    Q_OBJECT
public:
    explicit iPhoneNetworkViewController(QWidget *parent = nullptr);

    // Lays the page out again after it has been made shorter for a banner.
    void setFrameForAd();
};
