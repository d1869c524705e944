#include "OOPieChartView.h"
#include "WidgetRenderer.h"

#include "RenderProbe.h"

#include <QtTest>

#include <cmath>
#include <numbers>

namespace {

const QList<QColor> Palette = { QColor(255, 0, 0), QColor(0, 255, 0), QColor(0, 0, 255), QColor(255, 255, 0) };
const QColor Grey(128, 128, 128);

PieChartItem item(quint64 value, int paletteIndex)
{
    const QColor c = Palette.at(paletteIndex);
    return PieChartItem::initWithValue(value, float(c.redF()), float(c.greenF()), float(c.blueF()), 1.0f);
}

// Angle in degrees measured clockwise on screen from the right of the centre.
QColor probe(const QImage &image, QPointF centre, qreal radius, qreal degrees)
{
    const qreal a = degrees * std::numbers::pi / 180.0;
    return RenderProbe::at(image, centre.x() + radius * std::cos(a) - 0.5, centre.y() + radius * std::sin(a) - 0.5);
}

// Index into Palette, -1 for the bare grey ring, -2 for anything else.
int identify(const QColor &c)
{
    for (qsizetype i = 0; i < Palette.size(); ++i) {
        if (RenderProbe::near(c, Palette.at(i), 16))
            return int(i);
    }
    return RenderProbe::near(c, Grey, 6) ? -1 : -2;
}

} // namespace

class TestPieChartView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void segments_data();
    void segments();
    void smallerSideSetsTheDiameter_data();
    void smallerSideSetsTheDiameter();
    void outlinesSitOnBothRadii();
    void emptyChartLogsAndDrawsTheGreyRing();
    void itemsDoNotLog();
    void replacingKeepsOnlyTheNewFour();
    void sixtyFourBitValuesKeepTheirRatio();
};

void TestPieChartView::segments_data()
{
    QTest::addColumn<QList<PieChartItem>>("items");
    // What lies at 22.5, 67.5, ... 337.5 degrees clockwise from the right.
    QTest::addColumn<QList<int>>("expected");

    QTest::newRow("four equal items start at right, bottom, left, top in order")
        << QList<PieChartItem> { item(1, 0), item(1, 1), item(1, 2), item(1, 3) }
        << QList<int> { 0, 0, 1, 1, 2, 2, 3, 3 };
    QTest::newRow("a quarter then the rest: the first sits below-right, clockwise from 0")
        << QList<PieChartItem> { item(1, 0), item(3, 1) } << QList<int> { 0, 0, 1, 1, 1, 1, 1, 1 };
    QTest::newRow("the last item closes the ring at angle 0, whatever the rounding")
        << QList<PieChartItem> { item(1, 0), item(1, 1), item(1, 2) }
        << QList<int> { 0, 0, 0, 1, 1, 2, 2, 2 };
    QTest::newRow("a single item paints no segment, only the grey ring")
        << QList<PieChartItem> { item(5, 2) } << QList<int> { -1, -1, -1, -1, -1, -1, -1, -1 };
    QTest::newRow("a zero item takes no room")
        << QList<PieChartItem> { item(0, 3), item(1, 0), item(1, 1) }
        << QList<int> { 0, 0, 0, 0, 1, 1, 1, 1 };
    QTest::newRow("all zero draws no segment instead of garbage")
        << QList<PieChartItem> { item(0, 0), item(0, 1) } << QList<int> { -1, -1, -1, -1, -1, -1, -1, -1 };
}

void TestPieChartView::segments()
{
    QFETCH(QList<PieChartItem>, items);
    QFETCH(QList<int>, expected);

    OOPieChartView view(QRect(0, 0, 100, 100));
    view.setItemData(items);
    const QImage image = WidgetRenderer::render(&view);

    // Radius 30 lies mid-ring: R = 45, r = 15.
    QList<int> seen;
    for (int k = 0; k < 8; ++k)
        seen.append(identify(probe(image, QPointF(50, 50), 30, 22.5 + 45.0 * k)));
    QCOMPARE(seen, expected);
}

void TestPieChartView::smallerSideSetsTheDiameter_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QPointF>("centre");
    QTest::addColumn<qreal>("outer");

    QTest::newRow("square 100: R 45") << QSize(100, 100) << QPointF(50, 50) << 45.0;
    QTest::newRow("wider than tall follows the height, centred across") << QSize(200, 100) << QPointF(100, 50) << 45.0;
    QTest::newRow("taller than wide follows the width, centred down") << QSize(80, 160) << QPointF(40, 80) << 35.0;
}

