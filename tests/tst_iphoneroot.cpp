#include "ADControl.h"
#include "GADBannerView.h"
#include "OOPageControl.h"
#include "PagingScrollView.h"
#include "iPhoneNetworkViewController.h"
#include "iPhoneProcessesViewController.h"
#include "iPhoneRootViewController.h"
#include "iPhoneSystemViewController.h"
#include "iPhoneTotalViewController.h"

#include <QAbstractButton>
#include <QListView>
#include <QScrollArea>
#include <QTimer>
#include <QtTest>

namespace {

const QColor Orange = QColor::fromRgbF(1.0f, 0.5f, 0.0f);

// The page the indicator marks, read from its colours: -1 when none is marked.
int markedPage(const OOPageControl *control)
{
    int marked = -1;
    for (int i = 0; i < control->numberOfPages(); ++i) {
        if (control->titleColor(i) == Orange) {
            if (marked != -1)
                return -2;
            marked = i;
        }
    }
    return marked;
}

} // namespace

class TestIPhoneRoot : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<iPhoneRootViewController> makeRoot()
    {
        auto root = std::make_unique<iPhoneRootViewController>();
        root->resize(320, 460);
        root->viewDidLoad();
        // Scrolling needs a laid-out pager, as on screen.
        root->show();
        if (!QTest::qWaitForWindowExposed(root.get()))
            qWarning("root window not exposed");
        return root;
    }

