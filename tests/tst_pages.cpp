#include "Device.h"
#include "FixtureTree.h"
#include "FontTable.h"
#include "InfoTableModel.h"
#include "LabelView.h"
#include "OORectView.h"
#include "OOStateBarView.h"
#include "ProcessTableModel.h"
#include "RenderProbe.h"
#include "SummaryColors.h"
#include "LabelView.h"
#include "iPadNetworkViewController.h"
#include "iPadProcessesViewConroller.h"
#include "iPadSystemViewController.h"
#include "iPadTotalViewController.h"
#include "iPhoneNetworkViewController.h"
#include "iPhoneProcessesViewController.h"
#include "iPhoneSystemViewController.h"
#include "iPhoneTotalViewController.h"

#include <QtTest>
#include <QtWidgets>

namespace {

QColor colour(const QString &name) // of the Summary page's palette
{
    using namespace SummaryColors;
    return QMap<QString, Rgb>{{"low", low}, {"warning", warning}, {"critical", critical}, {"good", good}, {"unknown", unknown}}
        .value(name).color();
}

QList<ProcessRecord> records(int count, const QString &name = QStringLiteral("proc"))
{
    QList<ProcessRecord> list;
    for (int i = 0; i < count; ++i)
        list.append({QString::number(1000 + i), name + QString::number(i), QString::number(20 - i), QStringLiteral("7:0%1").arg(i)});
    return list;
}

QString text(const QRect &r)
{
    return QStringLiteral("%1 %2 %3 %4").arg(r.x()).arg(r.y()).arg(r.width()).arg(r.height());
}

LabelView *label(const ListPage &page, const QString &text)
{
    for (LabelView *label : page.baseView()->findChildren<LabelView *>())
        if (label->text() == text)
            return label;
    return nullptr;
}

// Sections of the given names with that many rows each.
InfoDictionary record(const QStringList &names, const QList<int> &counts)
{
    InfoDictionary info;
    for (int i = 0; i < names.size(); ++i) {
        InfoSection section;
        for (int row = 0; row < counts[i]; ++row)
            section.append({QStringLiteral("row%1").arg(row), QStringLiteral("value %1").arg(row)});
        info.addSection(names[i], section);
    }
    return info;
}

// The colour of the page, over grey, at a point of a row of its table, in the row's own coordinates.
QColor at(ListPage &page, int row, QPointF inRow)
{
    QListView *view = page.tableView();
    QImage image(page.size(), QImage::Format_ARGB32);
    image.fill(QColor(128, 128, 128));
    page.render(&image);
    const QPointF p = view->mapTo(&page, view->viewport()->pos() + view->visualRect(view->model()->index(row, 0)).topLeft()) + inRow;
    return RenderProbe::at(image, p.x(), p.y());
}

} // namespace

// The four pages of the phone screen, each built once at the phone's size, and the tablet's
// summary and list panels.
class TestPages : public QObject {
    Q_OBJECT

    QTemporaryDir root; // a power-supply tree with one battery, changed by the Summary rows
    Device device{root.path()};
    iPhoneTotalViewController summary;
    iPhoneProcessesViewController processes;
    iPhoneSystemViewController system;
    iPhoneNetworkViewController network;
    iPadTotalViewController tabletSummary;
    // Taller and wider than the summary panel makes them.
    iPadProcessesViewConroller tabletProcesses;
    iPadSystemViewController tabletSystem;
    iPadNetworkViewController tabletNetwork;
    std::optional<InfoDictionary> shown; // what the network page reads
    int asked = 0;

private Q_SLOTS:
    void initTestCase()
    {
        device.setPollInterval(1);
        device.setBatteryMonitoringEnabled(true);
        summary.setDevice(&device);
        network.setNetworkInfoSource([this] {
            ++asked;
            return shown;
        });
        const auto build = [](auto &page) { page.resize(320, 460); page.viewDidLoad(); };
        build(summary), build(processes), build(system), build(network);
        tabletSummary.setDevice(&device);
        tabletSummary.initWithFrame(QRect(0, 20, 768, 894));
        tabletSummary.networkViewController()->setNetworkInfoSource([] { return std::nullopt; });
        tabletNetwork.setNetworkInfoSource([this] { return shown; });
        for (ListPage *panel : std::initializer_list<ListPage *>{&tabletProcesses, &tabletSystem, &tabletNetwork})
            panel->initWithFrame(QRect(0, 0, 500, 600));
        // The battery as the device reports it (none yet), not the placeholder it is built with.
        QCOMPARE(tabletSummary.batteryLevelText(), QStringLiteral("Unknown"));
        // At once: memory and disk (never refreshed after) and the process list; the network
        // page reads nothing until the application becomes active.
        QVERIFY(summary.memoryTotalText() != QStringLiteral("0MB") && summary.diskTotalSpaceText() != QStringLiteral("0.00GB"));
        QVERIFY(!processes.tableData().isEmpty());
        QCOMPARE(processes.totalText(), QStringLiteral("Total:%1").arg(processes.tableData().size(), 3));
        QCOMPARE(asked, 0);
    }