void TestPieChartView::smallerSideSetsTheDiameter()
{
    QFETCH(QSize, size);
    QFETCH(QPointF, centre);
    QFETCH(qreal, outer);

    OOPieChartView view(QRect(QPoint(0, 0), size));
    view.addItemData0(item(1, 0), item(1, 0), item(1, 0), item(1, 0));
    const QImage image = WidgetRenderer::render(&view);
    const qreal inner = outer / 3.0;

    for (qreal degrees : { 0.0, 90.0, 180.0, 270.0 }) {
        const QColor ring = probe(image, centre, (outer + inner) / 2.0, degrees + 10.0);
        QVERIFY2(identify(ring) == 0, qPrintable(RenderProbe::describe(ring)));
        const QColor hole = probe(image, centre, inner - 4.0, degrees + 10.0);
        QVERIFY2(identify(hole) != 0, qPrintable(RenderProbe::describe(hole)));
        const QColor beyond = probe(image, centre, outer + 4.0, degrees + 10.0);
        QVERIFY2(identify(beyond) != 0, qPrintable(RenderProbe::describe(beyond)));
    }
}

void TestPieChartView::outlinesSitOnBothRadii()
{
    OOPieChartView view(QRect(0, 0, 100, 100));
    view.addItemData0(item(1, 2), item(1, 2), item(1, 2), item(1, 2));
    const QImage image = WidgetRenderer::render(&view);
    const QColor white(255, 255, 255);
    // Width-2 outlines on R = 45 and r = 15, seen on the left, top and right.
    for (const QPoint &p : { QPoint(95, 50), QPoint(94, 50), QPoint(5, 50), QPoint(50, 5), QPoint(65, 50),
                             QPoint(34, 50), QPoint(50, 34) }) {
        const QColor c = RenderProbe::at(image, p.x(), p.y());
        QVERIFY2(RenderProbe::near(c, white, 40), qPrintable(QStringLiteral("(%1,%2) %3")
                                                              .arg(p.x())
                                                              .arg(p.y())
                                                              .arg(RenderProbe::describe(c))));
    }
}

void TestPieChartView::emptyChartLogsAndDrawsTheGreyRing()
{
    OOPieChartView view(QRect(0, 0, 100, 100));
    QTest::ignoreMessage(QtWarningMsg, "#### OOPieChartView itemData count:[0]");
    const QImage image = WidgetRenderer::render(&view);
    QCOMPARE(identify(probe(image, QPointF(50, 50), 30, 45)), -1);
    QCOMPARE(identify(probe(image, QPointF(50, 50), 30, 225)), -1);
    // The shadow falls down and to the right of the ring, not up and left.
    const QColor below = RenderProbe::at(image, 52, 97);
    const QColor above = RenderProbe::at(image, 47, 2);
    QVERIFY2(below.alpha() > 20, qPrintable(RenderProbe::describe(below)));
    QVERIFY2(above.alpha() < below.alpha(), qPrintable(RenderProbe::describe(above)));
}

void TestPieChartView::itemsDoNotLog()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral("OOPieChartView")));
    OOPieChartView view(QRect(0, 0, 100, 100));
    view.addItemData0(item(1, 0), item(2, 1), item(3, 2), item(4, 3));
    const QImage image = WidgetRenderer::render(&view);
    QCOMPARE(identify(probe(image, QPointF(50, 50), 30, 10)), 0);
}

void TestPieChartView::replacingKeepsOnlyTheNewFour()
{
    OOPieChartView view(QRect(0, 0, 100, 100));
    view.addItemData0(item(1, 0), item(1, 0), item(1, 0), item(1, 0));
    view.addItemData0(item(4, 1), item(3, 2), item(2, 3), item(1, 0));
    const QList<PieChartItem> expected { item(4, 1), item(3, 2), item(2, 3), item(1, 0) };
    QCOMPARE(view.itemData(), expected);
    const QImage image = WidgetRenderer::render(&view);
    QCOMPARE(identify(probe(image, QPointF(50, 50), 30, 10)), 1);
}

void TestPieChartView::sixtyFourBitValuesKeepTheirRatio()
{
    // 8 GiB and 24 GiB: with 32-bit values both would wrap to 0.
    const quint64 gib = quint64(1) << 30;
    OOPieChartView view(QRect(0, 0, 100, 100));
    view.addItemData0(item(8 * gib, 0), item(24 * gib, 1), item(0, 2), item(0, 3));
    const QImage image = WidgetRenderer::render(&view);
    QCOMPARE(identify(probe(image, QPointF(50, 50), 30, 60)), 0);
    QCOMPARE(identify(probe(image, QPointF(50, 50), 30, 120)), 1);
}

QTEST_MAIN(TestPieChartView)
#include "tst_piechartview.moc"
