#pragma once

#include "InterfaceOrientation.h"
#include "SystemPage.h"

// The tablet's system panel, page 0 of the summary panel's pager: the system list
// with fixed 344-point rows.
class iPadSystemViewController : public SystemPage {
    Q_OBJECT
public:
    explicit iPadSystemViewController(QWidget *parent = nullptr);

    // Any: the panel has nothing that depends on how the tablet is held.
    bool shouldAutorotateToInterfaceOrientation(InterfaceOrientation orientation) const;
};
