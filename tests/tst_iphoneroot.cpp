#include "ADControl.h"
#include "ADControlForiPad.h"
#include "DotPageControl.h"
#include "FixtureTree.h"
#include "LabelView.h"
#include "OOHistogramView.h"
#include "OOPageControl.h"
#include "PagingScrollView.h"
#include "RenderProbe.h"
#include "iPadNetworkViewController.h"
#include "iPadProcessesViewConroller.h"
#include "iPadRootViewController.h"
#include "iPadSystemViewController.h"
#include "iPadTotalViewController.h"
#include "iPhoneNetworkViewController.h"
#include "iPhoneProcessesViewController.h"
#include "iPhoneRootViewController.h"
#include "iPhoneSystemViewController.h"
#include "iPhoneTotalViewController.h"

#include <QtTest>
#include <QtWidgets>

namespace {

QString text(const QRect &r)
{
    return QStringLiteral("%1 %2 %3 %4").arg(r.x()).arg(r.y()).arg(r.width()).arg(r.height());
}

} // namespace

// The phone's root screen, and the tablet's.
class TestIPhoneRoot : public QObject {
    Q_OBJECT

    iPhoneRootViewController root;
    PagingScrollView *pager = nullptr;
    iPadRootViewController tablet;

    // The tablet's parts by name, each to be found in its own parent.
    QMap<QString, QWidget *> tabletParts()
    {
        iPadTotalViewController *summary = tablet.totalViewController();
        return {{"title", tablet.titleLabel()}, {"summary", summary}, {"footer", tablet.footerLabel()},
                {"processes", summary->processesViewController()}, {"dots", summary->pageControl()},
                {"pager", summary->pager()}, {"system", summary->systemViewController()},
                {"network", summary->networkViewController()}};
    }
    QStringList tabletGeometries()
    {
        QStringList frames;
        for (QWidget *part : tabletParts())
            frames << text(part->geometry());
        return frames;
    }

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
        pager->setTurnDuration(30); // the turns the tests wait for end sooner
        QCOMPARE(marked(), QStringLiteral("0"));

