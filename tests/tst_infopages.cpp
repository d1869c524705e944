#include "InfoTableModel.h"
#include "RenderProbe.h"
#include "iPhoneNetworkViewController.h"
#include "iPhoneSystemViewController.h"

#include <QApplication>
#include <QListView>
#include <QPainter>
#include <QScrollBar>
#include <QTest>

#include <memory>

namespace {

// Where the table's top-left corner sits on the page: the 20-point band, then 40 down, 15 in.
const QPoint TableOrigin(15, 60);
const QColor Backdrop(128, 128, 128);
const QColor Green(20, 220, 50);
const QColor Red(220, 0, 20);

InfoSection rows(int count, const QString &prefix = QStringLiteral("row"))
{
    InfoSection section;
    for (int i = 0; i < count; ++i)
        section.append({prefix + QString::number(i), QStringLiteral("value %1").arg(i)});
    return section;
}

InfoDictionary record(const QStringList &names, const QList<int> &counts)
{
    InfoDictionary info;
    for (int i = 0; i < names.size(); ++i)
        info.addSection(names[i], rows(counts[i]));
    return info;
}

InfoDictionary networkRecord(const InfoSection &common)
{
    InfoDictionary info;
    info.addSection(QStringLiteral("CommonInfo"), common);
    info.addSection(QStringLiteral("WifiInfo"), {{QStringLiteral("Active WLAN"), QStringLiteral("YES")}});
    info.addSection(QStringLiteral("CellInfo"), {{QStringLiteral("Active WWAN"), QStringLiteral("NO")}});
    return info;
}

QImage render(QWidget *page)
{
    QImage image(page->size(), QImage::Format_ARGB32);
    image.fill(Backdrop);
    page->render(&image);
    return image;
}

// The page point of a spot inside a flat table row, given in the row's own coordinates.
QPointF onPage(QListView *view, int flatRow, QPointF inRow)
{
    const QRect rect = view->visualRect(view->model()->index(flatRow, 0));
    return QPointF(TableOrigin) + QPointF(view->viewport()->pos()) + QPointF(rect.topLeft()) + inRow;
}

// Centre of the lamp, (234, 12.5, 15, 15) in the row.
const QPointF LampCentre(241.5, 20.0);

bool isLampColour(const QColor &colour)
{
    return RenderProbe::near(colour, Green, 40) || RenderProbe::near(colour, Red, 40);
}

std::unique_ptr<iPhoneNetworkViewController> networkPage(std::optional<InfoDictionary> *shown)
{
    auto page = std::make_unique<iPhoneNetworkViewController>();
    page->resize(320, 460);
    page->setNetworkInfoSource([shown] { return *shown; });
    page->viewDidLoad();
    QCoreApplication::processEvents(); // the activation that may already be under way
    return page;
}

} // namespace

class TestInfoPages : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sectionHeights_data();
    void sectionHeights();
    void emptyNetworkPageBeforeFirstActivation();
    void lampFollowsValue_data();
    void lampFollowsValue();
    void lampDecidedAnewAfterScrolling_data();
    void lampDecidedAnewAfterScrolling();
    void reloadsOnEveryActivation();
    void nilNetworkRecordEmptiesTable();
    void systemIgnoresNilRecord();
    void headerTabPixels_data();
    void headerTabPixels();
    void shorterPageShortensTable();
};

void TestInfoPages::sectionHeights_data()
{
    QTest::addColumn<bool>("network");
    QTest::addColumn<int>("section");
    QTest::addColumn<int>("dataRows");
    QTest::addColumn<int>("headerHeight");
    QTest::addColumn<int>("footerHeight");

    QTest::newRow("system Device: tab and 15-point gap") << false << 0 << 4 << 25 << 15;
    QTest::newRow("system Operating System: tab and 15-point gap") << false << 1 << 3 << 25 << 15;
    QTest::newRow("system CPU, empty: tab stays, no trailing gap") << false << 2 << 0 << 25 << 0;
    QTest::newRow("network CommonInfo: no header at all") << true << 0 << 4 << 0 << 15;
    QTest::newRow("network WifiInfo: tab and gap") << true << 1 << 2 << 25 << 15;
    QTest::newRow("network CellInfo: tab, no trailing gap") << true << 2 << 7 << 25 << 0;
}

