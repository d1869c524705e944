#pragma once

#include "OOPageControlDelegate.h"

#include <QVariantMap>
#include <QWidget>

class OOPageControl;
class PagingScrollView;
class QAbstractButton;
class Device;
class QTimer;
class StatCore;
class iPhoneTotalViewController;
class iPhoneProcessesViewController;
class iPhoneSystemViewController;
class iPhoneNetworkViewController;

// The phone's root screen: title bar with the page indicator, the four pages side by
// side in a horizontal pager, and the two-second refresh that feeds the pages.
class iPhoneRootViewController : public QWidget, public OOPageControlDelegate {
    Q_OBJECT
public:
    static constexpr int RefreshIntervalMs = 2000;
    // The disk fills and empties slowly: its figure is read again this often while the
    // Summary page is shown, and at every activation.
    static constexpr int DiskRefreshIntervalMs = 30000;
    static constexpr int BannerHeight = 50;
    static constexpr int TitleBarHeight = 20;

    // Feeds its pages from statCore and shows device's battery; null stands for the
    // process-wide StatCore::shared() and Device::currentDevice().
    explicit iPhoneRootViewController(StatCore *statCore = nullptr, Device *device = nullptr,
                                      QWidget *parent = nullptr);
    ~iPhoneRootViewController() override;

    // Builds the screen at the widget's current size; call once.
    void viewDidLoad();

    void refreshSystemState();
    // Reads the network record and shows it on the Network page: on every activation.
    void reloadNetworkData();
    // Reads the disk figures and shows them on the Summary page.
    void refreshDiskUsage();
    void buttonWasTouchUpInside(QAbstractButton *sender);
    void scrollViewDidEndDecelerating(PagingScrollView *scrollView);
    void pageControlClicked(OOPageControl *pageControl, int pageNumber) override;
    // The first arriving banner shortens the pager once to make room for it.
    void receiveAd(const QVariantMap &userInfo);

    PagingScrollView *mainScrollView() const { return _mainScrollView; }
    OOPageControl *pageControl() const { return _pageControl; }
    QTimer *systemStateGetTimer() const { return _systemStateGetTimer; }
    QTimer *diskRefreshTimer() const { return _diskRefreshTimer; }
    QList<QAbstractButton *> tabButtons() const { return _tabButtons; }
    iPhoneTotalViewController *totalViewController() const { return _totalViewController; }
    iPhoneProcessesViewController *processesViewController() const { return _processesViewController; }
    iPhoneSystemViewController *systemViewController() const { return _systemViewController; }
    iPhoneNetworkViewController *networkViewController() const { return _networkViewController; }

protected:
    bool focusNextPrevChild(bool next) override;
    void wheelEvent(QWheelEvent *event) override;
    // Keys the pager leaves: on the Processes page they find and act on a process.
    void keyPressEvent(QKeyEvent *event) override;

private:
    // The page indicator follows the page shown; a disk figure that went stale meanwhile
    // is read again when the Summary page comes back.
    void showingPage(int page);

    StatCore *_statCore;
    Device *_device;
    PagingScrollView *_mainScrollView = nullptr;
    QTimer *_systemStateGetTimer = nullptr;
    QTimer *_diskRefreshTimer = nullptr;
    int _shownPage = 0;
    bool _diskStale = false; // a refresh was due while another page was shown
    OOPageControl *_pageControl = nullptr;
    iPhoneTotalViewController *_totalViewController = nullptr;
    iPhoneProcessesViewController *_processesViewController = nullptr;
    iPhoneSystemViewController *_systemViewController = nullptr;
    iPhoneNetworkViewController *_networkViewController = nullptr;
    QList<QAbstractButton *> _tabButtons;
};
