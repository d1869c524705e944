#pragma once

#include "InterfaceOrientation.h"
#include "ProcessesPage.h"

// The tablet's processes panel, in the summary panel's lower left: the process list
// with fixed 344-point rows and a centred "Priority" header. It shows no CPU usage: the
// summary panel beside it does.
class iPadProcessesViewConroller : public ProcessesPage {
    Q_OBJECT
public:
    explicit iPadProcessesViewConroller(QWidget *parent = nullptr);

    // No pager holds this list: it takes the keyboard itself, by Tab.
    void viewDidLoad() override;

    bool shouldAutorotateToInterfaceOrientation(InterfaceOrientation orientation) const;
};