    void summaryCpu_data() { FixtureTree::addRows("app-tables/summary-cpu.tsv", {"ticks", "usage", "texts"}); }
    void summaryCpu()
    {
        QFETCH(QString, ticks);
        QFETCH(QString, usage);
        QFETCH(QString, texts);
        const QStringList t = ticks.split(u' ');
        for (SummaryPanels *page : std::initializer_list<SummaryPanels *>{&summary, &tabletSummary}) {
            page->setCpuUsageData(CpuUsageData{t[0].toUInt(), t[1].toUInt(), t[2].toUInt(), usage.toDouble()});
            const QStringList shown{page->cpuUserText(), page->cpuSystemText(), page->cpuIdleText(), page->cpuUsageText()};
            QCOMPARE(shown.join(u'|'), texts);
        }
    }

    void summaryTexts()
    {
        // Each label its own figure; memory texts fill five characters, disk texts nine, and a longer
        // figure steps up a unit or stays whole.
        summary.setMemoryUsageData(MemoryUsageData{4096, 0, 1610612736, 536870912, 3 * 1048576, 1023, 17179869184ull,
                                                   40, 12.5, 0.05, 100, 8589934592ull, 5000000000000ull});
        const QStringList memory{summary.memoryWiredText(), summary.memoryActiveText(), summary.memoryInactiveText(),
                                 summary.memoryFreeText(), summary.memoryTotalText(), summary.memoryUserText(),
                                 summary.memoryPhysicalText()};
        QCOMPARE(memory.join(u'|'), QStringLiteral(" 40.0%   2GB| 12.5% 512MB|  0.1%   3MB|100.0%   1KB| 16GB|4,657GB|  8GB"));
        summary.setDiskUsageData(DiskUsageData{128.0 * (1 << 30), 32.0 * (1 << 30)});
        QCOMPARE(summary.diskUsedText() + u'|' + summary.diskFreeText() + u'|' + summary.diskTotalSpaceText(),
                 QStringLiteral(" 75.0%   96.00GB| 25.0%   32.00GB| 128.00GB"));
    }

    void summarySizes_data() { FixtureTree::addRows("app-tables/summary-sizes.tsv", {"bytes", "memory", "disk"}); }
    void summarySizes()
    {
        QFETCH(QString, bytes);
        const quint64 n = bytes.toULongLong();
        summary.setMemoryUsageData(MemoryUsageData{4096, 1, n, n, n, n, n, 100, 100, 100, 100, n, n});
        summary.setDiskUsageData(DiskUsageData{double(n), 0});
        QTEST(summary.memoryTotalText(), "memory");
        QTEST(summary.diskTotalSpaceText(), "disk");
        for (const LabelView *label : summary.findChildren<LabelView *>()) // every label holds its whole text
            QCOMPARE(label->fontMetrics().elidedText(label->text(), Qt::ElideRight, label->width()), label->text());
    }

    void summaryDisk_data() { FixtureTree::addRows("app-tables/summary-disk.tsv", {"total", "free", "used"}); }
    void summaryDisk()
    {
        QFETCH(QString, total);
        QFETCH(QString, free);
        QFETCH(QString, used);
        summary.setDiskUsageData(DiskUsageData{total.toDouble(), free.toDouble()});
        QCOMPARE(summary.diskUsedColorRectView()->rectColor(), colour(used));
        const QList<StateBarItem> bar = summary.diskStateBarView()->itemData();
        QCOMPARE(bar.size(), 2);
        QCOMPARE(QColor::fromRgbF(bar[0].red(), bar[0].green(), bar[0].blue()), colour(used));
        QCOMPARE(bar[0].value(), total.toDouble() - free.toDouble());
        QCOMPARE(bar[1].value(), free.toDouble());
    }

