#include "Device.h"
#include "FixtureTree.h"
#include "OOPieChartView.h"
#include "OORectView.h"
#include "OOStateBarView.h"
#include "PageProbe.h"
#include "ScreensAccessibility.h"
#include "StateBarItem.h"
#include "iPadTotalViewController.h"
#include "iPhoneTotalViewController.h"

#include <QtTest>

using namespace PageProbe;

namespace {

// The warning a bar's colour gives, as its description tells it: "critical", "warning" or "".
QString warningOf(const QWidget *bar)
{
    return bar->accessibleDescription().section(u':', 0, 0).toLower();
}

QString expectedWarning(const QString &colour)
{
    return colour == u"critical" || colour == u"warning" ? colour : QString();
}

// The figure's label as a screen reader reads it.
QString spoken(const QWidget *page, const QString &shown)
{
    for (LabelView *label : page->findChildren<LabelView *>())
        if (label->text() == shown && !label->caption().isEmpty())
            return QAccessible::queryAccessibleInterface(label)->text(QAccessible::Name);
    return {};
}

} // namespace

// The Summary figures of the phone page and of the tablet's summary panel: the same texts,
// formats and colours from the same records.
class TestSummaryPanels : public QObject {
    Q_OBJECT

    QTemporaryDir root; // a power-supply tree with one battery, changed by the battery rows
    Device device{root.path()};
    iPhoneTotalViewController summary;
    iPadTotalViewController tabletSummary;

private Q_SLOTS:
    void initTestCase()
    {
        ScreensAccessibility::install();
        device.setPollInterval(1);
        device.setBatteryMonitoringEnabled(true);
        summary.setDevice(&device);
        buildOnPhone(summary);
        tabletSummary.setDevice(&device);
        tabletSummary.initWithFrame(QRect(0, 20, 768, 894));
        // The battery as the device reports it (none yet), not the placeholder it is built with.
        QCOMPARE(tabletSummary.batteryLevelText(), QStringLiteral("Unknown"));
        // No figure but what the root screen sends: a page reads no statistics of its own.
        for (SummaryPanels *page : std::initializer_list<SummaryPanels *>{&summary, &tabletSummary}) {
            QCOMPARE(page->memoryPieChartView()->itemData().size(), 0);
            QCOMPARE(page->diskStateBarView()->itemData().size(), 0);
        }
    }

    void cleanup() { FixtureTree::useLocale(QStringLiteral("C.UTF-8")); }

    void summaryCpu_data()
    {
        FixtureTree::addRows("summary-cpu.tsv", {"ticks", "usage", "texts"}, KOVAR_FIGURE_LOCALES);
    }
    void summaryCpu()
    {
        QFETCH(QString, locale);
        QVERIFY2(FixtureTree::useLocale(locale), qPrintable(locale + QStringLiteral(" is not installed")));
        QFETCH(QString, ticks);
        QFETCH(QString, usage);
        QFETCH(QString, texts);
        const QStringList t = ticks.split(u' ');
        for (SummaryPanels *page : std::initializer_list<SummaryPanels *>{&summary, &tabletSummary}) {
            page->setCpuUsageData(CpuUsageData{t[0].toUInt(), t[1].toUInt(), t[2].toUInt(), usage.toDouble()});
            const QStringList shown{page->cpuUserText(), page->cpuSystemText(), page->cpuIdleText(),
                                    page->cpuUsageText()};
            QCOMPARE(shown.join(u'|'), texts);
        }
    }

