#include "FixtureTree.h"
#include "FontTable.h"
#include "InfoTableModel.h"
#include "PageProbe.h"
#include "ProcessDetailsSheet.h"
#include "ProcessTableModel.h"
#include "StatCore.h"
#include "iPadNetworkViewController.h"
#include "iPadProcessesViewConroller.h"
#include "iPadSystemViewController.h"
#include "iPhoneNetworkViewController.h"
#include "iPhoneProcessesViewController.h"
#include "iPhoneSystemViewController.h"

#include <QLineEdit>
#include <QScrollEvent>
#include <QtTest>

#include <csignal>

using namespace PageProbe;

// The list pages (processes, system, network) in their phone and tablet frames: what they
// show of the records they are sent, and how their rows are laid out and striped.
class TestListPages : public QObject {
    Q_OBJECT

    iPhoneProcessesViewController processes;
    iPhoneSystemViewController system;
    iPhoneNetworkViewController network;
    // Taller and wider than the summary panel makes them.
    iPadProcessesViewConroller tabletProcesses;
    iPadSystemViewController tabletSystem;
    iPadNetworkViewController tabletNetwork;

private Q_SLOTS:
    void initTestCase()
    {
        buildOnPhone(processes, system, network);
        for (ListPage *panel : std::initializer_list<ListPage *>{&tabletProcesses, &tabletSystem, &tabletNetwork})
            panel->initWithFrame(QRect(0, 0, 500, 600));
        // Empty until the root screen sends a record: a page reads no statistics of its own.
        QVERIFY(processes.tableData().isEmpty() && !system.tableData() && !network.tableData());
    }

    void cleanup() { FixtureTree::useLocale(QStringLiteral("C.UTF-8")); }

    void processFigures_data()
    {
        FixtureTree::addRows("processes-figures.tsv", {"count", "usage", "texts"}, KOVAR_FIGURE_LOCALES);
    }
    void processFigures()
    {
        QFETCH(QString, locale);
        QVERIFY2(FixtureTree::useLocale(locale), qPrintable(locale + QStringLiteral(" is not installed")));
        QFETCH(QString, count);
        QFETCH(QString, usage);
        QFETCH(QString, texts);
        processes.setProcData(records(count.toInt()));
        processes.setCpuUsageData(CpuUsageData{1, 2, 3, usage.toDouble()});
        QCOMPARE(processes.totalText() + u'|' + processes.cpuUsageText(), texts);
    }

    // Typing finds by name or pid; Escape shows every process again.
    void find_data() { FixtureTree::addRows("processes-find.tsv", {"typed", "rows", "total", "selected"}); }
    void find()
    {
        QFETCH(QString, typed);
        processes.setProcData(records(12));
        QTest::keyClicks(&processes, typed);
        QCOMPARE(processes.findText(), typed);
        QTEST(QString::number(processes.tableData().size()), "rows");
        QTEST(processes.totalText(), "total");
        const std::optional<ProcessRecord> selected = processes.selectedRecord();
        QTEST(selected ? selected->pid : QStringLiteral("-"), "selected");
        // The next list keeps the find and the selection on its process.
        processes.setProcData(records(12));
        QTEST(processes.totalText(), "total");
        QTEST(processes.selectedRecord() ? processes.selectedRecord()->pid : QStringLiteral("-"), "selected");
        QTest::keyClick(&processes, Qt::Key_Escape);
        QCOMPARE(processes.totalText(), QStringLiteral("Total: 12"));
        QCOMPARE(processes.tableData().size(), 12);
    }

    // On touch: the list pulled down past its top (the scroller's overshoot, in points) opens the
    // search field once the pull reaches 40 points; pulled up past its end it does not.
    void pullDownOpensFind_data()
    {
        QTest::addColumn<qreal>("overshoot");
        QTest::addColumn<bool>("opens");
        QTest::newRow("resting") << 0.0 << false;
        QTest::newRow("a short pull") << -39.0 << false;
        QTest::newRow("pulled 40 points") << -40.0 << true;
        QTest::newRow("pulled far") << -120.0 << true;
        QTest::newRow("pulled up past the end") << 80.0 << false;
    }
    void pullDownOpensFind()
    {
        QFETCH(qreal, overshoot);
        processes.setProcData(records(12));
        QScrollEvent pull(QPointF(0, 0), QPointF(0, overshoot), QScrollEvent::ScrollUpdated);
        QCoreApplication::sendEvent(processes.tableView()->viewport(), &pull);
        auto *field = processes.findChild<QLineEdit *>();
        QVERIFY(field);
        QTEST(field->isVisibleTo(&processes), "opens");
        QScrollEvent rest(QPointF(0, 0), QPointF(0, 0), QScrollEvent::ScrollFinished); // the list springs back
        QCoreApplication::sendEvent(processes.tableView()->viewport(), &rest);
        QTest::keyClick(&processes, Qt::Key_Escape);
        QVERIFY(!field->isVisibleTo(&processes));
    }

