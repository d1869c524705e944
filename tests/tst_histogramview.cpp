#include "OOHistogramView.h"
#include "WidgetRenderer.h"

#include "RenderProbe.h"

#include <QtTest>

// Cells are 6 x 6 with a 1-point gap (pitch 7) inside a 3-point margin, so the
// probes below sit in the middle of cells, clear of the frame and its shadow.
namespace {

constexpr float CellSize = 6.0f;
constexpr int Pitch = 7;

QList<HistogramItem> items(const QList<QList<int>> &triples)
{
    QList<HistogramItem> result;
    for (const QList<int> &t : triples)
        result.append(HistogramItem::initWithUser(t.at(0), t.at(1), t.at(2)));
    return result;
}

// One letter per cell: U user (cyan), S system (red), . unpainted, ? other.
char classify(const QColor &c)
{
    if (c.alpha() < 100)
        return '.';
    if (c.red() < 80 && c.green() > 170 && c.blue() > 170)
        return 'U';
    if (c.red() > 170 && c.green() < 80 && c.blue() < 80)
        return 'S';
    return '?';
}

// Reads the grid as the frame and margin place it: column k starts at
// x = 3 + 7k, row j at y = 3 + 7j; one string per column, top row first.
QStringList readGrid(const QImage &image, int columns, int rows)
{
    QStringList grid;
    for (int k = 0; k < columns; ++k) {
        QString column;
        for (int j = 0; j < rows; ++j)
            column += QLatin1Char(classify(RenderProbe::at(image, 3 + Pitch * k + 3, 3 + Pitch * j + 3)));
        grid.append(column);
    }
    return grid;
}

QStringList repeatColumn(const QString &column, int count)
{
    QStringList result;
    for (int i = 0; i < count; ++i)
        result.append(column);
    return result;
}

OOHistogramView *makeView(int columns, int rows, QObject *owner)
{
    auto *view = new OOHistogramView(QRect(0, 0, 6 + Pitch * columns, 6 + Pitch * rows));
    view->setItemRectWidth(CellSize);
    view->setItemRectHeight(CellSize);
    QObject::connect(owner, &QObject::destroyed, view, [view] { delete view; });
    return view;
}

} // namespace

class TestHistogramView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void grid_data();
    void grid();
    void leftoverWidthStaysOnTheRight();
    void allZeroSampleIsIgnored();
    void historyKeepsNewestSamplesAndDrawsTheSame();
    void frameIsDrawnWithoutItems_data();
    void frameIsDrawnWithoutItems();
    void cellsAreCrispAtDoubleDensity();
};

void TestHistogramView::grid_data()
{
    QTest::addColumn<QList<HistogramItem>>("samples");
    QTest::addColumn<QStringList>("expected"); // 8 columns of 10 rows

    const QString user = QStringLiteral("UUUUUUUUUU");
    const QString system = QStringLiteral("SSSSSSSSSS");
    const QString blank = QStringLiteral("..........");

    QTest::newRow("short history hugs the right edge, not the left")
        << items({ { 1, 0, 0 }, { 0, 1, 0 } })
        << (repeatColumn(blank, 6) << user << system);
    QTest::newRow("exactly as many samples as columns fill the grid from the left margin")
        << items({ { 1, 0, 0 }, { 0, 1, 0 }, { 1, 0, 0 }, { 0, 1, 0 }, { 1, 0, 0 }, { 0, 1, 0 }, { 1, 0, 0 },
                   { 0, 1, 0 } })
        << QStringList { user, system, user, system, user, system, user, system };
    QTest::newRow("one sample too many drops the oldest from view, not the newest")
        << items({ { 0, 0, 1 }, { 1, 0, 0 }, { 0, 1, 0 }, { 1, 0, 0 }, { 0, 1, 0 }, { 1, 0, 0 }, { 0, 1, 0 },
                   { 1, 0, 0 }, { 0, 1, 0 } })
        << QStringList { user, system, user, system, user, system, user, system };
    QTest::newRow("1:1:1 over 10 rows: idle 3 on top, user 4 (gets the rounding row), system 3 at the foot")
        << items({ { 1, 1, 1 } }) << (repeatColumn(blank, 7) << QStringLiteral("...UUUUSSS"));
    QTest::newRow("user 1 idle 2: the rounding row goes to user, not idle")
        << items({ { 1, 0, 2 } }) << (repeatColumn(blank, 7) << QStringLiteral("......UUUU"));
    QTest::newRow("user and system halves split exactly, idle gets nothing")
        << items({ { 1, 1, 0 } }) << (repeatColumn(blank, 7) << QStringLiteral("UUUUUSSSSS"));
    QTest::newRow("all user is an all-cyan column")
        << items({ { 5, 0, 0 } }) << (repeatColumn(blank, 7) << user);
    QTest::newRow("all system is an all-red column")
        << items({ { 0, 7, 0 } }) << (repeatColumn(blank, 7) << system);
    QTest::newRow("all idle leaves the column blank")
        << items({ { 0, 0, 3 }, { 1, 0, 0 } }) << (repeatColumn(blank, 7) << user);
    QTest::newRow("large tick counts split by ratio without overflow")
        << items({ { 300000000, 300000000, 300000000 } })
        << (repeatColumn(blank, 7) << QStringLiteral("...UUUUSSS"));
}

