#pragma once

#include "InterfaceOrientation.h"
#include "NetworkPage.h"

// The tablet's network panel, page 1 of the summary panel's pager: the network list
// with fixed 344-point rows, the lamp at x 274. Built without data: the first record
// comes with the application's activation.
class iPadNetworkViewController : public NetworkPage {
    Q_OBJECT
public:
    explicit iPadNetworkViewController(QWidget *parent = nullptr);

    // Any: the panel has nothing that depends on how the tablet is held.
    bool shouldAutorotateToInterfaceOrientation(InterfaceOrientation orientation) const;
};
