#pragma once

#include "InfoPage.h"

// The "System" page. Its table of system information arrives with the
// system information reader; until then the page shows its panel and title.
class iPhoneSystemViewController : public InfoPage {
    Q_OBJECT
public:
    explicit iPhoneSystemViewController(QWidget *parent = nullptr);
};