void TestInfoPages::sectionHeights()
{
    QFETCH(bool, network);
    QFETCH(int, section);
    QFETCH(int, dataRows);
    QFETCH(int, headerHeight);
    QFETCH(int, footerHeight);

    std::optional<InfoDictionary> networkData =
        record({QStringLiteral("CommonInfo"), QStringLiteral("WifiInfo"), QStringLiteral("CellInfo")}, {4, 2, 7});
    std::unique_ptr<InfoPage> page;
    InfoTableModel *model = nullptr;
    if (network) {
        auto networkPageObject = networkPage(&networkData);
        networkPageObject->reloadNetworkData();
        model = networkPageObject->tableModel();
        page = std::move(networkPageObject);
    } else {
        auto system = std::make_unique<iPhoneSystemViewController>();
        system->resize(320, 460);
        system->viewDidLoad();
        system->setInfoData(record({QStringLiteral("DeviceInfo"), QStringLiteral("OSInfo"), QStringLiteral("CPUInfo")},
                                   {4, 3, 0}));
        model = system->tableModel();
        page = std::move(system);
    }
    QListView *view = page->tableView();
    QVERIFY(view);
    QCOMPARE(model->numberOfSections(), 3);
    QCOMPARE(model->numberOfRowsInSection(section), dataRows);
    QCOMPARE(model->numberOfRowsInSection(3), 0);

    // What the list lays out, not only what the model says.
    const int header = model->headerRow(section);
    const int footer = model->footerRow(section);
    QVERIFY(header >= 0 && footer > header);
    QCOMPARE(view->visualRect(model->index(header, 0)).height(), headerHeight);
    QCOMPARE(view->visualRect(model->index(footer, 0)).height(), footerHeight);
    for (int row = 0; row < dataRows; ++row)
        QCOMPARE(view->visualRect(model->index(model->dataRow(section, row), 0)).height(), 40);
    // Sections follow each other without a gap: header, rows, footer.
    const QRect headerRect = view->visualRect(model->index(header, 0));
    const QRect footerRect = view->visualRect(model->index(footer, 0));
    QCOMPARE(footerRect.top() - headerRect.top(), headerHeight + 40 * dataRows);
}

void TestInfoPages::emptyNetworkPageBeforeFirstActivation()
{
    auto page = std::make_unique<iPhoneNetworkViewController>();
    page->resize(320, 460);
    int asked = 0;
    page->setNetworkInfoSource([&asked] {
        ++asked;
        return std::optional<InfoDictionary>(networkRecord({{QStringLiteral("Network Available"), QStringLiteral("YES")}}));
    });
    page->viewDidLoad();
    // Building reads nothing; the first record comes with an activation.
    QCOMPARE(asked, 0);
    QVERIFY(!page->tableData());
    for (int section = 0; section < 3; ++section)
        QCOMPARE(page->tableModel()->numberOfRowsInSection(section), 0);
    QCOMPARE(page->tableModel()->heightForHeaderInSection(0), 0);
}

void TestInfoPages::lampFollowsValue_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QColor>("lamp"); // invalid: no lamp

    QTest::newRow("YES lights green") << "YES" << Green;
    QTest::newRow("NO lights red") << "NO" << Red;
    QTest::newRow("lower-case no lights nothing") << "no" << QColor();
    QTest::newRow("lower-case yes lights nothing") << "yes" << QColor();
    QTest::newRow("YES with a trailing blank lights nothing") << "YES " << QColor();
    QTest::newRow("an address lights nothing") << "192.0.2.2" << QColor();
    QTest::newRow("empty value lights nothing") << "" << QColor();
}

void TestInfoPages::lampFollowsValue()
{
    QFETCH(QString, value);
    QFETCH(QColor, lamp);

    std::optional<InfoDictionary> shown = networkRecord({{QStringLiteral("Network Available"), value}});
    auto page = networkPage(&shown);
    page->reloadNetworkData();
    const QImage image = render(page.get());
    const QPointF centre = onPage(page->tableView(), page->tableModel()->dataRow(0, 0), LampCentre);
    const QColor seen = RenderProbe::at(image, centre.x(), centre.y());
    if (lamp.isValid())
        QVERIFY2(RenderProbe::near(seen, lamp, 30), qPrintable(RenderProbe::describe(seen)));
    else
        QVERIFY2(!isLampColour(seen), qPrintable(RenderProbe::describe(seen)));
}

