#include "ADControl.h"
#include "ADControlForiPad.h"
#include "FixtureTree.h"
#include "InfoTableModel.h"
#include "LabelView.h"
#include "OOPageControl.h"
#include "PagingScrollView.h"
#include "RootMachine.h"
#include "iPhoneNetworkViewController.h"
#include "iPhoneProcessesViewController.h"
#include "iPhoneRootViewController.h"
#include "iPhoneSystemViewController.h"
#include "iPhoneTotalViewController.h"

#include <QtTest>
#include <QtWidgets>

// The phone's root screen: its pager of four pages, the page indicator that follows it,
// and the refresh that feeds the pages.
class TestIPhoneRoot : public QObject {
    Q_OBJECT

    RootMachine machine;
    iPhoneRootViewController *root = nullptr;
    PagingScrollView *pager = nullptr;

    // Where the pager is headed: its resting place once an animated scroll ends.
    qreal headingTo() const { return QScroller::scroller(pager->viewport())->finalPosition().x(); }

    // The pages the indicator marks, read from its colours.
    QString marked() const
    {
        QString pages;
        for (int i = 0; i < root->pageControl()->numberOfPages(); ++i)
            pages += root->pageControl()->titleColor(i) == QColor::fromRgbF(1.0f, 0.5f, 0.0f) ? QString::number(i)
                                                                                              : QString();
        return pages;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(machine.prepare());
        root = new iPhoneRootViewController(&machine.core, &machine.device);
        root->resize(320, 460);
        root->viewDidLoad();
        root->show(); // scrolling needs a laid-out pager, as on screen
        QVERIFY(QTest::qWaitForWindowExposed(root));
        pager = root->mainScrollView();
        pager->setTurnDuration(30); // the turns the tests wait for end sooner
        QCOMPARE(marked(), QStringLiteral("0"));
    }
    void cleanupTestCase() { delete root; }

    // What the pages show before the first tick: the root sends every figure but the CPU's.
    void firstFigures()
    {
        QCOMPARE(root->totalViewController()->memoryPhysicalText(), QStringLiteral(" 24GB"));
        QVERIFY(root->totalViewController()->diskTotalSpaceText().endsWith(u"GB"));
        QCOMPARE(root->processesViewController()->totalText(), QStringLiteral("Total:  8"));
        QCOMPARE(root->processesViewController()->tableData().first().processName, QStringLiteral("systemd"));
        QVERIFY(root->systemViewController()->tableData().has_value());
        // Nothing is known of the CPU before the first interval ends, and no figure says otherwise.
        iPhoneTotalViewController *summary = root->totalViewController();
        QCOMPARE(QStringList({summary->cpuUserText(), summary->cpuSystemText(), summary->cpuIdleText(),
                              summary->cpuUsageText(), root->processesViewController()->cpuUsageText()})
                     .join(u'|'),
                 QStringLiteral("  nan%|  nan%|  nan%|  nan%|CPU Usage:  nan%"));
    }

    void pagesSideBySide()
    {
        QCOMPARE(root->pageControl()->geometry(), QRect(50, 0, 270, 20));
        QCOMPARE(pager->contentSize(), QSize(1280, 460));
        const QList<QWidget *> pages{root->totalViewController(), root->processesViewController(),
                                     root->systemViewController(), root->networkViewController()};
        for (int i = 0; i < 4; ++i)
            QCOMPARE(pages[i]->geometry(), QRect(320 * i, 0, 320, 460));
    }

    void tabTurnsPage_data() { FixtureTree::addRows("root-tabs.tsv", {"tab", "frame"}); }
    void tabTurnsPage()
    {
        QFETCH(QString, tab);
        QFETCH(QString, frame);
        QAbstractButton *button = root->tabButtons().value(tab.toInt());
        const QRect r = button->geometry();
        QCOMPARE(QStringLiteral("%1 %2 %3 %4").arg(r.x()).arg(r.y()).arg(r.width()).arg(r.height()), frame);
        // The tabs lie above the pager and the banner, so they take the taps on the title bar.
        QCOMPARE(root->childAt(r.center()), button);
        pager->setContentOffset(QPointF((3 - tab.toInt()) * 320, 0), false);
        root->pageControl()->setCurrentPage(3 - tab.toInt());
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(marked(), tab);
        QCOMPARE(headingTo(), tab.toInt() * 320.0);
    }

