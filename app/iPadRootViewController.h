#pragma once

#include "InterfaceOrientation.h"

#include <QWidget>

class LabelView;
class Device;
class QTimer;
class StatCore;
class iPadTotalViewController;

// The tablet's root screen: everything at once on the tablet background, the title
// across the top, the summary panel (which holds the processes panel and the system
// and network pager) and the dark footer band that carries the ad banner. Runs the same
// two-second refresh as the phone. No frame moves once it is built: the summary panel
// already leaves the footer free for the banner.
class iPadRootViewController : public QWidget {
    Q_OBJECT

public:
    static constexpr int RefreshIntervalMs = 2000;
    static constexpr int DiskRefreshIntervalMs = 30000;
    static constexpr int FooterHeight = 90;

    // Feeds its pages from statCore and shows device's battery; null stands for the
    // process-wide StatCore::shared() and Device::currentDevice().
    explicit iPadRootViewController(StatCore *statCore = nullptr, Device *device = nullptr, QWidget *parent = nullptr);
    ~iPadRootViewController() override;

    // Builds the screen at the widget's current size; call once.
    void viewDidLoad();

    void refreshSystemState();
    // Reads the network record and shows it on the Network panel: on every activation.
    void reloadNetworkData();
    // Reads the disk figures and shows them on the disk panel: at every activation, and
    // every DiskRefreshIntervalMs while the window is shown.
    void refreshDiskUsage();
    bool shouldAutorotateToInterfaceOrientation(InterfaceOrientation orientation) const;

    iPadTotalViewController *totalViewController() const { return _totalViewController; }
    QTimer *systemStateGetTimer() const { return _systemStateGetTimer; }
    QTimer *diskRefreshTimer() const { return _diskRefreshTimer; }
    LabelView *titleLabel() const { return _titleLabel; }
    LabelView *footerLabel() const { return _footerLabel; }

protected:
    bool focusNextPrevChild(bool next) override;
    // The screen takes the keys: they find and act on a process in the processes panel.
    void keyPressEvent(QKeyEvent *event) override;

private:
    StatCore *_statCore;
    Device *_device;
    iPadTotalViewController *_totalViewController = nullptr;
    QTimer *_diskRefreshTimer = nullptr;
    QTimer *_systemStateGetTimer = nullptr;
    LabelView *_titleLabel = nullptr;
    LabelView *_footerLabel = nullptr;
};