void TestInfoPages::lampDecidedAnewAfterScrolling_data()
{
    QTest::addColumn<int>("scrollBy");

    QTest::newRow("one row: every YES row now shows an address") << 40;
    QTest::newRow("three rows") << 120;
    QTest::newRow("half a row") << 20;
}

void TestInfoPages::lampDecidedAnewAfterScrolling()
{
    QFETCH(int, scrollBy);

    // Alternate lamp rows and address rows, more than the table can show at once.
    InfoSection common;
    for (int i = 0; i < 24; ++i) {
        common.append({QStringLiteral("Row %1").arg(i),
                       i % 4 == 0 ? QStringLiteral("YES")
                                  : i % 4 == 2 ? QStringLiteral("NO") : QStringLiteral("10.0.0.%1").arg(i)});
    }
    std::optional<InfoDictionary> shown = networkRecord(common);
    auto page = networkPage(&shown);
    page->reloadNetworkData();
    QListView *view = page->tableView();
    render(page.get());
    view->verticalScrollBar()->setValue(view->verticalScrollBar()->value() + scrollBy);
    const QImage image = render(page.get());

    int checked = 0;
    for (int i = 0; i < common.size(); ++i) {
        const int flat = page->tableModel()->dataRow(0, i);
        const QRect rect = view->visualRect(page->tableModel()->index(flat, 0));
        if (rect.top() < 0 || rect.bottom() >= view->viewport()->height())
            continue;
        const QPointF centre = onPage(view, flat, LampCentre);
        const QColor seen = RenderProbe::at(image, centre.x(), centre.y());
        const QString value = common[i].value;
        if (value == QLatin1String("YES"))
            QVERIFY2(RenderProbe::near(seen, Green, 30), qPrintable(value + RenderProbe::describe(seen)));
        else if (value == QLatin1String("NO"))
            QVERIFY2(RenderProbe::near(seen, Red, 30), qPrintable(value + RenderProbe::describe(seen)));
        else
            QVERIFY2(!isLampColour(seen), qPrintable(QStringLiteral("row %1: ").arg(i) + RenderProbe::describe(seen)));
        ++checked;
    }
    QVERIFY(checked >= 6);

    // A new record on the same rows: the lamps follow the new values.
    for (InfoRow &row : common)
        row.value = row.value == QLatin1String("YES") ? QStringLiteral("fe80::1") : row.value;
    shown = networkRecord(common);
    page->reloadNetworkData();
    const QImage again = render(page.get());
    const QPointF first = onPage(view, page->tableModel()->dataRow(0, 0), LampCentre);
    QVERIFY(!isLampColour(RenderProbe::at(again, first.x(), first.y())));
}

void TestInfoPages::reloadsOnEveryActivation()
{
    int asked = 0;
    auto page = std::make_unique<iPhoneNetworkViewController>();
    page->resize(320, 460);
    page->setNetworkInfoSource([&asked] {
        ++asked;
        return std::optional<InfoDictionary>(networkRecord(rows(asked)));
    });
    page->viewDidLoad();
    QCoreApplication::processEvents();
    const int atStart = asked;

    auto *application = qobject_cast<QGuiApplication *>(QCoreApplication::instance());
    Q_EMIT application->applicationStateChanged(Qt::ApplicationInactive);
    QCOMPARE(asked, atStart);
    Q_EMIT application->applicationStateChanged(Qt::ApplicationActive);
    QCOMPARE(asked, atStart + 1);
    QCOMPARE(page->tableModel()->numberOfRowsInSection(0), asked);
    Q_EMIT application->applicationStateChanged(Qt::ApplicationActive);
    QCOMPARE(asked, atStart + 2);
    QCOMPARE(page->tableModel()->numberOfRowsInSection(0), asked);
}

void TestInfoPages::nilNetworkRecordEmptiesTable()
{
    std::optional<InfoDictionary> shown = networkRecord(rows(5));
    auto page = networkPage(&shown);
    page->reloadNetworkData();
    QCOMPARE(page->tableModel()->numberOfRowsInSection(0), 5);

    shown.reset();
    Q_EMIT qobject_cast<QGuiApplication *>(QCoreApplication::instance())->applicationStateChanged(Qt::ApplicationActive);
    QVERIFY(!page->tableData());
    for (int section = 0; section < 3; ++section)
        QCOMPARE(page->tableModel()->numberOfRowsInSection(section), 0);
    // No lamp of the old record survives on screen.
    const QImage image = render(page.get());
    for (int y = 0; y < 200; y += 5)
        QVERIFY(!isLampColour(RenderProbe::at(image, TableOrigin.x() + LampCentre.x(), TableOrigin.y() + y)));
}