    void summaryBattery_data()
    {
        FixtureTree::addRows("app-tables/summary-battery.tsv", {"change", "texts", "level", "state", "bar"});
    }
    void summaryBattery()
    {
        QFETCH(QString, change);
        QFETCH(QString, texts);
        QFETCH(QString, level);
        QFETCH(QString, state);
        QFETCH(QString, bar);
        const QString battery = root.path() + QStringLiteral("/sys/class/power_supply/BAT0/");
        for (const QString &assignment : change.split(u';'))
            QVERIFY(FixtureTree::writeFile(battery + assignment.section(u'=', 0, 0), assignment.section(u'=', 1).toUtf8() + '\n'));
        QTRY_COMPARE_WITH_TIMEOUT(summary.batteryLevelText() + u'|' + summary.batteryStateText(), texts, 5000);
        QTRY_COMPARE_WITH_TIMEOUT(summary.batteryLevelColorRectView()->rectColor(), colour(level), 5000);
        QCOMPARE(summary.batteryStateColorRectView()->rectColor(), colour(state));
        QCOMPARE(tabletSummary.batteryLevelText() + u'|' + tabletSummary.batteryStateText(), texts);
        QCOMPARE(tabletSummary.batteryStateColorRectView()->rectColor(), colour(state));
        const QList<StateBarItem> items = summary.batteryStateBarView()->itemData();
        QCOMPARE(items.size(), 2);
        QCOMPARE(items[0].value(), bar.toDouble());
        QCOMPARE(items[1].value(), 100 - bar.toDouble());
    }