    // A real process of the test's own, found by typing its name, shown, and ended from its sheet.
    void endAChildFoundByName()
    {
        QTemporaryDir dir;
        const QString nap = dir.filePath(QStringLiteral("kovar-test-nap"));
        QVERIFY(QFile::link(QStandardPaths::findExecutable(QStringLiteral("sleep")), nap));
        QProcess child;
        child.start(nap, {QStringLiteral("300")});
        QVERIFY(child.waitForStarted());
        StatCore core(QStringLiteral("/"), dir.path());
        QTRY_VERIFY(core.runningProcesses().value_or(QList<ProcessRecord>{}).size() > 1);
        processes.setProcData(core.runningProcesses());
        QTest::keyClicks(&processes, QStringLiteral("kovar-test-nap"));
        const QString pid = QString::number(child.processId());
        QCOMPARE(processes.tableData().size(), 1);
        QTest::keyClick(&processes, Qt::Key_Return);
        ProcessDetailsSheet *sheet = processes.detailsSheet();
        QVERIFY(sheet->isOpen() && sheet->record().pid == pid);
        QVERIFY2(sheet->figuresText().contains(QStringLiteral("kovar-test-nap 300")), qPrintable(sheet->figuresText()));
        QTest::keyClick(&processes, Qt::Key_Delete);
        QCOMPARE(sheet->questionText(), QStringLiteral("End \u201ckovar-test-nap\u201d (pid %1)?").arg(pid));
        QVERIFY(child.state() == QProcess::Running);
        QTest::keyClick(&processes, Qt::Key_Return);
        QVERIFY2(sheet->messageText().contains(QStringLiteral("was asked to end")), qPrintable(sheet->messageText()));
        QVERIFY(child.waitForFinished(5000));
        QCOMPARE(child.exitStatus(), QProcess::CrashExit);
        QCOMPARE(child.exitCode(), SIGTERM);
        // Gone from the next list: the sheet says so and keeps its last figures.
        processes.setProcData(core.runningProcesses());
        QVERIFY(sheet->hasExited());
        QVERIFY(sheet->messageText().contains(QStringLiteral("has exited")));
        QVERIFY(sheet->figuresText().contains(QStringLiteral("kovar-test-nap 300")));
        QTest::keyClick(&processes, Qt::Key_Escape);
        QVERIFY(!sheet->isOpen());
        QTest::keyClick(&processes, Qt::Key_Escape);
        QCOMPARE(processes.findText(), QString());
    }

    // What KOVAR never offers to signal: the sheet says why, and Delete asks nothing.
    void refusals_data()
    {
        QTest::addColumn<int>("pid");
        QTest::addColumn<bool>("kernelThread");
        QTest::addColumn<QString>("message");
        QTest::newRow("pid 1") << 1 << false << "KOVAR does not end pid 1";
        QTest::newRow("kernel thread") << 2 << true << "part of the kernel";
        QTest::newRow("KOVAR itself") << int(QCoreApplication::applicationPid()) << false << "KOVAR itself";
    }
    void refusals()
    {
        QFETCH(int, pid);
        QFETCH(bool, kernelThread);
        ProcessRecord record = records(1).first();
        record.pid = QString::number(pid);
        record.usage.kernelThread = kernelThread;
        processes.openDetails(record);
        ProcessDetailsSheet *sheet = processes.detailsSheet();
        QFETCH(QString, message);
        QVERIFY2(sheet->messageText().contains(message), qPrintable(sheet->messageText()));
        QTest::keyClick(sheet, Qt::Key_Delete);
        QVERIFY(!sheet->isAsking());
        QTest::keyClick(sheet, Qt::Key_Escape);
        QVERIFY(!sheet->isOpen());
    }

