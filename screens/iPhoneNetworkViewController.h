#pragma once

#include "InfoPage.h"

// The "Network" page. Its table of network information arrives with the
// network information reader; until then the page shows its panel and title.
class iPhoneNetworkViewController : public InfoPage {
    Q_OBJECT
public:
    explicit iPhoneNetworkViewController(QWidget *parent = nullptr);
};
