#include "CpuUsageData.h"
#include "ProcessRecord.h"
#include "iPhoneProcessesViewController.h"

#include <QListView>
#include <QScrollBar>
#include <QtTest>

#include <cmath>
#include <limits>

namespace {

QList<ProcessRecord> makeRecords(int count)
{
    QList<ProcessRecord> records;
    for (int i = 0; i < count; ++i)
        records.append(ProcessRecord{QString::number(1000 + i), QStringLiteral("proc%1").arg(i),
                                     QStringLiteral("20"), QStringLiteral("Nov 23, 2026, 7:00:00\u202FAM")});
    return records;
}

// Mean lightness of a thin strip near the right end of a row, clear of any text.
int stripeLightness(const QImage &image, const QRect &tableFrame, int row)
{
    const int y = tableFrame.top() + row * 40 + 3;
    const int x = tableFrame.right() - 4;
    return QColor(image.pixel(x, y)).lightness();
}

} // namespace

class TestIPhoneProcesses : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<iPhoneProcessesViewController> makePage(int height = 460)
    {
        auto page = std::make_unique<iPhoneProcessesViewController>();
        page->resize(320, height);
        page->viewDidLoad();
        return page;
    }

private Q_SLOTS:
    void total_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("text");
        QTest::newRow("no processes: count padded to three") << 0 << "Total:  0";
        QTest::newRow("two digits: one blank") << 47 << "Total: 47";
        QTest::newRow("three digits: no blank") << 123 << "Total:123";
        QTest::newRow("four digits widen the field") << 1000 << "Total:1000";
    }
    void total()
    {
        QFETCH(int, count);
        QFETCH(QString, text);
        auto page = makePage();
        page->setProcData(makeRecords(count));
        QCOMPARE(page->totalText(), text);
        QCOMPARE(page->tableView()->model()->rowCount(), count);
    }

    void cpuUsage_data()
    {
        QTest::addColumn<double>("usage");
        QTest::addColumn<QString>("text");
        QTest::newRow("one blank before 12.5") << 12.5 << "CPU Usage: 12.5%";
        QTest::newRow("full load fills the field") << 100.0 << "CPU Usage:100.0%";
        QTest::newRow("exact half rounds to even") << 0.25 << "CPU Usage:  0.2%";
        QTest::newRow("no ticks elapsed") << std::numeric_limits<double>::quiet_NaN() << "CPU Usage:  nan%";
    }
    void cpuUsage()
    {
        QFETCH(double, usage);
        QFETCH(QString, text);
        auto page = makePage();
        const int rows = page->tableView()->model()->rowCount();
        page->setCpuUsageData(CpuUsageData{1, 2, 3, usage});
        QCOMPARE(page->cpuUsageText(), text);
        QCOMPARE(page->tableView()->model()->rowCount(), rows); // the table is not touched
    }

    void initialTexts()
    {
        auto page = std::make_unique<iPhoneProcessesViewController>();
        page->resize(320, 460);
        page->viewDidLoad();
        QCOMPARE(page->cpuUsageText(), QStringLiteral("CPU Usage:  0.0%"));
        // The first list is read at once, so the page is filled before the first tick.
        QVERIFY(!page->tableData().isEmpty());
        QVERIFY(page->totalText().startsWith(QStringLiteral("Total:")));
        QVERIFY(page->totalText() != QStringLiteral("Total:  0"));
    }

    void missingListKeepsRows()
    {
        auto page = makePage();
        page->setProcData(makeRecords(3));
        page->setProcData(std::nullopt);
        QCOMPARE(page->tableData().size(), 3);
        QCOMPARE(page->totalText(), QStringLiteral("Total:  3"));
        QCOMPARE(page->tableView()->model()->rowCount(), 3);
    }

    void rowsShowRecordsInOrder()
    {
        auto page = makePage();
        const QList<ProcessRecord> records = makeRecords(5);
        page->setProcData(records);
        QAbstractItemModel *model = page->tableView()->model();
        for (int row = 0; row < 5; ++row) {
            const QModelIndex index = model->index(row, 0);
            QCOMPARE(model->data(index, Qt::UserRole + 1).toString(), records[row].pid);
            QCOMPARE(model->data(index, Qt::DisplayRole).toString(), records[row].processName);
        }
        // A shorter list after a longer one drops the surplus rows.
        page->setProcData(makeRecords(2));
        QCOMPARE(model->rowCount(), 2);
    }

    void stripesFollowRowIndex()
    {
        auto page = makePage();
        page->setProcData(makeRecords(40));
        QListView *table = page->tableView();
        const QRect frame(table->mapTo(page.get(), QPoint(0, 0)), table->size());

        QImage image = page->grab().toImage();
        const int even = stripeLightness(image, frame, 0);
        const int odd = stripeLightness(image, frame, 1);
        QVERIFY2(odd < even, qPrintable(QStringLiteral("row 1 %1, row 0 %2").arg(odd).arg(even)));
        QCOMPARE(stripeLightness(image, frame, 2), even);

        // Scrolled by one row, the odd row sits on top: the darkening moves with it.
        table->verticalScrollBar()->setValue(40);
        image = page->grab().toImage();
        QCOMPARE(stripeLightness(image, frame, 0), odd);
        QCOMPARE(stripeLightness(image, frame, 1), even);
    }

    void frameForAdShortensTheTable()
    {
        auto page = makePage();
        const QRect tableBefore = page->tableView()->geometry();
        const QRect panelBefore = page->panelBackground()->geometry();
        page->resize(320, 410);
        page->setFrameForAd();
        QCOMPARE(page->baseView()->geometry(), QRect(0, 20, 320, 390));
        QCOMPARE(page->panelBackground()->geometry(), panelBefore.adjusted(0, 0, 0, -50));
        QCOMPARE(page->tableView()->geometry(), tableBefore.adjusted(0, 0, 0, -50));
        QCOMPARE(page->tableView()->geometry(), QRect(15, 80, 290, 295));
    }
};

QTEST_MAIN(TestIPhoneProcesses)
#include "tst_iphoneprocesses.moc"