void TestHistogramView::grid()
{
    QFETCH(QList<HistogramItem>, samples);
    QFETCH(QStringList, expected);

    OOHistogramView *view = makeView(8, 10, this);
    for (const HistogramItem &item : samples)
        view->addItemData(item);

    const QImage image = WidgetRenderer::render(view);
    QCOMPARE(readGrid(image, 8, 10), expected);
}

void TestHistogramView::leftoverWidthStaysOnTheRight()
{
    // 64 wide: (64 - 6) / 7 = 8.28 gives 8 columns; the 2 spare points are
    // on the right, so a short history ends 2 points before the margin.
    OOHistogramView view(QRect(0, 0, 64, 6 + Pitch * 10));
    view.setItemRectWidth(CellSize);
    view.setItemRectHeight(CellSize);
    view.addItemData(HistogramItem::initWithUser(1, 0, 0));

    const QImage image = WidgetRenderer::render(&view);
    // Column 7 spans x 52..57; x 58 is the gap and x 59..60 are spare.
    // Row 4 spans y 31..36.
    QCOMPARE(classify(RenderProbe::at(image, 52, 33)), 'U');
    QCOMPARE(classify(RenderProbe::at(image, 57, 33)), 'U');
    QCOMPARE(classify(RenderProbe::at(image, 59, 33)), '.');
    QCOMPARE(classify(RenderProbe::at(image, 51, 33)), '.');
}

void TestHistogramView::allZeroSampleIsIgnored()
{
    OOHistogramView *view = makeView(8, 10, this);
    view->addItemData(HistogramItem::initWithUser(1, 0, 0));
    const QImage before = WidgetRenderer::render(view);

    view->addItemData(HistogramItem::initWithUser(0, 0, 0));

    QCOMPARE(view->itemData().size(), 1);
    QCOMPARE(WidgetRenderer::render(view), before);
}

void TestHistogramView::historyKeepsNewestSamplesAndDrawsTheSame()
{
    OOHistogramView *full = makeView(8, 10, this);
    OOHistogramView *recent = makeView(8, 10, this);
    const int total = 5000;
    for (int i = 1; i <= total; ++i) {
        const HistogramItem item = HistogramItem::initWithUser(i % 3, i % 5, i % 7 + 1);
        full->addItemData(item);
        if (i > total - 8)
            recent->addItemData(item);
    }

    QCOMPARE(full->itemData().size(), OOHistogramView::HistoryLimit);
    const int firstKept = total - int(OOHistogramView::HistoryLimit) + 1;
    QCOMPARE(full->itemData().first(),
             HistogramItem::initWithUser(firstKept % 3, firstKept % 5, firstKept % 7 + 1));
    QCOMPARE(full->itemData().last(), HistogramItem::initWithUser(total % 3, total % 5, total % 7 + 1));
    QCOMPARE(WidgetRenderer::render(full), WidgetRenderer::render(recent));
}

void TestHistogramView::frameIsDrawnWithoutItems_data()
{
    QTest::addColumn<bool>("withItems");
    QTest::addColumn<float>("cellSize");
    QTest::newRow("empty history") << false << CellSize;
    QTest::newRow("cells larger than the view") << true << 500.0f;
    QTest::newRow("cell size never set") << true << 0.0f;
    QTest::newRow("negative cell size") << true << -1.0f;
}

void TestHistogramView::frameIsDrawnWithoutItems()
{
    QFETCH(bool, withItems);
    QFETCH(float, cellSize);
    OOHistogramView view(QRect(0, 0, 62, 76));
    view.setItemRectWidth(cellSize);
    view.setItemRectHeight(cellSize);
    if (withItems)
        view.addItemData(HistogramItem::initWithUser(1, 1, 1));

    const QImage image = WidgetRenderer::render(&view);
    // The 4-point frame straddles the edge: its inner 2 points are white.
    const QColor white(255, 255, 255, 255);
    for (const QPoint &p : { QPoint(0, 30), QPoint(1, 30), QPoint(30, 0), QPoint(30, 1), QPoint(61, 30),
                             QPoint(30, 75) }) {
        const QColor c = RenderProbe::at(image, p.x(), p.y());
        QVERIFY2(RenderProbe::near(c, white, 8), qPrintable(RenderProbe::describe(c)));
    }
    const QColor inside = RenderProbe::at(image, 2, 30);
    QVERIFY2(inside.red() < 100 || inside.alpha() < 200, qPrintable(RenderProbe::describe(inside)));
    if (cellSize > 0.0f && cellSize < 100.0f)
        QCOMPARE(classify(RenderProbe::at(image, 30, 38)), '.');
}

void TestHistogramView::cellsAreCrispAtDoubleDensity()
{
    OOHistogramView *view = makeView(8, 10, this);
    view->addItemData(HistogramItem::initWithUser(0, 1, 0));
    const QImage image = WidgetRenderer::render(view, 2.0);
    QCOMPARE(image.size(), QSize(2 * 62, 2 * 76));
    // Column 7 spans x 52..58 logical, i.e. device pixels 104..115.
    const int y = 2 * 40;
    QCOMPARE(QColor(image.pixel(104, y)), QColor(255, 0, 0));
    QCOMPARE(QColor(image.pixel(115, y)), QColor(255, 0, 0));
    QCOMPARE(qAlpha(image.pixel(103, y)), 0);
    QCOMPARE(qAlpha(image.pixel(116, y)), 0);
}

QTEST_MAIN(TestHistogramView)
#include "tst_histogramview.moc"