void TestInfoPages::systemIgnoresNilRecord()
{
    iPhoneSystemViewController page;
    page.resize(320, 460);
    page.viewDidLoad();
    const InfoDictionary info =
        record({QStringLiteral("DeviceInfo"), QStringLiteral("OSInfo"), QStringLiteral("CPUInfo")}, {2, 2, 2});
    page.setInfoData(info);
    page.setInfoData(std::nullopt);
    QVERIFY(page.tableData());
    QCOMPARE(*page.tableData(), info);
    QCOMPARE(page.tableModel()->numberOfRowsInSection(2), 2);
}

void TestInfoPages::headerTabPixels_data()
{
    QTest::addColumn<bool>("network");
    QTest::addColumn<int>("section");

    QTest::newRow("system Operating System tab") << false << 1;
    QTest::newRow("network Cellular Information tab") << true << 2;
}

void TestInfoPages::headerTabPixels()
{
    QFETCH(bool, network);
    QFETCH(int, section);

    std::optional<InfoDictionary> networkData = networkRecord(rows(2));
    std::unique_ptr<InfoPage> page;
    InfoTableModel *model = nullptr;
    if (network) {
        auto networkPageObject = networkPage(&networkData);
        networkPageObject->reloadNetworkData();
        model = networkPageObject->tableModel();
        page = std::move(networkPageObject);
    } else {
        auto system = std::make_unique<iPhoneSystemViewController>();
        system->resize(320, 460);
        system->viewDidLoad();
        system->setInfoData(
            record({QStringLiteral("DeviceInfo"), QStringLiteral("OSInfo"), QStringLiteral("CPUInfo")}, {2, 2, 2}));
        model = system->tableModel();
        page = std::move(system);
    }
    const QImage image = render(page.get());
    QListView *view = page->tableView();
    const int header = model->headerRow(section);

    // Inside the plate, clear of the title: half-dark over the panel beside the tab.
    const QPointF plate = onPage(view, header, QPointF(4, 12));
    const QPointF beside = onPage(view, header, QPointF(180, 12));
    const QColor plateColour = RenderProbe::at(image, plate.x(), plate.y());
    const QColor besideColour = RenderProbe::at(image, beside.x(), beside.y());
    QVERIFY2(std::abs(plateColour.red() - besideColour.red() / 2) <= 6,
             qPrintable(RenderProbe::describe(plateColour) + RenderProbe::describe(besideColour)));
    // Just past the tab's 170-point width nothing is darkened.
    const QPointF past = onPage(view, header, QPointF(172, 12));
    QVERIFY(RenderProbe::near(RenderProbe::at(image, past.x(), past.y()), besideColour, 3));
    // The white border at half alpha on the tab's top edge, midway along.
    const QPointF edge = onPage(view, header, QPointF(85, 0));
    const QColor edgeColour = RenderProbe::at(image, edge.x(), edge.y());
    QVERIFY2(edgeColour.red() > besideColour.red() + 25,
             qPrintable(RenderProbe::describe(edgeColour) + RenderProbe::describe(besideColour)));
    // Orange title text somewhere in the label's first 80 points.
    bool orange = false;
    for (int x = 10; x < 90 && !orange; ++x) {
        for (int y = 4; y < 22 && !orange; ++y) {
            const QPointF p = onPage(view, header, QPointF(x, y));
            const QColor c = RenderProbe::at(image, p.x(), p.y());
            orange = c.red() > 200 && c.green() > 90 && c.green() < 160 && c.blue() < 60;
        }
    }
    QVERIFY(orange);
}

void TestInfoPages::shorterPageShortensTable()
{
    iPhoneSystemViewController page;
    page.resize(320, 460);
    page.viewDidLoad();
    const QRect before = page.tableView()->geometry();
    QCOMPARE(before, QRect(15, 40, 290, 385));
    page.resize(320, 410);
    page.setFrameForAd();
    QCOMPARE(page.tableView()->geometry(), QRect(15, 40, 290, 335));
}

QTEST_MAIN(TestInfoPages)
#include "tst_infopages.moc"
