#pragma once

#include "SummaryPanels.h"

class QScrollArea;

// The "Summary" page: the four Summary panels in a column that scrolls vertically
// under the page's 20-point title band.
class iPhoneTotalViewController : public SummaryPanels {
    Q_OBJECT
public:
    explicit iPhoneTotalViewController(QWidget *parent = nullptr);

    // Builds the page at the widget's current size, shows the memory and disk figures of
    // the moment and the battery as the device reports it.
    void viewDidLoad();
    void setFrameForAd();

    QScrollArea *scrollView() const { return _scrollView; }

private:
    QScrollArea *_scrollView = nullptr;
};
