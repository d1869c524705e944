#include "OOStateBarView.h"
#include "WidgetRenderer.h"

#include "RenderProbe.h"

#include <QtTest>

namespace {

const QColor First(255, 0, 0);
const QColor Second(0, 0, 255);

StateBarItem first(double value)
{
    return StateBarItem::initWithVal(value, 1.0f, 0.0f, 0.0f, 1.0f);
}

StateBarItem second(double value)
{
    return StateBarItem::initWithVal(value, 0.0f, 0.0f, 1.0f, 1.0f);
}

} // namespace

class TestStateBarView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void split_data();
    void split();
    void segmentsAreClippedToTheRoundedShape();
    void cornerRadiusAtCreation_data();
    void cornerRadiusAtCreation();
    void roundedCornerCutsTheSegments();
    void roundedRectRadiusClamp_data();
    void roundedRectRadiusClamp();
    void roundedRectWithinLimitsIsARoundedRectangle();
    void emptyBarLogs();
    void replacingKeepsOnlyTheNewTwo();
};

void TestStateBarView::split_data()
{
    QTest::addColumn<double>("firstValue");
    QTest::addColumn<double>("secondValue");
    QTest::addColumn<int>("boundary"); // first x painted in the second colour

    // Bar 206 x 30 with shadow size 5: widths are taken of 206 - 5 = 201.
    QTest::newRow("30/70 splits at trunc(201 * 0.3) = 60") << 30.0 << 70.0 << 60;
    QTest::newRow("1/2 splits at 67 (of 201), not 66 (of the 200-wide outline)") << 1.0 << 2.0 << 67;
    QTest::newRow("widths truncate, they do not round: 201 * 0.7 = 140.7 gives 140") << 70.0 << 30.0 << 140;
    QTest::newRow("zero first item leaves the whole bar to the second") << 0.0 << 5.0 << 0;
    QTest::newRow("zero second item: the last segment still spans the bar's rest") << 5.0 << 0.0 << 201;
}

void TestStateBarView::split()
{
    QFETCH(double, firstValue);
    QFETCH(double, secondValue);
    QFETCH(int, boundary);

    OOStateBarView view(QRect(0, 0, 206, 30));
    view.addItemData0(first(firstValue), second(secondValue));
    const QImage image = WidgetRenderer::render(&view);

    // The outline covers x 198..200 (inner half of a 4-wide stroke on the
    // 200-wide shape); probe the middle row away from the rounded ends.
    const int y = 12;
    if (boundary > 12) {
        const QColor left = RenderProbe::at(image, std::min(boundary, 196) - 1, y);
        QVERIFY2(RenderProbe::near(left, First, 4), qPrintable(RenderProbe::describe(left)));
        const QColor start = RenderProbe::at(image, 12, y);
        QVERIFY2(RenderProbe::near(start, First, 4), qPrintable(RenderProbe::describe(start)));
    }
    if (boundary < 196) {
        const QColor right = RenderProbe::at(image, std::max(boundary, 12), y);
        QVERIFY2(RenderProbe::near(right, Second, 4), qPrintable(RenderProbe::describe(right)));
        const QColor end = RenderProbe::at(image, 195, y);
        QVERIFY2(RenderProbe::near(end, Second, 4), qPrintable(RenderProbe::describe(end)));
    }
}

void TestStateBarView::segmentsAreClippedToTheRoundedShape()
{
    OOStateBarView view(QRect(0, 0, 206, 30));
    view.addItemData0(first(30), second(70));
    const QImage image = WidgetRenderer::render(&view);
    // The last segment is 201 wide from x 60 (to 261) but the shape ends at 200.
    for (int x : { 201, 203, 205 }) {
        const QColor c = RenderProbe::at(image, x, 12);
        QVERIFY2(c.blue() < 60 || c.alpha() < 100, qPrintable(RenderProbe::describe(c)));
    }
    // Below the shape (height 24) nothing of the segments shows either.
    const QColor below = RenderProbe::at(image, 100, 25);
    QVERIFY2(below.blue() < 60 || below.alpha() < 100, qPrintable(RenderProbe::describe(below)));
    // With items the clip also trims the outline to its inner half.
    const QColor outside = RenderProbe::at(image, 201, 12);
    QVERIFY2(outside.red() < 60, qPrintable(RenderProbe::describe(outside)));
    QVERIFY2(RenderProbe::near(RenderProbe::at(image, 199, 12), QColor(255, 255, 255), 24),
             qPrintable(RenderProbe::describe(RenderProbe::at(image, 199, 12))));
}

void TestStateBarView::cornerRadiusAtCreation_data()
{
    QTest::addColumn<int>("height");
    QTest::addColumn<float>("radius");
    QTest::newRow("height 20 gives 5") << 20 << 5.0f;
    QTest::newRow("height 40 gives 15") << 40 << 15.0f;
    QTest::newRow("odd height 27 keeps the half point") << 27 << 8.5f;
}

void TestStateBarView::cornerRadiusAtCreation()
{
    QFETCH(int, height);
    QFETCH(float, radius);
    OOStateBarView view(QRect(0, 0, 200, height));
    QCOMPARE(view.shadowSize(), 5.0f);
    QCOMPARE(view.cornerRadius(), radius);
    // Resizing does not bring the radius along.
    view.resize(200, height * 3);
    QCOMPARE(view.cornerRadius(), radius);
}

