#include "FixtureTree.h"
#include "MetricsExposition.h"
#include "StatCore.h"

#include <QLoggingCategory>
#include <QtTest>

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
        sample.batteryState = MetricsExposition::BatteryState(states.indexOf(battery.section(u' ', 1)));
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