        tablet.resize(768, 1004);
        tablet.viewDidLoad();
        tablet.totalViewController()->networkViewController()->setNetworkInfoSource([] { return std::nullopt; });
        tablet.show();
        QVERIFY(QTest::qWaitForWindowExposed(&tablet));
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
        QTest::addColumn<bool>("onTablet");
        QTest::addColumn<int>("offset");
        QTest::addColumn<int>("page");
        QTest::newRow("rest at 640") << false << 640 << 2;
        QTest::newRow("rest at the last page") << false << 960 << 3;
        QTest::newRow("between pages truncates down") << false << 639 << 1;
        QTest::newRow("tablet: a page is half the summary panel") << true << 384 << 1;
        QTest::newRow("tablet: just short of the second page") << true << 383 << 0;
    }
    void swipeEndSetsPage()
    {
        QFETCH(bool, onTablet);
        QFETCH(int, offset);
        QFETCH(int, page);
        if (onTablet) {
            iPadTotalViewController *summary = tablet.totalViewController();
            summary->pageControl()->setCurrentPage(1 - page);
            summary->pager()->setContentOffset(QPointF(offset, 0), false);
            summary->scrollViewDidEndDecelerating(summary->pager());
            QCOMPARE(summary->pageControl()->currentPage(), page);
            return;
        }
        root.pageControl()->setCurrentPage(-1);
        pager->setContentOffset(QPointF(offset, 0), false);
        root.scrollViewDidEndDecelerating(pager);
        QCOMPARE(marked(), QString::number(page));
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

    void tabletFrames_data() { FixtureTree::addRows("app-tables/tablet-frames.tsv", {"part", "frame"}); }
    void tabletFrames()
    {
        QFETCH(QString, part);
        QFETCH(QString, frame);
        QCOMPARE(text(tabletParts().value(part)->geometry()), frame);
    }

    void tabletTick()
    {
        iPadTotalViewController *summary = tablet.totalViewController();
        QTimer *timer = tablet.systemStateGetTimer();
        QVERIFY(timer->isActive() && !timer->isSingleShot());
        QCOMPARE(timer->interval(), 2000);
        QCOMPARE(summary->cpuUsageText(), QStringLiteral("0.0%")); // the CPU figures wait for the first tick
        summary->setMemoryUsageData(MemoryUsageData{});
        summary->processesViewController()->setProcData(QList<ProcessRecord>{});
        const QString noMemory = summary->memoryTotalText();
        const qsizetype before = summary->cpuHistogramView()->itemData().size();
        const auto samples = [=] { return summary->cpuHistogramView()->itemData().size() - before; };
        // Each time the process list arrives: the CPU samples taken so far, and whether memory came.
        QStringList seen;
        QObject tick;
        const auto arrived = [&] { seen << QStringLiteral("%1 %2").arg(samples()).arg(summary->memoryTotalText() != noMemory); };
        QAbstractItemModel *list = summary->processesViewController()->tableView()->model();
        connect(list, &QAbstractItemModel::rowsInserted, &tick, arrived);
        connect(list, &QAbstractItemModel::dataChanged, &tick, arrived);
        connect(timer, &QTimer::timeout, &tick, [timer] { timer->stop(); }); // one tick only
        timer->start(50); // enough for the kernel to count some CPU time since the last sample
        QTRY_VERIFY_WITH_TIMEOUT(!timer->isActive(), 3000);
        QCOMPARE(seen.join(u'|'), QStringLiteral("1 1"));
        QCOMPARE(samples(), 1);
        QVERIFY(!summary->cpuUsageText().contains(u"nan")); // a second sample in the tick would span no time
    }

    void tabletSwipeTurnsPage()
    {
        iPadTotalViewController *summary = tablet.totalViewController();
        summary->pager()->setContentOffset(QPointF(0, 0), false);
        summary->pageControl()->setCurrentPage(0);
        // A sideways wheel notch over the pager, as the window system delivers it, moves it one
        // page and ends like a swipe.
        const QPointF over = summary->pager()->mapTo(&tablet, QPointF(100, 100));
        QWheelEvent wheel(over, tablet.mapToGlobal(over), QPoint(), QPoint(-120, 0), Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QSpontaneKeyEvent::setSpontaneous(&wheel);
        qApp->notify(tablet.windowHandle(), &wheel);
        QTRY_COMPARE_WITH_TIMEOUT(summary->pageControl()->currentPage(), 1, 3000);
        QCOMPARE(summary->pager()->contentOffset().x(), 384.0);
        // The second dot is the bright one.
        DotPageControl *dots = summary->pageControl();
        QImage image(dots->size(), QImage::Format_ARGB32);
        image.fill(Qt::black);
        dots->render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
        const auto dot = [&](int page) { return RenderProbe::at(image, dots->dotRect(page).center().x(), dots->dotRect(page).center().y()); };
        QVERIFY(RenderProbe::near(dot(1), Qt::white, 16) && !RenderProbe::near(dot(0), Qt::white, 60));
    }

    void tabletBannerMovesNothing()
    {
        ADControlForiPad *banners = ADControlForiPad::defaultsADForiPad();
        QCOMPARE(banners->viewController(), &tablet);
        QCOMPARE(banners->yPoint(), 914.0f); // the banner slot is the footer band
        const QStringList before = tabletGeometries();
        QSignalSpy posted(ADControl::defaultsAD(), &ADControl::ReceiveAd);
        banners->adViewDidReceiveAd(banners->adMobBanner());
        QCoreApplication::processEvents();
        QCOMPARE(posted.count(), 0);
        QCOMPARE(tabletGeometries(), before);
    }

    void tabletOrientations_data()
    {
        QTest::addColumn<int>("orientation");
        QTest::addColumn<QString>("turns"); // root, summary, processes, system, network
        QTest::newRow("upright") << 1 << "11111";
        QTest::newRow("upside down: only the system and network panels") << 2 << "00011";
        QTest::newRow("landscape right") << 3 << "00011";
        QTest::newRow("landscape left") << 4 << "00011";
    }
    void tabletOrientations()
    {
        QFETCH(int, orientation);
        QFETCH(QString, turns);
        const auto o = InterfaceOrientation(orientation);
        iPadTotalViewController *summary = tablet.totalViewController();
        const bool answers[] = {tablet.shouldAutorotateToInterfaceOrientation(o), summary->shouldAutorotateToInterfaceOrientation(o),
                                summary->processesViewController()->shouldAutorotateToInterfaceOrientation(o),
                                summary->systemViewController()->shouldAutorotateToInterfaceOrientation(o),
                                summary->networkViewController()->shouldAutorotateToInterfaceOrientation(o)};
        QString seen;
        for (bool answer : answers)
            seen += answer ? u'1' : u'0';
        QCOMPARE(seen, turns);
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

    // Drags of several lengths and speeds (5 moves, then held still before release) on
    // the phone's four pages of 320 and the tablet's two of 384: the page the pager settles on.
    void dragTarget_data() { FixtureTree::addRows("app-tables/pager-drags.tsv", {"pages", "start", "drag", "target"}); }
    void dragTarget()
    {
        QFETCH(QString, pages);
        QFETCH(QString, start);
        QFETCH(QString, drag); // "pixels/ms" or "pixels/ms+held ms"
        QFETCH(QString, target);
        const qreal width = pages == u"2" ? 384 : 320, from = start.toInt() * width, pixels = drag.section(u'/', 0, 0).toDouble();
        const qint64 ms = drag.section(u'/', 1).section(u'+', 0, 0).toLongLong(), held = drag.section(u'+', 1).toLongLong();
        QList<PagingScrollView::DragSample> trail;
        for (int move = 0; move <= 5; ++move)
            trail.append({ms * move / 5, from + pixels * move / 5});
        trail.append({ms + held, from + pixels});
        QCOMPARE(PagingScrollView::targetPageAfterDrag(start.toInt(), trail, width, pages.toInt()), target.toInt());
    }

    // Keys to the focused pager and wheel notches over a page or the titles ("where:dx,dy"):
    // the page turned to, the indicator that follows it, and whether the System list scrolled.
    void turnsOnePage_data() { FixtureTree::addRows("app-tables/root-turns.tsv", {"start", "inputs", "page", "scrolled"}); }
    void turnsOnePage()
    {
        QFETCH(QString, start);
        QFETCH(QString, inputs);
        QFETCH(QString, page);
        QFETCH(QString, scrolled);
        pager->setContentOffset(QPointF(start.toInt() * 320, 0), false);
        root.pageControl()->setCurrentPage(start.toInt());
        QScrollBar *list = root.systemViewController()->tableView()->verticalScrollBar();
        list->setValue(0);
        for (const QString &input : inputs.split(u' ')) {
            if (input == u"click") {
                QTest::mouseClick(root.childAt(160, 200), Qt::LeftButton);
                continue;
            }
            if (!input.contains(u':')) {
                QTest::keyClick(root.focusWidget(), QKeySequence::fromString(input)[0].key());
                continue;
            }
            const QPointF at = input.startsWith(u"title") ? QPointF(200, 10) : QPointF(160, 300);
            const QStringList d = input.section(u':', 1).split(u',');
            QWheelEvent wheel(at, root.mapToGlobal(at), QPoint(), QPoint(d[0].toInt(), d[1].toInt()), Qt::NoButton,
                              input.startsWith(u"shift") ? Qt::ShiftModifier : Qt::NoModifier, Qt::NoScrollPhase, false);
            QSpontaneKeyEvent::setSpontaneous(&wheel); // from the window system, into the window
            qApp->notify(root.windowHandle(), &wheel);
        }
        QCOMPARE(pager->targetPage(), page.toInt());
        QTRY_COMPARE(marked(), page);
        QTRY_COMPARE(pager->contentOffset().x(), page.toInt() * 320.0);
        QCOMPARE(QString::fromLatin1(list->value() > 0 ? "yes" : "no"), scrolled);
    }
};

QTEST_MAIN(TestIPhoneRoot)
#include "tst_iphoneroot.moc"