    void summaryTexts()
    {
        // Each label its own figure; memory texts fill five characters, disk texts nine, and a longer
        // figure steps up a unit or stays whole.
        summary.setMemoryUsageData(MemoryUsageData{4096, 0, 1610612736, 536870912, 3 * 1048576, 1023, 17179869184ull,
                                                   40, 12.5, 0.05, 100, 8589934592ull, 5000000000000ull});
        const QStringList memory{summary.memoryWiredText(),   summary.memoryActiveText(), summary.memoryInactiveText(),
                                 summary.memoryFreeText(),    summary.memoryTotalText(),  summary.memoryUserText(),
                                 summary.memoryPhysicalText()};
        QCOMPARE(memory.join(u'|'),
                 QStringLiteral(" 40.0%   2GB| 12.5% 512MB|  0.1%   3MB|100.0%   1KB| 16GB|4,657GB|  8GB"));
        QCOMPARE(spoken(&summary, summary.memoryWiredText()), QStringLiteral("Wired 40.0% 2GB"));
        QCOMPARE(spoken(&summary, summary.memoryUserText()), QStringLiteral("User Memory 4,657GB"));
        summary.setDiskUsageData(DiskUsageData{128.0 * (1 << 30), 32.0 * (1 << 30)});
        QCOMPARE(summary.diskUsedText() + u'|' + summary.diskFreeText() + u'|' + summary.diskTotalSpaceText(),
                 QStringLiteral(" 75.0%   96.00GB| 25.0%   32.00GB| 128.00GB"));
        QCOMPARE(spoken(&summary, summary.diskTotalSpaceText()), QStringLiteral("Total Disk Space 128.00GB"));
    }

    void summarySizes_data()
    {
        FixtureTree::addRows("summary-sizes.tsv", {"bytes", "memory", "disk"}, KOVAR_FIGURE_LOCALES);
    }
    void summarySizes()
    {
        QFETCH(QString, locale);
        QVERIFY2(FixtureTree::useLocale(locale), qPrintable(locale + QStringLiteral(" is not installed")));
        QFETCH(QString, bytes);
        const quint64 n = bytes.toULongLong();
        summary.setMemoryUsageData(MemoryUsageData{4096, 1, n, n, n, n, n, 100, 100, 100, 100, n, n});
        summary.setDiskUsageData(DiskUsageData{double(n), 0});
        QTEST(summary.memoryTotalText(), "memory");
        QTEST(summary.diskTotalSpaceText(), "disk");
        for (const LabelView *label : summary.findChildren<LabelView *>()) // every label holds its whole text
            QCOMPARE(label->fontMetrics().elidedText(label->text(), Qt::ElideRight, label->width()), label->text());
    }

    void summaryDisk_data() { FixtureTree::addRows("summary-disk.tsv", {"total", "free", "used"}); }
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
        QCOMPARE(warningOf(summary.diskStateBarView()), expectedWarning(used));
    }

    void summaryBattery_data()
    {
        FixtureTree::addRows("summary-battery.tsv", {"change", "texts", "level", "state", "bar"});
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
            QVERIFY(FixtureTree::writeFile(battery + assignment.section(u'=', 0, 0),
                                           assignment.section(u'=', 1).toUtf8() + '\n'));
        QTRY_COMPARE_WITH_TIMEOUT(summary.batteryLevelText() + u'|' + summary.batteryStateText(), texts, 5000);
        QTRY_COMPARE_WITH_TIMEOUT(summary.batteryLevelColorRectView()->rectColor(), colour(level), 5000);
        QCOMPARE(summary.batteryStateColorRectView()->rectColor(), colour(state));
        QCOMPARE(tabletSummary.batteryLevelText() + u'|' + tabletSummary.batteryStateText(), texts);
        QCOMPARE(tabletSummary.batteryStateColorRectView()->rectColor(), colour(state));
        const QList<StateBarItem> items = summary.batteryStateBarView()->itemData();
        QCOMPARE(items.size(), 2);
        QCOMPARE(items[0].value(), bar.toDouble());
        QCOMPARE(items[1].value(), 100 - bar.toDouble());
        QCOMPARE(warningOf(summary.batteryStateBarView()), expectedWarning(level));
    }
};

QTEST_MAIN(TestSummaryPanels)
#include "tst_summarypanels.moc"
