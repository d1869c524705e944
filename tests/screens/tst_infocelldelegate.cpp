#include "FixtureTree.h"
#include "InfoTableModel.h"
#include "PageProbe.h"
#include "iPadNetworkViewController.h"
#include "iPhoneNetworkViewController.h"
#include "iPhoneSystemViewController.h"

#include <QtTest>

using namespace PageProbe;

// The System and Network rows as the info cell delegate paints them: row heights by kind,
// the lamp beside a YES or NO, and the stripe of every second row of a section.
class TestInfoCellDelegate : public QObject {
    Q_OBJECT

    iPhoneSystemViewController system;
    iPhoneNetworkViewController network;
    iPadNetworkViewController tabletNetwork;

private Q_SLOTS:
    void initTestCase()
    {
        buildOnPhone(system, network);
        tabletNetwork.initWithFrame(QRect(0, 0, 500, 600));
    }

    void infoRowHeights()
    {
        system.setInfoData(record({"DeviceInfo", "OSInfo", "CPUInfo"}, {2, 1, 0}));
        network.setInfoData(record({"CommonInfo", "WifiInfo", "CellInfo"}, {2, 1, 1}));
        // Each section: its tab (none without a title), its rows, a gap (none after the last).
        for (auto [page, expected] : {std::pair<ListPage *, QString>{&system, "25 40 40 15 25 40 15 25 0"},
                                      std::pair<ListPage *, QString>{&network, "0 40 40 15 25 40 15 25 40 0"}}) {
            QStringList heights;
            for (int row = 0; row < page->tableView()->model()->rowCount(); ++row)
                heights << QString::number(
                    page->tableView()->visualRect(page->tableView()->model()->index(row, 0)).height());
            QCOMPARE(heights.join(u' '), expected);
        }
    }

    void networkLamp_data() { FixtureTree::addRows("network-lamp.tsv", {"value", "lamp"}); }
    void networkLamp()
    {
        QFETCH(QString, value);
        QFETCH(QString, lamp);
        InfoDictionary shown;
        shown.addSection(QStringLiteral("CommonInfo"),
                         {{QStringLiteral("Available"), value}, {QStringLiteral("Host"), {}}});
        for (auto [page, centre] : {std::pair<NetworkPage *, qreal>{&network, 241.5}, {&tabletNetwork, 281.5}}) {
            page->setInfoData(shown);
            const QColor seen = at(*page, page->tableModel()->dataRow(0, 0), QPointF(centre, 20)); // the lamp's centre
            const bool green = RenderProbe::near(seen, QColor(20, 220, 50), 30);
            QCOMPARE(QString(green ? "green" : RenderProbe::near(seen, QColor(220, 0, 20), 30) ? "red" : "none"), lamp);
        }
        // The second row of a section is the striped one, whatever comes before the section.
        const int first = network.tableModel()->dataRow(0, 0);
        QVERIFY(at(network, first + 1, QPointF(285, 3)).lightness() < at(network, first, QPointF(285, 3)).lightness());
    }
};

QTEST_MAIN(TestInfoCellDelegate)
#include "tst_infocelldelegate.moc"