    // A click on a row opens its sheet; a swipe to the right goes back to the list.
    void clickOpensSwipeCloses()
    {
        processes.setProcData(records(3));
        QListView *table = processes.tableView();
        table->show();
        const QRect second = table->visualRect(table->model()->index(1, 0));
        QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, second.center());
        ProcessDetailsSheet *sheet = processes.detailsSheet();
        QTRY_VERIFY(sheet->isOpen());
        QCOMPARE(sheet->record().pid, QStringLiteral("1001"));
        QVERIFY(!table->isVisibleTo(processes.baseView()));
        // Over the figures, where most of a swipe lands.
        QWidget *figures = sheet->childAt(sheet->width() / 2, sheet->height() / 3);
        QVERIFY(figures);
        QTest::mousePress(figures, Qt::LeftButton, {}, QPoint(20, 10));
        QTest::mouseRelease(figures, Qt::LeftButton, {}, QPoint(120, 20));
        QVERIFY(!sheet->isOpen());
        QVERIFY(table->isVisibleTo(processes.baseView()));
    }

    void processRows()
    {
        QAbstractItemModel *model = processes.tableView()->model();
        processes.setProcData(records(5));
        QSignalSpy changed(model, &QAbstractItemModel::dataChanged);
        QSignalSpy removed(model, &QAbstractItemModel::rowsRemoved);
        processes.setProcData(records(2, QStringLiteral("next"))); // shorter, and the kept rows show new texts
        QCOMPARE(changed.count(), 1);
        QCOMPARE(removed.value(0).mid(1), QVariantList({2, 4})); // rows 2 to 4 gone
        const auto text = [model](int role) { return model->index(1, 0).data(role).toString(); };
        QCOMPARE(QStringList({text(ProcessTableModel::PidRole), text(ProcessTableModel::ProcessNameRole),
                              text(ProcessTableModel::StartTimeRole), text(ProcessTableModel::PriorityRole)})
                     .join(u' '),
                 QStringLiteral("1001 next1 7:01 19"));
        processes.setProcData(std::nullopt); // a list that cannot be read keeps the rows shown
        QCOMPARE(processes.totalText() + QString::number(model->rowCount()), QStringLiteral("Total:  22"));

        // Odd rows are striped, and the stripe moves with its row when the table scrolls.
        processes.setProcData(records(40));
        const auto lightness = [this](int row) { return at(processes, row, QPointF(286, 3)).lightness(); };
        QVERIFY(lightness(1) < lightness(0));
        QCOMPARE(lightness(2), lightness(0));
        processes.tableView()->verticalScrollBar()->setValue(40);
        QVERIFY(lightness(1) < lightness(2));

        // The kernel's largest pid is drawn whole: its last digit, not an ellipsis on the baseline, shows
        // above the row's middle, past the column's own 50 points.
        processes.setProcData(QList<ProcessRecord>{{QStringLiteral("4194304"), {}, {}, {}, {}, {}}});
        const QImage shot = processes.grab().toImage();
        const QPoint pid = processes.tableView()->viewport()->mapTo(&processes, QPoint(5, 0));
        const QFontMetrics metrics(FontTable::font(QStringLiteral("Helvetica-Bold"), 14));
        int lit = 0;
        for (int x = metrics.horizontalAdvance(QStringLiteral("419430")) + 1;
             x < metrics.horizontalAdvance(QStringLiteral("4194304")); ++x)
            for (int y = 0; y < 19; ++y)
                lit += RenderProbe::at(shot, pid.x() + x, pid.y() + y).lightness() > 160;
        QVERIFY(lit > 0);
    }

    void listFrames_data() { FixtureTree::addRows("list-frames.tsv", {"page", "frames", "titleSize", "priority"}); }
    void listFrames()
    {
        QFETCH(QString, page);
        QFETCH(QString, frames);
        QFETCH(QString, titleSize);
        QFETCH(QString, priority);
        const QMap<QString, ListPage *> pages{{"phone processes", &processes},
                                              {"tablet processes", &tabletProcesses},
                                              {"tablet system", &tabletSystem},
                                              {"tablet network", &tabletNetwork}};
        ListPage *list = pages.value(page);
        const LabelView *title = label(*list, list->title());
        QVERIFY(title);
        QCOMPARE(QStringList({text(list->baseView()->geometry()), text(list->panelBackground()->geometry()),
                              text(list->tableView()->geometry()), text(title->geometry())})
                     .join(u'|'),
                 frames);
        QCOMPARE(title->font().pixelSize(), titleSize.toInt());
        const LabelView *header = label(*list, QStringLiteral("Priority"));
        QCOMPARE(header ? QString(header->alignment() == Qt::AlignHCenter ? "centre" : "left") : QString(), priority);
    }

    void tabletRowsKeepTheirWidth_data()
    {
        QTest::addColumn<int>("page");
        QTest::newRow("processes") << 0;
        QTest::newRow("system") << 1;
        QTest::newRow("network") << 2;
    }
    void tabletRowsKeepTheirWidth()
    {
        QFETCH(int, page);
        tabletProcesses.setProcData(records(3));
        tabletSystem.setInfoData(record({"DeviceInfo"}, {2}));
        tabletNetwork.setInfoData(record({"CommonInfo"}, {2}));
        ListPage *list = QList<ListPage *>{&tabletProcesses, &tabletSystem, &tabletNetwork}[page];
        const int first = page == 0 ? 0 : static_cast<InfoTableModel *>(list->tableView()->model())->dataRow(0, 0);
        // In a table 460 points wide, the odd row's stripe still ends at 344.
        const auto striped = [&](qreal x) {
            return at(*list, first + 1, QPointF(x, 3)).lightness() < at(*list, first, QPointF(x, 3)).lightness();
        };
        QVERIFY(striped(342));
        QVERIFY(!striped(346));
    }

    void missingInfoRecords()
    {
        // The system page keeps what it shows; the network page empties its table.
        const std::optional<InfoDictionary> before = system.tableData();
        system.setInfoData(std::nullopt);
        QCOMPARE(system.tableData(), before);
        network.setInfoData(std::nullopt);
        QVERIFY(!network.tableData());
        QCOMPARE(network.tableModel()->rowCount(), 6);
    }
};

QTEST_MAIN(TestListPages)
#include "tst_listpages.moc"
