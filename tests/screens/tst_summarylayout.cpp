#include "FixtureTree.h"
#include "SummaryLayout.h"

#include <QtTest>

#include <functional>

// Where the Summary panels put their parts, in each idiom's table of frames.
class TestSummaryLayout : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void frames_data() { FixtureTree::addRows("summary-layout.tsv", {"idiom", "element", "frame"}); }
    void frames()
    {
        QFETCH(QString, idiom);
        QFETCH(QString, element);
        const int width = idiom.section(u' ', 1).toInt();
        const SummaryLayout l = idiom.startsWith(u"phone") ? SummaryLayout::phone(width) : SummaryLayout::tablet(width);
        const auto background = [](const SummaryLayout::Panel &panel) {
            return QRect(QPoint(), panel.frame.size()).marginsRemoved(panel.background);
        };
        const QMap<QString, std::function<QRect()>> frames{
            {"cpuPanel", [&] { return l.cpuPanel.frame; }},
            {"memoryPanel", [&] { return l.memoryPanel.frame; }},
            {"diskPanel", [&] { return l.diskPanel.frame; }},
            {"batteryPanel", [&] { return l.batteryPanel.frame; }},
            {"cpuBackground", [&] { return background(l.cpuPanel); }},
            {"diskBackground", [&] { return background(l.diskPanel); }},
            {"titleFrame", [&] { return l.titleFrame; }},
            {"histogram", [&] { return l.histogram; }},
            {"cpuUsage", [&] { return l.cpuUsage; }},
            {"cpuIdle", [&] { return l.cpuValues[2]; }},
            {"pieChart", [&] { return l.pieChart; }},
            {"diskBar", [&] { return l.diskBar; }},
        };
        const QMap<QString, int> sizes{{"titleSize", l.titleSize}, {"labelSize", l.labelSize}};
        QVERIFY2(frames.contains(element) || sizes.contains(element), qPrintable(element));
        if (sizes.contains(element)) {
            QTEST(QString::number(sizes[element]), "frame");
            return;
        }
        const QRect r = frames[element]();
        QTEST(QStringLiteral("%1 %2 %3 %4").arg(r.x()).arg(r.y()).arg(r.width()).arg(r.height()), "frame");
    }
};

QTEST_APPLESS_MAIN(TestSummaryLayout)
#include "tst_summarylayout.moc"
