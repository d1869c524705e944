#include "ADControl.h"
#include "ADControlForiPad.h"
#include "DotPageControl.h"
#include "FixtureTree.h"
#include "LabelView.h"
#include "OOHistogramView.h"
#include "PagingScrollView.h"
#include "RenderProbe.h"
#include "RootMachine.h"
#include "iPadNetworkViewController.h"
#include "iPadProcessesViewConroller.h"
#include "iPadRootViewController.h"
#include "iPadSystemViewController.h"
#include "iPadTotalViewController.h"

#include <QtTest>
#include <QtWidgets>

namespace {

QString text(const QRect &r)
{
    return QStringLiteral("%1 %2 %3 %4").arg(r.x()).arg(r.y()).arg(r.width()).arg(r.height());
}

} // namespace

// The tablet's root screen: its frames, the summary panel it feeds, and the pager of the
// system and network panels inside it.
class TestIPadRoot : public QObject {
    Q_OBJECT

    RootMachine machine;
    iPadRootViewController *tablet = nullptr;

    // The tablet's parts by name, each to be found in its own parent.
    QMap<QString, QWidget *> tabletParts()
    {
        iPadTotalViewController *summary = tablet->totalViewController();
        return {{"title", tablet->titleLabel()},
                {"summary", summary},
                {"footer", tablet->footerLabel()},
                {"processes", summary->processesViewController()},
                {"dots", summary->pageControl()},
                {"pager", summary->pager()},
                {"system", summary->systemViewController()},
                {"network", summary->networkViewController()}};
    }
    QStringList tabletGeometries()
    {
        QStringList frames;
        for (QWidget *part : tabletParts())
            frames << text(part->geometry());
        return frames;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(machine.prepare());
        tablet = new iPadRootViewController(&machine.core, &machine.device);
        tablet->resize(768, 1004);
        tablet->viewDidLoad();
        tablet->show();
        QVERIFY(QTest::qWaitForWindowExposed(tablet));
    }
    void cleanupTestCase() { delete tablet; }

    // What the panels show before the first tick: the root sends every figure but the CPU's.
    void firstFigures()
    {
        iPadTotalViewController *summary = tablet->totalViewController();
        QCOMPARE(summary->memoryPhysicalText(), QStringLiteral(" 24GB"));
        QVERIFY(summary->diskTotalSpaceText().endsWith(u"GB"));
        QCOMPARE(summary->processesViewController()->totalText(), QStringLiteral("Total:  8"));
        QVERIFY(summary->systemViewController()->tableData().has_value());
        QCOMPARE(QStringList({summary->cpuUserText(), summary->cpuSystemText(), summary->cpuIdleText(),
                              summary->cpuUsageText()})
                     .join(u'|'),
                 QStringLiteral("  nan%|  nan%|  nan%|  nan%")); // nothing known before the first interval ends
    }

    // The disk panel follows the file system: at every activation and every 30 s.
    void diskFollowsTheFileSystem()
    {
        iPadTotalViewController *summary = tablet->totalViewController();
        QCOMPARE(summary->diskFreeText(), QStringLiteral(" 60.0%   60.00GB")); // read when built
        QTimer *timer = tablet->diskRefreshTimer();
        QVERIFY(timer->isActive());
        QCOMPARE(timer->interval(), 30000);
        machine.freeGiB = 50;
        Q_EMIT qApp->applicationStateChanged(Qt::ApplicationActive);
        QCOMPARE(summary->diskFreeText(), QStringLiteral(" 50.0%   50.00GB"));
        machine.freeGiB = 40;
        QSignalSpy ticked(timer, &QTimer::timeout);
        timer->start(1);
        QVERIFY(ticked.wait(3000));
        timer->start(iPadRootViewController::DiskRefreshIntervalMs);
        QCOMPARE(summary->diskFreeText(), QStringLiteral(" 40.0%   40.00GB"));
    }

    void tabletFrames_data() { FixtureTree::addRows("tablet-frames.tsv", {"part", "frame"}); }
    void tabletFrames()
    {
        QFETCH(QString, part);
        QFETCH(QString, frame);
        QCOMPARE(text(tabletParts().value(part)->geometry()), frame);
    }