    void swipeEndSetsPage_data()
    {
        QTest::addColumn<int>("offset");
        QTest::addColumn<int>("page");
        QTest::newRow("rest at 640") << 640 << 2;
        QTest::newRow("rest at the last page") << 960 << 3;
        QTest::newRow("between pages truncates down") << 639 << 1;
    }
    void swipeEndSetsPage()
    {
        QFETCH(int, offset);
        QFETCH(int, page);
        root->pageControl()->setCurrentPage(-1);
        pager->setContentOffset(QPointF(offset, 0), false);
        root->scrollViewDidEndDecelerating(pager);
        QCOMPARE(marked(), QString::number(page));
    }

    void refreshTicks()
    {
        QTimer *timer = root->systemStateGetTimer();
        QVERIFY(timer->isActive() && !timer->isSingleShot());
        QCOMPARE(timer->interval(), 2000);
        root->processesViewController()->setProcData(QList<ProcessRecord>{});
        // One tick over 30 user, 10 system and 60 idle ticks.
        QVERIFY(machine.setCpuTicks(1030, 1010, 1060));
        QSignalSpy ticked(timer, &QTimer::timeout);
        timer->setInterval(1);
        QVERIFY(ticked.wait(3000));
        timer->stop();
        // Summary shows "%5.1f%%" of the usage, Processes "CPU Usage:%5.1f%%" of the same
        // sample, and the process list came with the same tick.
        QCOMPARE(root->totalViewController()->cpuUserText(), QStringLiteral(" 30.0%"));
        QCOMPARE(root->totalViewController()->cpuUsageText(), QStringLiteral(" 40.0%"));
        QCOMPARE(root->processesViewController()->cpuUsageText(), QStringLiteral("CPU Usage: 40.0%"));
        QCOMPARE(root->processesViewController()->tableData().size(), 8);
    }

    // The disk's figures follow the file system while the Summary page is shown: at every
    // activation and every 30 s, and when the page comes back after a refresh it missed.
    void diskFollowsTheFileSystem()
    {
        iPhoneTotalViewController *summary = root->totalViewController();
        QCOMPARE(summary->diskFreeText(), QStringLiteral(" 60.0%   60.00GB")); // read when built
        QTimer *timer = root->diskRefreshTimer();
        QVERIFY(timer->isActive());
        QCOMPARE(timer->interval(), 30000);
        const auto tick = [timer] {
            QSignalSpy ticked(timer, &QTimer::timeout);
            timer->start(1);
            const bool fired = ticked.wait(3000);
            timer->stop();
            return fired;
        };
        pager->setContentOffset(QPointF(0, 0), false);
        root->scrollViewDidEndDecelerating(pager);
        machine.freeGiB = 50;
        Q_EMIT qApp->applicationStateChanged(Qt::ApplicationActive);
        QCOMPARE(summary->diskFreeText(), QStringLiteral(" 50.0%   50.00GB"));
        machine.freeGiB = 40;
        QVERIFY(tick());
        QCOMPARE(summary->diskFreeText(), QStringLiteral(" 40.0%   40.00GB"));
        // On another page the refresh waits for the Summary page to come back.
        pager->setContentOffset(QPointF(640, 0), false);
        root->scrollViewDidEndDecelerating(pager);
        machine.freeGiB = 30;
        QVERIFY(tick());
        QCOMPARE(summary->diskFreeText(), QStringLiteral(" 40.0%   40.00GB"));
        pager->setContentOffset(QPointF(0, 0), false);
        root->scrollViewDidEndDecelerating(pager);
        QCOMPARE(summary->diskFreeText(), QStringLiteral(" 30.0%   30.00GB"));
        timer->start(iPhoneRootViewController::DiskRefreshIntervalMs);
    }

    // The network record is read at every activation of the application, and only then.
    void networkReloadsOnEveryActivation()
    {
        QSignalSpy reloads(root->networkViewController()->tableModel(), &QAbstractItemModel::modelReset);
        const std::pair<Qt::ApplicationState, int> steps[] = {{Qt::ApplicationInactive, 0},
                                                              {Qt::ApplicationHidden, 0},
                                                              {Qt::ApplicationActive, 1},
                                                              {Qt::ApplicationActive, 2}};
        for (auto [state, count] : steps) {
            Q_EMIT qApp->applicationStateChanged(state);
            QCOMPARE(reloads.count(), count);
        }
        QVERIFY(root->networkViewController()->tableData().has_value());
    }