private Q_SLOTS:
    void geometry()
    {
        auto root = makeRoot();
        QCOMPARE(root->pageControl()->geometry(), QRect(50, 0, 270, 20));
        QCOMPARE(root->mainScrollView()->geometry(), QRect(0, 0, 320, 460));
        QCOMPARE(root->mainScrollView()->contentSize(), QSize(1280, 460));
        QCOMPARE(root->totalViewController()->geometry(), QRect(0, 0, 320, 460));
        QCOMPARE(root->processesViewController()->geometry(), QRect(320, 0, 320, 460));
        QCOMPARE(root->systemViewController()->geometry(), QRect(640, 0, 320, 460));
        QCOMPARE(root->networkViewController()->geometry(), QRect(960, 0, 320, 460));
        QCOMPARE(markedPage(root->pageControl()), 0);
        QCOMPARE(root->pageControl()->title(3), QStringLiteral("Network"));
    }

    void tabButtons_data()
    {
        QTest::addColumn<int>("tab");
        QTest::addColumn<QRectF>("frame");
        QTest::newRow("Summary") << 0 << QRectF(50, 0, 67.5, 20);
        QTest::newRow("Processes") << 1 << QRectF(117.5, 0, 67.5, 20);
        QTest::newRow("System") << 2 << QRectF(185, 0, 67.5, 20);
        QTest::newRow("Network") << 3 << QRectF(252.5, 0, 67.5, 20);
    }
    void tabButtons()
    {
        QFETCH(int, tab);
        QFETCH(QRectF, frame);
        auto root = makeRoot();
        const QList<QAbstractButton *> buttons = root->tabButtons();
        QCOMPARE(buttons.size(), 4);
        QAbstractButton *button = buttons[tab];
        QCOMPARE(button->property("frame").toRectF(), frame);
        // Whole pixels on screen: the rounded edges stay within half a pixel and the tabs tile.
        QVERIFY(std::abs(button->geometry().left() - frame.left()) <= 0.5);
        QVERIFY(std::abs(button->geometry().right() + 1 - frame.right()) <= 0.5);
        if (tab > 0)
            QCOMPARE(button->geometry().left(), buttons[tab - 1]->geometry().right() + 1);
        // The tabs lie above the pager, so they take the taps on the title bar.
        QCOMPARE(root->childAt(button->geometry().center()), button);
    }

    void tapOnTitleTurnsPage_data()
    {
        QTest::addColumn<int>("tab");
        QTest::addColumn<int>("offset");
        QTest::newRow("Network") << 3 << 960;
        QTest::newRow("Processes") << 1 << 320;
        QTest::newRow("back to Summary") << 0 << 0;
    }
    void tapOnTitleTurnsPage()
    {
        QFETCH(int, tab);
        QFETCH(int, offset);
        auto root = makeRoot();
        if (tab == 0)
            root->mainScrollView()->setContentOffset(QPointF(640, 0), false);
        QTest::mouseClick(root->tabButtons()[tab], Qt::LeftButton);
        QCOMPARE(markedPage(root->pageControl()), tab);
        QTRY_COMPARE_WITH_TIMEOUT(root->mainScrollView()->contentOffset().x(), qreal(offset), 3000);
        // The programmatic scroll does not report a swipe: the indicator is set once.
        QCOMPARE(markedPage(root->pageControl()), tab);
    }

    void swipeSetsPage_data()
    {
        QTest::addColumn<int>("offset");
        QTest::addColumn<int>("page");
        QTest::newRow("rest at 640") << 640 << 2;
        QTest::newRow("rest at the last page") << 960 << 3;
        QTest::newRow("between pages truncates down") << 639 << 1;
    }
    void swipeSetsPage()
    {
        QFETCH(int, offset);
        QFETCH(int, page);
        auto root = makeRoot();
        root->mainScrollView()->setContentOffset(QPointF(offset, 0), false);
        root->scrollViewDidEndDecelerating(root->mainScrollView());
        QCOMPARE(markedPage(root->pageControl()), page);
    }

    void endOfAnotherScrollViewIsIgnored()
    {
        auto root = makeRoot();
        PagingScrollView other;
        other.resize(320, 460);
        other.setContentSize(QSize(1280, 460));
        other.setContentOffset(QPointF(960, 0), false);
        root->scrollViewDidEndDecelerating(&other);
        QCOMPARE(markedPage(root->pageControl()), 0);
    }

    void wheelTurnsPage()
    {
        auto root = makeRoot();
        QWidget *viewport = root->mainScrollView()->viewport();
        QWheelEvent wheel(QPointF(160, 200), viewport->mapToGlobal(QPointF(160, 200)), QPoint(), QPoint(0, -120),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(viewport, &wheel);
        QTRY_COMPARE_WITH_TIMEOUT(root->mainScrollView()->contentOffset().x(), qreal(320), 3000);
        QTRY_COMPARE_WITH_TIMEOUT(markedPage(root->pageControl()), 1, 3000);
    }

    void firstBannerShrinksPagerOnce()
    {
        auto root = makeRoot();
        const QVariantMap info{{QStringLiteral("AdKind"), QStringLiteral("AdMob")}};
        root->receiveAd(info);
        QCOMPARE(root->mainScrollView()->geometry(), QRect(0, 0, 320, 410));
        QCOMPARE(root->mainScrollView()->contentSize(), QSize(1280, 410));
        QCOMPARE(root->totalViewController()->scrollView()->geometry(), QRect(0, 20, 320, 390));
        QCOMPARE(root->processesViewController()->tableView()->geometry(), QRect(15, 80, 290, 295));
        QCOMPARE(root->networkViewController()->panelBackground()->geometry(), QRect(5, 5, 310, 380));

        // A second banner finds the pager already short and changes nothing.
        root->processesViewController()->tableView()->setGeometry(15, 80, 290, 100);
        root->receiveAd(QVariantMap{{QStringLiteral("AdKind"), QStringLiteral("iAd")}});
        QCOMPARE(root->mainScrollView()->geometry(), QRect(0, 0, 320, 410));
        QCOMPARE(root->processesViewController()->tableView()->geometry(), QRect(15, 80, 290, 100));
    }

    void bannerSlotAtTheFoot()
    {
        auto root = makeRoot();
        ADControl *banners = ADControl::defaultsAD();
        QCOMPARE(banners->viewController(), root.get());
        QCOMPARE(banners->yPoint(), 410.0f);
        GADBannerView *network = banners->adMobBanner();
        QVERIFY(network);
        QCOMPARE(network->parentWidget(), root.get());
        QCOMPARE(network->geometry(), QRect(0, 460, 320, 50));
        // The tabs still take the taps on the title bar.
        QCOMPARE(root->childAt(root->tabButtons()[0]->geometry().center()), root->tabButtons()[0]);
    }

    void bannerArrivalsMakeRoomOnce()
    {
        auto root = makeRoot();
        ADControl *banners = ADControl::defaultsAD();
        GADBannerView *network = banners->adMobBanner();
        banners->adViewDidReceiveAd(network);
        QCOMPARE(root->mainScrollView()->geometry(), QRect(0, 0, 320, 410));
        root->processesViewController()->tableView()->setGeometry(15, 80, 290, 100);
        banners->adViewDidReceiveAd(network);
        QCOMPARE(root->mainScrollView()->geometry(), QRect(0, 0, 320, 410));
        QCOMPARE(root->mainScrollView()->contentSize(), QSize(1280, 410));
        QCOMPARE(root->processesViewController()->tableView()->geometry(), QRect(15, 80, 290, 100));
        // The banner comes to rest in the room made for it.
        QTRY_COMPARE_WITH_TIMEOUT(network->geometry(), QRect(0, 410, 320, 50), 2000);
    }

    void refreshCadence()
    {
        auto root = makeRoot();
        QTimer *timer = root->systemStateGetTimer();
        QVERIFY(timer->isActive());
        QVERIFY(!timer->isSingleShot());
        QCOMPARE(timer->interval(), 2000);
        // Nothing is refreshed at once: the CPU figures wait for the first tick.
        QCOMPARE(root->totalViewController()->cpuUsageText(), QStringLiteral("0.0%"));
        QCOMPARE(root->processesViewController()->cpuUsageText(), QStringLiteral("CPU Usage:  0.0%"));

        timer->setInterval(20);
        QTRY_VERIFY_WITH_TIMEOUT(root->totalViewController()->cpuUsageText() != QStringLiteral("0.0%"), 3000);
    }

    void tickFeedsBothPagesTheSameSample()
    {
        auto root = makeRoot();
        root->systemStateGetTimer()->stop();
        root->processesViewController()->setProcData(QList<ProcessRecord>{});
        QCOMPARE(root->processesViewController()->totalText(), QStringLiteral("Total:  0"));

        root->refreshSystemState();
        // Summary shows "%5.1f%%" of the usage, Processes "CPU Usage:%5.1f%%" of the same value.
        const QString summary = root->totalViewController()->cpuUsageText();
        QCOMPARE(root->processesViewController()->cpuUsageText(), QStringLiteral("CPU Usage:") + summary);
        // The process list came with the same tick.
        QVERIFY(root->processesViewController()->totalText() != QStringLiteral("Total:  0"));
        QVERIFY(root->totalViewController()->memoryTotalText() != QStringLiteral("0MB"));
    }
};

QTEST_MAIN(TestIPhoneRoot)
#include "tst_iphoneroot.moc"