    void swipeEndSetsPage_data()
    {
        QTest::addColumn<int>("offset");
        QTest::addColumn<int>("page");
        QTest::newRow("a page is half the summary panel") << 384 << 1;
        QTest::newRow("just short of the second page") << 383 << 0;
    }
    void swipeEndSetsPage()
    {
        QFETCH(int, offset);
        QFETCH(int, page);
        iPadTotalViewController *summary = tablet->totalViewController();
        summary->pageControl()->setCurrentPage(1 - page);
        summary->pager()->setContentOffset(QPointF(offset, 0), false);
        summary->scrollViewDidEndDecelerating(summary->pager());
        QCOMPARE(summary->pageControl()->currentPage(), page);
    }

    void tabletTick()
    {
        iPadTotalViewController *summary = tablet->totalViewController();
        QTimer *timer = tablet->systemStateGetTimer();
        QVERIFY(timer->isActive() && !timer->isSingleShot());
        QCOMPARE(timer->interval(), 2000);
        summary->setMemoryUsageData(MemoryUsageData{});
        summary->processesViewController()->setProcData(QList<ProcessRecord>{});
        const QString noMemory = summary->memoryTotalText();
        const qsizetype before = summary->cpuHistogramView()->itemData().size();
        const auto samples = [=] { return summary->cpuHistogramView()->itemData().size() - before; };
        // Each time the process list arrives: the CPU samples taken so far, and whether memory came.
        QStringList seen;
        QObject tick;
        const auto arrived = [&] {
            seen << QStringLiteral("%1 %2").arg(samples()).arg(summary->memoryTotalText() != noMemory);
        };
        QAbstractItemModel *list = summary->processesViewController()->tableView()->model();
        connect(list, &QAbstractItemModel::rowsInserted, &tick, arrived);
        connect(list, &QAbstractItemModel::dataChanged, &tick, arrived);
        connect(timer, &QTimer::timeout, &tick, [timer] { timer->stop(); }); // one tick only
        QVERIFY(machine.setCpuTicks(1030, 1010, 1060));                      // 40 % busy over the tick
        timer->start(1);
        QTRY_VERIFY_WITH_TIMEOUT(!timer->isActive(), 3000);
        QCOMPARE(seen.join(u'|'), QStringLiteral("1 1"));
        QCOMPARE(samples(), 1);
        QCOMPARE(summary->cpuUsageText(), QStringLiteral(" 40.0%")); // a second sample in the tick would span no time
    }

    void tabletSwipeTurnsPage()
    {
        iPadTotalViewController *summary = tablet->totalViewController();
        summary->pager()->setContentOffset(QPointF(0, 0), false);
        summary->pageControl()->setCurrentPage(0);
        // A sideways wheel notch over the pager, as the window system delivers it, moves it one
        // page and ends like a swipe.
        const QPointF over = summary->pager()->mapTo(tablet, QPointF(100, 100));
        QWheelEvent wheel(over, tablet->mapToGlobal(over), QPoint(), QPoint(-120, 0), Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QSpontaneKeyEvent::setSpontaneous(&wheel);
        qApp->notify(tablet->windowHandle(), &wheel);
        QTRY_COMPARE_WITH_TIMEOUT(summary->pageControl()->currentPage(), 1, 3000);
        QCOMPARE(summary->pager()->contentOffset().x(), 384.0);
        // The second dot is the bright one.
        DotPageControl *dots = summary->pageControl();
        QImage image(dots->size(), QImage::Format_ARGB32);
        image.fill(Qt::black);
        dots->render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
        const auto dot = [&](int page) {
            return RenderProbe::at(image, dots->dotRect(page).center().x(), dots->dotRect(page).center().y());
        };
        QVERIFY(RenderProbe::near(dot(1), Qt::white, 16) && !RenderProbe::near(dot(0), Qt::white, 60));
    }

    void tabletBannerMovesNothing()
    {
        ADControlForiPad *banners = ADControlForiPad::defaultsADForiPad();
        QCOMPARE(banners->viewController(), tablet);
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
        iPadTotalViewController *summary = tablet->totalViewController();
        const bool answers[] = {tablet->shouldAutorotateToInterfaceOrientation(o),
                                summary->shouldAutorotateToInterfaceOrientation(o),
                                summary->processesViewController()->shouldAutorotateToInterfaceOrientation(o),
                                summary->systemViewController()->shouldAutorotateToInterfaceOrientation(o),
                                summary->networkViewController()->shouldAutorotateToInterfaceOrientation(o)};
        QString seen;
        for (bool answer : answers)
            seen += answer ? u'1' : u'0';
        QCOMPARE(seen, turns);
    }
};

QTEST_MAIN(TestIPadRoot)
#include "tst_ipadroot.moc"