    void processFigures_data() { FixtureTree::addRows("app-tables/processes-figures.tsv", {"count", "usage", "texts"}); }
    void processFigures()
    {
        QFETCH(QString, count);
        QFETCH(QString, usage);
        QFETCH(QString, texts);
        processes.setProcData(records(count.toInt()));
        processes.setCpuUsageData(CpuUsageData{1, 2, 3, usage.toDouble()});
        QCOMPARE(processes.totalText() + u'|' + processes.cpuUsageText(), texts);
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
                              text(ProcessTableModel::StartTimeRole), text(ProcessTableModel::PriorityRole)}).join(u' '),
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
        processes.setProcData(QList<ProcessRecord>{{QStringLiteral("4194304"), {}, {}, {}}});
        const QImage shot = processes.grab().toImage();
        const QPoint pid = processes.tableView()->viewport()->mapTo(&processes, QPoint(5, 0));
        const QFontMetrics metrics(FontTable::font(QStringLiteral("Helvetica-Bold"), 14));
        int lit = 0;
        for (int x = metrics.horizontalAdvance(QStringLiteral("419430")) + 1; x < metrics.horizontalAdvance(QStringLiteral("4194304")); ++x)
            for (int y = 0; y < 19; ++y)
                lit += RenderProbe::at(shot, pid.x() + x, pid.y() + y).lightness() > 160;
        QVERIFY(lit > 0);
    }

    void infoRowHeights()
    {
        system.setInfoData(record({"DeviceInfo", "OSInfo", "CPUInfo"}, {2, 1, 0}));
        shown = record({"CommonInfo", "WifiInfo", "CellInfo"}, {2, 1, 1});
        network.reloadNetworkData();
        // Each section: its tab (none without a title), its rows, a gap (none after the last).
        for (auto [page, expected] : {std::pair<ListPage *, QString>{&system, "25 40 40 15 25 40 15 25 0"},
                                      std::pair<ListPage *, QString>{&network, "0 40 40 15 25 40 15 25 40 0"}}) {
            QStringList heights;
            for (int row = 0; row < page->tableView()->model()->rowCount(); ++row)
                heights << QString::number(page->tableView()->visualRect(page->tableView()->model()->index(row, 0)).height());
            QCOMPARE(heights.join(u' '), expected);
        }
    }

    void networkLamp_data() { FixtureTree::addRows("app-tables/network-lamp.tsv", {"value", "lamp"}); }
    void networkLamp()
    {
        QFETCH(QString, value);
        QFETCH(QString, lamp);
        shown = InfoDictionary();
        shown->addSection(QStringLiteral("CommonInfo"), {{QStringLiteral("Available"), value}, {QStringLiteral("Host"), {}}});
        for (auto [page, centre] : {std::pair<NetworkPage *, qreal>{&network, 241.5}, {&tabletNetwork, 281.5}}) {
            page->reloadNetworkData();
            const QColor seen = at(*page, page->tableModel()->dataRow(0, 0), QPointF(centre, 20)); // the lamp's centre
            const bool green = RenderProbe::near(seen, QColor(20, 220, 50), 30);
            QCOMPARE(QString(green ? "green" : RenderProbe::near(seen, QColor(220, 0, 20), 30) ? "red" : "none"), lamp);
        }
        // The second row of a section is the striped one, whatever comes before the section.
        const int first = network.tableModel()->dataRow(0, 0);
        QVERIFY(at(network, first + 1, QPointF(285, 3)).lightness() < at(network, first, QPointF(285, 3)).lightness());
    }

    void listFrames_data()
    {
        FixtureTree::addRows("app-tables/list-frames.tsv", {"page", "frames", "titleSize", "priority"});
    }
    void listFrames()
    {
        QFETCH(QString, page);
        QFETCH(QString, frames);
        QFETCH(QString, titleSize);
        QFETCH(QString, priority);
        const QMap<QString, ListPage *> pages{{"phone processes", &processes}, {"tablet processes", &tabletProcesses},
                                              {"tablet system", &tabletSystem}, {"tablet network", &tabletNetwork}};
        ListPage *list = pages.value(page);
        const LabelView *title = label(*list, list->title());
        QVERIFY(title);
        QCOMPARE(QStringList({text(list->baseView()->geometry()), text(list->panelBackground()->geometry()),
                              text(list->tableView()->geometry()), text(title->geometry())}).join(u'|'), frames);
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
        shown = record({"CommonInfo"}, {2});
        tabletNetwork.reloadNetworkData();
        ListPage *list = QList<ListPage *>{&tabletProcesses, &tabletSystem, &tabletNetwork}[page];
        const int first = page == 0 ? 0 : static_cast<InfoTableModel *>(list->tableView()->model())->dataRow(0, 0);
        // In a table 460 points wide, the odd row's stripe still ends at 344.
        const auto striped = [&](qreal x) { return at(*list, first + 1, QPointF(x, 3)).lightness() < at(*list, first, QPointF(x, 3)).lightness(); };
        QVERIFY(striped(342));
        QVERIFY(!striped(346));
    }

    void missingInfoRecords()
    {
        // The system page keeps what it shows; the network page empties its table.
        const std::optional<InfoDictionary> before = system.tableData();
        system.setInfoData(std::nullopt);
        QCOMPARE(system.tableData(), before);
        shown.reset();
        network.reloadNetworkData();
        QVERIFY(!network.tableData());
        QCOMPARE(network.tableModel()->rowCount(), 6);
    }

    void networkReloadsOnEveryActivation()
    {
        const int atStart = asked;
        const std::pair<Qt::ApplicationState, int> steps[] = {{Qt::ApplicationInactive, 1}, {Qt::ApplicationHidden, 2},
                                                              {Qt::ApplicationActive, 3}, {Qt::ApplicationActive, 0}};
        for (auto [state, rows] : steps) {
            shown = record({"CommonInfo"}, {rows});
            Q_EMIT qApp->applicationStateChanged(state);
            if (rows >= 3) // read at the activation only, and then afresh
                QCOMPARE(QStringLiteral("%1 %2").arg(asked - atStart).arg(network.tableModel()->numberOfRowsInSection(0)), "1 3");
        }
        QCOMPARE(QStringLiteral("%1 %2").arg(asked - atStart).arg(network.tableModel()->numberOfRowsInSection(0)), "2 0");
    }
};

QTEST_MAIN(TestPages)
#include "tst_pages.moc"