void TestStateBarView::roundedCornerCutsTheSegments()
{
    // Height 40: shape 194 x 34 with radius 15. Pixel (3, 3) lies outside
    // the rounding (17 from the corner's centre), (15, 15) well inside it.
    // Pixel (3, 3) sits in the outline's shadow, so it is red, but darker.
    auto reddish = [](const QColor &c) { return c.red() > 120 && c.green() < 30 && c.blue() < 30; };
    OOStateBarView view(QRect(0, 0, 200, 40));
    view.addItemData0(first(1), second(0));
    const QImage image = WidgetRenderer::render(&view);
    const QColor corner = RenderProbe::at(image, 3, 3);
    QVERIFY2(!reddish(corner), qPrintable(RenderProbe::describe(corner)));
    const QColor inside = RenderProbe::at(image, 15, 15);
    QVERIFY2(RenderProbe::near(inside, First, 4), qPrintable(RenderProbe::describe(inside)));
    // A square-cornered bar (radius set to 0) fills that corner pixel.
    view.setCornerRadius(0.0f);
    const QImage square = WidgetRenderer::render(&view);
    const QColor squareCorner = RenderProbe::at(square, 3, 3);
    QVERIFY2(reddish(squareCorner), qPrintable(RenderProbe::describe(squareCorner)));
}

void TestStateBarView::roundedRectRadiusClamp_data()
{
    QTest::addColumn<QRectF>("rect");
    QTest::addColumn<float>("requested");
    QTest::addColumn<qreal>("used");

    QTest::newRow("radius within both halves passes") << QRectF(0, 0, 200, 20) << 5.0f << 5.0;
    QTest::newRow("above half the height but within half the width passes unchanged")
        << QRectF(0, 0, 200, 20) << 15.0f << 15.0;
    QTest::newRow("1000 on 200 x 20 clamps to half the width, 100, not 10")
        << QRectF(0, 0, 200, 20) << 1000.0f << 100.0;
    QTest::newRow("tall rectangle clamps to half the height") << QRectF(0, 0, 20, 200) << 1000.0f << 100.0;
    QTest::newRow("offset rectangle measures from its own origin") << QRectF(10, 7, 60, 30) << 40.0f << 30.0;
}

void TestStateBarView::roundedRectRadiusClamp()
{
    QFETCH(QRectF, rect);
    QFETCH(float, requested);
    QFETCH(qreal, used);
    // The outline starts at the top edge, one radius in from the left.
    const QPainterPath path = OOStateBarView::createRoundedRectPathWithRect(rect, requested);
    QVERIFY(path.elementCount() > 0);
    const QPainterPath::Element start = path.elementAt(0);
    QVERIFY(start.isMoveTo());
    QCOMPARE(start.x - rect.x(), used);
    QCOMPARE(start.y, rect.y());
}

void TestStateBarView::roundedRectWithinLimitsIsARoundedRectangle()
{
    const QRectF rect(0, 0, 100, 20);
    const QPainterPath path = OOStateBarView::createRoundedRectPathWithRect(rect, 5.0f);
    QVERIFY(!path.contains(QPointF(0.5, 0.5)));
    QVERIFY(!path.contains(QPointF(99.5, 19.5)));
    QVERIFY(path.contains(QPointF(2.0, 10.0)));
    QVERIFY(path.contains(QPointF(50.0, 0.5)));
    QVERIFY(path.contains(QPointF(5.0, 1.0)));
    const QRectF bounds = path.boundingRect();
    QVERIFY2(qAbs(bounds.left()) < 1e-6 && qAbs(bounds.top()) < 1e-6 && qAbs(bounds.width() - 100.0) < 1e-6
                 && qAbs(bounds.height() - 20.0) < 1e-6,
             qPrintable(QStringLiteral("%1 %2 %3 %4")
                            .arg(bounds.left())
                            .arg(bounds.top())
                            .arg(bounds.width())
                            .arg(bounds.height())));
}

void TestStateBarView::emptyBarLogs()
{
    OOStateBarView view(QRect(0, 0, 206, 30));
    QTest::ignoreMessage(QtWarningMsg, "#### OOStateBarView itemData count:[0]");
    const QImage image = WidgetRenderer::render(&view);
    const QColor grey = RenderProbe::at(image, 100, 12);
    QVERIFY2(RenderProbe::near(grey, QColor(128, 128, 128), 6), qPrintable(RenderProbe::describe(grey)));
    // Without items nothing clips the outline: its outer half shows too.
    const QColor outer = RenderProbe::at(image, 201, 12);
    QVERIFY2(RenderProbe::near(outer, QColor(255, 255, 255), 24), qPrintable(RenderProbe::describe(outer)));
}

void TestStateBarView::replacingKeepsOnlyTheNewTwo()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral("OOStateBarView")));
    OOStateBarView view(QRect(0, 0, 206, 30));
    view.addItemData(first(1));
    view.addItemData(first(2));
    view.addItemData(second(3));
    QCOMPARE(view.itemData().size(), 3);
    view.addItemData0(second(10), first(10));
    const QList<StateBarItem> expected { second(10), first(10) };
    QCOMPARE(view.itemData(), expected);
    const QImage image = WidgetRenderer::render(&view);
    QVERIFY(RenderProbe::near(RenderProbe::at(image, 50, 12), Second, 4));
    QVERIFY(RenderProbe::near(RenderProbe::at(image, 150, 12), First, 4));
}

QTEST_MAIN(TestStateBarView)
#include "tst_statebarview.moc"
