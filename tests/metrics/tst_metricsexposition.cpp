#include "FixtureTree.h"
#include "MetricsExposition.h"
#include "StatCore.h"

#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QtTest>

#include <atomic>
#include <sys/statvfs.h>
#include <thread>

using namespace FixtureTree;

class TestMetricsExposition : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void metricsExposition_data()
    {
        addRows("metrics.tsv", {"tree", "home", "format", "battery", "name", "present", "absent"});
    }
    void metricsExposition()
    {
        QFETCH(QString, tree);
        QFETCH(QString, home);
        QFETCH(QString, format);
        QFETCH(QString, battery);
        QFETCH(QString, name);
        QFETCH(QString, present);
        QFETCH(QString, absent);
        SystemInfoReader::SystemCalls calls;
        calls.uname = [] { return SystemInfoReader::UnameValues{"Linux", "6.1.0", "x86_64"}; };
        StatCore core(path(tree), home == u"-" ? QStringLiteral("/nonexistent") : path(home), 4096, calls,
                      NetworkInfoReader::Seams{});
        QLoggingCategory::setFilterRules(QStringLiteral("kovar.stats*.warning=false"));
        MetricsExposition::Sample sample = MetricsExposition::sample(core);
        sample.deviceInfo = MetricsExposition::deviceInfo(core);
        sample.batteryLevel = battery.section(u' ', 0, 0).toFloat();
        const QStringList states{"unknown", "unplugged", "charging", "full"};
        sample.batteryState = MetricsExposition::BatteryState(states.indexOf(battery.section(u' ', 1, 1)));
        if (!battery.section(u' ', 2).isEmpty())
            sample.modem = ModemManagerCarrier::Signal{battery.section(u' ', 2, 2).toDouble(),
                                                       battery.section(u' ', 3)};
        for (auto &[label, value] : sample.deviceInfo)
            value = label == "name" && name != u"-" ? name : value;
        const QString text = QString::fromUtf8(MetricsExposition::render(
            sample, format == u"text" ? MetricsExposition::Format::Text : MetricsExposition::Format::OpenMetrics));
        const QStringList lines = text.split(u'\n');
        QCOMPARE(lines.last(), QString()); // every line ends, the last included
        // No rendered line holds a line break: in an expected line one stands for the escape "\n".
        for (const QString &line : present.split(u'|'))
            QVERIFY2(lines.contains(QString(line).replace(u'\n', QLatin1String("\\n"))), qPrintable(line));
        for (const QString &family : absent.split(u'|', Qt::SkipEmptyParts))
            QVERIFY2(!text.contains(family), qPrintable(family));
    }

    // A machine's figures from its fixture tree, scraped twice: every file system is 1 GiB,
    // a quarter of it writable; the dead share never answers and the backup share stops
    // answering after the first scrape. "!" starts a text that must not be there.
    void fleetFigures_data() { addRows("fleet.tsv", {"tree", "lines"}); }
    void fleetFigures()
    {
        QFETCH(QString, tree);
        QFETCH(QString, lines);
        QLoggingCategory::setFilterRules(QStringLiteral("kovar.stats*.warning=false"));
        StatCore core(path(tree), QStringLiteral("/nonexistent"), 4096, {}, NetworkInfoReader::Seams{});
        auto backupCalls = std::make_shared<std::atomic<int>>(0);
        FileSystemReader fileSystems(
            path(tree),
            [backupCalls](const char *at, struct statvfs *stats) {
                const QByteArray mount(at);
                if (mount.endsWith("/mnt/dead") || (mount.endsWith("/mnt/backup") && (*backupCalls)++ > 0))
                    std::this_thread::sleep_for(std::chrono::seconds(1));
                *stats = {};
                stats->f_frsize = 4096;
                stats->f_blocks = 262144;
                stats->f_bfree = 131072;
                stats->f_bavail = 65536;
                stats->f_files = 65536;
                stats->f_ffree = 32768;
                return 0;
            },
            50);
        QElapsedTimer clock;
        clock.start();
        MetricsExposition::sample(core, &fileSystems);
        const QStringList text = QString::fromUtf8(
                                     MetricsExposition::render(MetricsExposition::sample(core, &fileSystems),
                                                               MetricsExposition::Format::Text))
                                     .split(u'\n');
        QVERIFY2(clock.elapsed() < 900, "a hung file system held the scrape");
        for (const QString &line : lines.split(u'|')) {
            if (line.startsWith(u'!')) {
                for (const QString &rendered : text)
                    QVERIFY2(!rendered.contains(line.mid(1)), qPrintable(rendered));
            } else {
                QVERIFY2(text.contains(line), qPrintable(line));
            }
        }
    }

    void metricsNegotiation_data() { addRows("metrics-accept.tsv", {"accept", "format"}); }
    void metricsNegotiation()
    {
        QFETCH(QString, accept);
        QFETCH(QString, format);
        const MetricsExposition::Format served = MetricsExposition::negotiate(accept == u"-" ? QByteArray()
                                                                                             : accept.toLatin1());
        QCOMPARE(served == MetricsExposition::Format::OpenMetrics ? "openmetrics" : "text", format);
    }
};

QTEST_APPLESS_MAIN(TestMetricsExposition)
#include "tst_metricsexposition.moc"
