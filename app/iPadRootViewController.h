#pragma once

#include "InterfaceOrientation.h"

#include <QWidget>

class LabelView;
class QTimer;
class iPadTotalViewController;

// The tablet's root screen: everything at once on the tablet background, the title
// across the top, the summary panel (which holds the processes panel and the system
// and network pager) and the dark footer band that carries the ad banner. Runs the same
// two-second refresh as the phone. No frame moves once it is built: the summary panel
// already leaves the footer free for the banner.
class iPadRootViewController : public QWidget
{
    Q_OBJECT

public:
    static constexpr int RefreshIntervalMs = 2000;
    static constexpr int FooterHeight = 90;

    explicit iPadRootViewController(QWidget *parent = nullptr);
    ~iPadRootViewController() override;

    // Builds the screen at the widget's current size; call once.
    void viewDidLoad();

    void refreshSystemState();
    bool shouldAutorotateToInterfaceOrientation(InterfaceOrientation orientation) const;

    iPadTotalViewController *totalViewController() const { return _totalViewController; }
    QTimer *systemStateGetTimer() const { return _systemStateGetTimer; }
    LabelView *titleLabel() const { return _titleLabel; }
    LabelView *footerLabel() const { return _footerLabel; }

private:
    iPadTotalViewController *_totalViewController = nullptr;
    QTimer *_systemStateGetTimer = nullptr;
    LabelView *_titleLabel = nullptr;
    LabelView *_footerLabel = nullptr;
};
