#include "CpuUsageData.h"
#include "Device.h"
#include "DiskUsageData.h"
#include "MemoryUsageData.h"
#include "OOHistogramView.h"
#include "OORectView.h"
#include "OOStateBarView.h"
#include "SummaryColors.h"
#include "iPhoneTotalViewController.h"

#include <QDir>
#include <QFile>
#include <QScrollArea>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <limits>

using namespace SummaryColors;

namespace {

// A power-supply tree with one battery, as the kernel shows it.
bool writeBattery(const QString &root, const QByteArray &capacity, const QByteArray &status)
{
    const QString dir = root + QStringLiteral("/sys/class/power_supply/BAT0");
    if (!QDir().mkpath(dir))
        return false;
    const std::pair<const char *, QByteArray> files[] = {
        {"type", "Battery\n"}, {"present", "1\n"}, {"capacity", capacity + '\n'}, {"status", status + '\n'}};
    for (const auto &[name, content] : files) {
        QFile file(dir + QLatin1Char('/') + QLatin1String(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            return false;
    }
    return true;
}

} // namespace

class TestIPhoneTotal : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<iPhoneTotalViewController> makePage(Device *device = nullptr)
    {
        auto page = std::make_unique<iPhoneTotalViewController>();
        page->resize(320, 460);
        if (device)
            page->setDevice(device);
        page->viewDidLoad();
        return page;
    }

private Q_SLOTS:
    void cpuTexts_data()
    {
        QTest::addColumn<quint32>("user");
        QTest::addColumn<quint32>("system");
        QTest::addColumn<quint32>("idle");
        QTest::addColumn<double>("usage");
        QTest::addColumn<QStringList>("texts");
        QTest::newRow("25/25/50 padded to five") << 25u << 25u << 50u << 50.0
                                                 << QStringList{" 25.0%", " 25.0%", " 50.0%", " 50.0%"};
        QTest::newRow("usage shown as given, not recomputed")
            << 1u << 1u << 2u << 12.25 << QStringList{" 25.0%", " 25.0%", " 50.0%", " 12.2%"};
        QTest::newRow("all busy") << 300u << 100u << 0u << 100.0
                                  << QStringList{" 75.0%", " 25.0%", "  0.0%", "100.0%"};
    }
    void cpuTexts()
    {
        QFETCH(quint32, user);
        QFETCH(quint32, system);
        QFETCH(quint32, idle);
        QFETCH(double, usage);
        QFETCH(QStringList, texts);
        auto page = makePage();
        const qsizetype before = page->cpuHistogramView()->itemData().size();
        page->setCpuUsageData(CpuUsageData{user, system, idle, usage});
        QCOMPARE(page->cpuUserText(), texts[0]);
        QCOMPARE(page->cpuSystemText(), texts[1]);
        QCOMPARE(page->cpuIdleText(), texts[2]);
        QCOMPARE(page->cpuUsageText(), texts[3]);
        QCOMPARE(page->cpuHistogramView()->itemData().size(), before + 1);
        QCOMPARE(page->cpuHistogramView()->itemData().last(), HistogramItem(qint32(user), qint32(system), qint32(idle)));
    }

    void idleSampleAddsNoColumn()
    {
        auto page = makePage();
        page->setCpuUsageData(CpuUsageData{0, 0, 0, std::numeric_limits<double>::quiet_NaN()});
        QVERIFY(page->cpuHistogramView()->itemData().isEmpty());
        QCOMPARE(page->cpuUsageText(), QStringLiteral("  nan%"));
    }

    void memoryTexts()
    {
        auto page = makePage();
        MemoryUsageData memory{};
        memory.pageSize = 4096;
        memory.wired = 1610612736;          // 1.5 GB: rounds to even, "2GB"
        memory.active = 536870912;          // 512 MB
        memory.inactive = 3 * 1048576;      // 3 MB
        memory.free = 1023;                 // under a kilobyte
        memory.total = 17179869184ull;      // 16 GB
        memory.user = 5000000000000ull;     // "4,657GB" is cut to five characters
        memory.physical = 17179869184ull;
        memory.wiredPercent = 40;
        memory.activePercent = 12.5;
        memory.inactivePercent = 0.05;
        memory.freePercent = 100;
        page->setMemoryUsageData(memory);
        QCOMPARE(page->memoryWiredText(), QStringLiteral(" 40.0%   2GB"));
        QCOMPARE(page->memoryActiveText(), QStringLiteral(" 12.5% 512MB"));
        QCOMPARE(page->memoryInactiveText(), QStringLiteral("  0.1%   3MB"));
        QCOMPARE(page->memoryFreeText(), QStringLiteral("100.0% 1,023"));
        QCOMPARE(page->memoryTotalText(), QStringLiteral(" 16GB"));
        QCOMPARE(page->memoryUserText(), QStringLiteral("4,657"));
        QCOMPARE(page->memoryPhysicalText(), QStringLiteral(" 16GB"));
    }

    void diskThresholds_data()
    {
        QTest::addColumn<double>("total");
        QTest::addColumn<double>("free");
        QTest::addColumn<QString>("colour");
        QTest::newRow("just under 70 % is low") << 1000.0 << 300.5 << "low";
        QTest::newRow("exactly 70 % warns") << 100.0 << 30.0 << "warning";
        QTest::newRow("just under 90 % warns") << 1000.0 << 100.5 << "warning";
        QTest::newRow("exactly 90 % is critical") << 100.0 << 10.0 << "critical";
        QTest::newRow("full disk") << 100.0 << 0.0 << "critical";
        QTest::newRow("no file system: not a number is low") << 0.0 << 0.0 << "low";
    }
    void diskThresholds()
    {
        QFETCH(double, total);
        QFETCH(double, free);
        QFETCH(QString, colour);
        const Rgb expected = colour == QLatin1String("low") ? low : colour == QLatin1String("warning") ? warning
                                                                                                        : critical;
        auto page = makePage();
        page->setDiskUsageData(DiskUsageData{total, free});
        QCOMPARE(page->diskUsedColorRectView()->rectColor(), expected.color());
        const QList<StateBarItem> items = page->diskStateBarView()->itemData();
        QCOMPARE(items.size(), 2);
        QCOMPARE(items[0].value(), total - free);
        QCOMPARE(items[0].red(), expected.red);
        QCOMPARE(items[1].value(), free);
        QCOMPARE(items[1].red(), memoryFree.red);
    }

    void diskTexts()
    {
        auto page = makePage();
        page->setDiskUsageData(DiskUsageData{128.0 * (1 << 30), 32.0 * (1 << 30)});
        QCOMPARE(page->diskUsedText(), QStringLiteral(" 75.0%   96.00GB"));
        QCOMPARE(page->diskFreeText(), QStringLiteral(" 25.0%   32.00GB"));
        QCOMPARE(page->diskTotalSpaceText(), QStringLiteral(" 128.00GB"));
        // A text longer than nine characters is cut to nine.
        page->setDiskUsageData(DiskUsageData{5e15, 5e15});
        QCOMPARE(page->diskTotalSpaceText(), QStringLiteral("4,656,612"));
    }

    void battery_data()
    {
        QTest::addColumn<QByteArray>("capacity");
        QTest::addColumn<QByteArray>("status");
        QTest::addColumn<QString>("levelText");
        QTest::addColumn<QString>("stateText");
        QTest::addColumn<QString>("levelColour");
        QTest::addColumn<QString>("stateColour");
        QTest::newRow("10 % is critical") << QByteArray("10") << QByteArray("Discharging") << "10%" << "Unplugged"
                                          << "critical" << "critical";
        QTest::newRow("30 % warns") << QByteArray("30") << QByteArray("Charging") << "30%" << "Charging"
                                    << "warning" << "warning";
        QTest::newRow("31 % is good") << QByteArray("31") << QByteArray("Discharging") << "31%" << "Unplugged"
                                      << "good" << "critical";
        QTest::newRow("full at 100 %") << QByteArray("100") << QByteArray("Full") << "100%" << "Full" << "good"
                                       << "good";
        QTest::newRow("state the kernel does not know") << QByteArray("55") << QByteArray("Mystery") << "Unknown"
                                                        << "Unknown" << "good" << "unknown";
    }
    void battery()
    {
        QFETCH(QByteArray, capacity);
        QFETCH(QByteArray, status);
        QFETCH(QString, levelText);
        QFETCH(QString, stateText);
        QFETCH(QString, levelColour);
        QFETCH(QString, stateColour);
        const auto colourNamed = [](const QString &name) {
            if (name == QLatin1String("critical"))
                return critical;
            if (name == QLatin1String("warning"))
                return warning;
            if (name == QLatin1String("good"))
                return good;
            return unknown;
        };
        QTemporaryDir root;
        QVERIFY(writeBattery(root.path(), capacity, status));
        Device device(root.path());
        device.setBatteryMonitoringEnabled(true);
        auto page = makePage(&device);
        QCOMPARE(page->batteryLevelText(), levelText);
        QCOMPARE(page->batteryStateText(), stateText);
        QCOMPARE(page->batteryLevelColorRectView()->rectColor(), colourNamed(levelColour).color());
        QCOMPARE(page->batteryStateColorRectView()->rectColor(), colourNamed(stateColour).color());
        const QList<StateBarItem> bar = page->batteryStateBarView()->itemData();
        QCOMPARE(bar.size(), 2);
        QCOMPARE(bar[0].value() + bar[1].value(), 100.0);
        QCOMPARE(bar[0].value(), capacity.toDouble());
    }

    void noBattery()
    {
        QTemporaryDir root;
        Device device(root.path());
        device.setBatteryMonitoringEnabled(true);
        auto page = makePage(&device);
        QCOMPARE(page->batteryLevelText(), QStringLiteral("Unknown"));
        QCOMPARE(page->batteryStateText(), QStringLiteral("Unknown"));
        QCOMPARE(page->batteryLevelColorRectView()->rectColor(), unknown.color());
        QCOMPARE(page->batteryStateColorRectView()->rectColor(), unknown.color());
        const QList<StateBarItem> bar = page->batteryStateBarView()->itemData();
        QCOMPARE(bar.size(), 2);
        QCOMPARE(bar[0].value(), 0.0);
        QCOMPARE(bar[1].value(), 100.0);
    }

    void frameForAd()
    {
        auto page = makePage();
        QCOMPARE(page->scrollView()->geometry(), QRect(0, 20, 320, 440));
        QCOMPARE(page->scrollView()->widget()->size(), QSize(320, 520));
        page->resize(320, 410);
        page->setFrameForAd();
        QCOMPARE(page->scrollView()->geometry(), QRect(0, 20, 320, 390));
    }
};

QTEST_MAIN(TestIPhoneTotal)
#include "tst_iphonetotal.moc"