    void bannerMakesRoomOnce()
    {
        ADControl *banners = ADControl::defaultsAD();
        QCOMPARE(banners->viewController(), root);
        QCOMPARE(banners->yPoint(), 410.0f); // the slot: 50 points above the foot
        QListView *table = root->processesViewController()->tableView();
        for (int arrival = 0; arrival < 2; ++arrival) {
            banners->adViewDidReceiveAd(banners->adMobBanner());
            QCOMPARE(pager->geometry(), QRect(0, 0, 320, 410));
            QCOMPARE(pager->contentSize(), QSize(1280, 410));
            QCOMPARE(table->geometry(), QRect(15, 80, 290, arrival == 0 ? 295 : 100));
            table->setGeometry(15, 80, 290, 100); // a second arrival must not lay out again
        }
        QCOMPARE(root->totalViewController()->scrollView()->geometry(), QRect(0, 20, 320, 390));
        QCOMPARE(root->systemViewController()->tableView()->geometry(), QRect(15, 40, 290, 335));
        QCOMPARE(root->networkViewController()->panelBackground()->geometry(), QRect(5, 5, 310, 380));
    }

    // Typing finds a process on the Processes page only; the field takes the keys while it is
    // open, and Escape gives them back to the pager.
    void typingFindsOnTheProcessesPage()
    {
        iPhoneProcessesViewController *processes = root->processesViewController();
        pager->setFocus();
        QTest::keyClicks(root->focusWidget(), QStringLiteral("sy"));
        QCOMPARE(processes->findText(), QString());
        root->tabButtons().at(1)->click();
        QTest::keyClicks(root->focusWidget(), QStringLiteral("sy"));
        QCOMPARE(processes->findText(), QStringLiteral("sy"));
        QVERIFY(root->focusWidget() != pager);
        QTest::keyClick(root->focusWidget(), Qt::Key_Escape);
        QCOMPARE(processes->findText(), QString());
        QCOMPARE(root->focusWidget(), pager);
        root->tabButtons().at(0)->click();
    }

    // Keys to the focused pager and wheel notches over a page or the titles ("where:dx,dy"):
    // the page turned to, the indicator that follows it, and whether the System list scrolled.
    void turnsOnePage_data() { FixtureTree::addRows("root-turns.tsv", {"start", "inputs", "page", "scrolled"}); }
    void turnsOnePage()
    {
        QFETCH(QString, start);
        QFETCH(QString, inputs);
        QFETCH(QString, page);
        QFETCH(QString, scrolled);
        pager->setContentOffset(QPointF(start.toInt() * 320, 0), false);
        root->pageControl()->setCurrentPage(start.toInt());
        QScrollBar *system = root->systemViewController()->tableView()->verticalScrollBar();
        QScrollBar *network = root->networkViewController()->tableView()->verticalScrollBar();
        system->setValue(0);
        network->setValue(0);
        for (const QString &input : inputs.split(u' ')) {
            if (input == u"click") {
                QTest::mouseClick(root->childAt(160, 200), Qt::LeftButton);
                continue;
            }
            if (!input.contains(u':')) {
                QTest::keyClick(root->focusWidget(), QKeySequence::fromString(input)[0].key());
                continue;
            }
            const QPointF at = input.startsWith(u"title") ? QPointF(200, 10) : QPointF(160, 300);
            const QStringList d = input.section(u':', 1).split(u',');
            QWheelEvent wheel(at, root->mapToGlobal(at), QPoint(), QPoint(d[0].toInt(), d[1].toInt()), Qt::NoButton,
                              input.startsWith(u"shift") ? Qt::ShiftModifier : Qt::NoModifier, Qt::NoScrollPhase,
                              false);
            QSpontaneKeyEvent::setSpontaneous(&wheel); // from the window system, into the window
            qApp->notify(root->windowHandle(), &wheel);
        }
        QCOMPARE(pager->targetPage(), page.toInt());
        QTRY_COMPARE(marked(), page);
        QTRY_COMPARE(pager->contentOffset().x(), page.toInt() * 320.0);
        QCOMPARE(QString::fromLatin1(system->value() > 0        ? "system"
                                         : network->value() > 0 ? "network"
                                                                : "none"),
                 scrolled);
    }
};

QTEST_MAIN(TestIPhoneRoot)
#include "tst_iphoneroot.moc"
