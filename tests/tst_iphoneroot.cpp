#include "ADControl.h"
#include "FixtureTree.h"
#include "OOPageControl.h"
#include "PagingScrollView.h"
#include "iPhoneNetworkViewController.h"
#include "iPhoneProcessesViewController.h"
#include "iPhoneRootViewController.h"
#include "iPhoneSystemViewController.h"
#include "iPhoneTotalViewController.h"

#include <QtTest>
#include <QtWidgets>

class TestIPhoneRoot : public QObject {
    Q_OBJECT

    iPhoneRootViewController root;
    PagingScrollView *pager = nullptr;

    // Where the pager is headed: its resting place once an animated scroll ends.
    qreal headingTo() const { return QScroller::scroller(pager->viewport())->finalPosition().x(); }

    // The pages the indicator marks, read from its colours.
    QString marked() const
    {
        QString pages;
        for (int i = 0; i < root.pageControl()->numberOfPages(); ++i)
            pages += root.pageControl()->titleColor(i) == QColor::fromRgbF(1.0f, 0.5f, 0.0f) ? QString::number(i) : QString();
        return pages;
    }

private Q_SLOTS:
    void initTestCase()
    {
        root.resize(320, 460);
        root.viewDidLoad();
        root.networkViewController()->setNetworkInfoSource([] { return std::nullopt; }); // no lookups from here
        root.show(); // scrolling needs a laid-out pager, as on screen
        QVERIFY(QTest::qWaitForWindowExposed(&root));
        pager = root.mainScrollView();
        QCOMPARE(marked(), QStringLiteral("0"));
    }

    void pagesSideBySide()
    {
        QCOMPARE(root.pageControl()->geometry(), QRect(50, 0, 270, 20));
        QCOMPARE(pager->contentSize(), QSize(1280, 460));
        const QList<QWidget *> pages{root.totalViewController(), root.processesViewController(),
                                     root.systemViewController(), root.networkViewController()};
        for (int i = 0; i < 4; ++i)
            QCOMPARE(pages[i]->geometry(), QRect(320 * i, 0, 320, 460));
    }

    void tabTurnsPage_data() { FixtureTree::addRows("app-tables/root-tabs.tsv", {"tab", "frame"}); }
    void tabTurnsPage()
    {
        QFETCH(QString, tab);
        QFETCH(QString, frame);
        QAbstractButton *button = root.tabButtons().value(tab.toInt());
        const QRect r = button->geometry();
        QCOMPARE(QStringLiteral("%1 %2 %3 %4").arg(r.x()).arg(r.y()).arg(r.width()).arg(r.height()), frame);
        // The tabs lie above the pager and the banner, so they take the taps on the title bar.
        QCOMPARE(root.childAt(r.center()), button);
        pager->setContentOffset(QPointF((3 - tab.toInt()) * 320, 0), false);
        root.pageControl()->setCurrentPage(3 - tab.toInt());
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(marked(), tab);
        QCOMPARE(headingTo(), tab.toInt() * 320.0);
    }

    void swipeEndSetsPage_data()
    {
        QTest::addColumn<int>("offset");
        QTest::addColumn<QString>("page");
        QTest::newRow("rest at 640") << 640 << "2";
        QTest::newRow("rest at the last page") << 960 << "3";
        QTest::newRow("between pages truncates down") << 639 << "1";
    }
    void swipeEndSetsPage()
    {
        QFETCH(int, offset);
        QFETCH(QString, page);
        root.pageControl()->setCurrentPage(-1);
        pager->setContentOffset(QPointF(offset, 0), false);
        root.scrollViewDidEndDecelerating(pager);
        QCOMPARE(marked(), page);
    }

    void wheelTurnsPage()
    {
        pager->setContentOffset(QPointF(320, 0), false);
        QWheelEvent wheel(QPointF(160, 200), QPointF(160, 200), QPoint(), QPoint(0, -120), Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(pager->viewport(), &wheel);
        QCOMPARE(headingTo(), 640.0);
        QTRY_COMPARE_WITH_TIMEOUT(marked(), QStringLiteral("2"), 3000); // it ends like a swipe: the indicator follows
    }

    void refreshTicks()
    {
        QTimer *timer = root.systemStateGetTimer();
        QVERIFY(timer->isActive() && !timer->isSingleShot());
        QCOMPARE(timer->interval(), 2000);
        // Nothing is refreshed at once: the CPU figures wait for the first tick.
        QCOMPARE(root.totalViewController()->cpuUsageText(), QStringLiteral("0.0%"));
        root.processesViewController()->setProcData(QList<ProcessRecord>{});
        timer->setInterval(1); // ticking until one of them spans some CPU time
        const auto usage = [this] { return root.totalViewController()->cpuUsageText(); };
        QTRY_VERIFY_WITH_TIMEOUT(usage() != QStringLiteral("0.0%") && !usage().contains(u"nan"), 3000); // "-nan" too
        timer->stop();
        // Summary shows "%5.1f%%" of the usage, Processes "CPU Usage:%5.1f%%" of the same sample,
        // and the process list came with the same tick.
        iPhoneProcessesViewController *processes = root.processesViewController();
        QCOMPARE(processes->cpuUsageText(), QStringLiteral("CPU Usage:") + root.totalViewController()->cpuUsageText());
        QVERIFY(!processes->tableData().isEmpty());
    }

    void bannerMakesRoomOnce()
    {
        ADControl *banners = ADControl::defaultsAD();
        QCOMPARE(banners->viewController(), &root);
        QCOMPARE(banners->yPoint(), 410.0f); // the slot: 50 points above the foot
        QListView *table = root.processesViewController()->tableView();
        for (int arrival = 0; arrival < 2; ++arrival) {
            banners->adViewDidReceiveAd(banners->adMobBanner());
            QCOMPARE(pager->geometry(), QRect(0, 0, 320, 410));
            QCOMPARE(pager->contentSize(), QSize(1280, 410));
            QCOMPARE(table->geometry(), QRect(15, 80, 290, arrival == 0 ? 295 : 100));
            table->setGeometry(15, 80, 290, 100); // a second arrival must not lay out again
        }
        QCOMPARE(root.totalViewController()->scrollView()->geometry(), QRect(0, 20, 320, 390));
        QCOMPARE(root.systemViewController()->tableView()->geometry(), QRect(15, 40, 290, 335));
        QCOMPARE(root.networkViewController()->panelBackground()->geometry(), QRect(5, 5, 310, 380));
    }
};

QTEST_MAIN(TestIPhoneRoot)
#include "tst_iphoneroot.moc"
