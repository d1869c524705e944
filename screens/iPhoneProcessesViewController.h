#pragma once

#include "CpuUsageData.h"
#include "ProcessesPage.h"

class LabelView;

// The phone's "Processes" page: the process list under the 20-point title band, with
// the overall CPU usage beside the process count.
class iPhoneProcessesViewController : public ProcessesPage {
    Q_OBJECT
public:
    explicit iPhoneProcessesViewController(QWidget *parent = nullptr);

    void viewDidLoad() override;

    void setCpuUsageData(const CpuUsageData &cpuUsageData);
    // Lays the page out again after it has been made shorter for a banner.
    void setFrameForAd();

    QString cpuUsageText() const;

private:
    LabelView *_cpuUsage = nullptr;
};
