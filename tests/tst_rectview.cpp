#include "OORectView.h"
#include "WidgetRenderer.h"

#include "RenderProbe.h"

#include <QtTest>

namespace {

const QColor Fill(0, 0, 255);
const QColor White(255, 255, 255);

bool isBlank(const QImage &image)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) != 0)
                return false;
        }
    }
    return true;
}

// Counts paint events so that a test can tell whether a change asked for one.
class PaintCounter : public QObject
{
public:
    int paints = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            ++paints;
        return false;
    }
};

} // namespace

class TestRectView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void outlineLiesInsideTheBounds_data();
    void outlineLiesInsideTheBounds();
    void ellipseLeavesTheCornersOut();
    void unknownTypesDrawNothing_data();
    void unknownTypesDrawNothing();
    void noColourMeansNoFill();
    void shadowFallsDownRight();
    void onlyTheColourAsksForARepaint();
};

void TestRectView::outlineLiesInsideTheBounds_data()
{
    QTest::addColumn<float>("border");
    QTest::addColumn<int>("size");
    QTest::addColumn<qreal>("ratio");

    QTest::newRow("10 x 10, border 1: outline on 0.5..9.5, whole pixels white") << 1.0f << 10 << 1.0;
    QTest::newRow("border 2 covers two whole pixels on each side") << 2.0f << 12 << 1.0;
    QTest::newRow("still inside at 2x density") << 1.0f << 10 << 2.0;
}

void TestRectView::outlineLiesInsideTheBounds()
{
    QFETCH(float, border);
    QFETCH(int, size);
    QFETCH(qreal, ratio);

    OORectView view(QRect(0, 0, size, size));
    view.setBorder(border);
    view.setRectColor(Fill);
    const QImage image = WidgetRenderer::render(&view, ratio);

    const int b = int(border);
    const int mid = size / 2;
    // Every pixel of the border band is solid white, on all four sides: an
    // outline centred on the edge would cover only half of the outer pixel.
    for (int i = 0; i < b; ++i) {
        for (const QPoint &p : { QPoint(mid, i), QPoint(i, mid), QPoint(size - 1 - i, mid),
                                 QPoint(mid, size - 1 - i) }) {
            const QColor c = RenderProbe::at(image, p.x(), p.y());
            QVERIFY2(RenderProbe::near(c, White, 4),
                     qPrintable(QStringLiteral("(%1,%2) %3").arg(p.x()).arg(p.y()).arg(RenderProbe::describe(c))));
        }
    }
    const QColor centre = RenderProbe::at(image, mid, mid - 1);
    QVERIFY2(RenderProbe::near(centre, Fill, 40), qPrintable(RenderProbe::describe(centre)));
}

void TestRectView::ellipseLeavesTheCornersOut()
{
    OORectView view(QRect(0, 0, 15, 15));
    view.setType(1);
    view.setRectColor(Fill);
    const QImage image = WidgetRenderer::render(&view);
    QCOMPARE(qAlpha(image.pixel(0, 0)), 0);
    const QColor top = RenderProbe::at(image, 7, 0);
    QVERIFY2(top.red() > 150 && top.alpha() > 200, qPrintable(RenderProbe::describe(top)));
    const QColor inside = RenderProbe::at(image, 7, 5);
    QVERIFY2(RenderProbe::near(inside, Fill, 40), qPrintable(RenderProbe::describe(inside)));
}

void TestRectView::unknownTypesDrawNothing_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("type 2") << 2;
    QTest::newRow("negative type") << -1;
}

void TestRectView::unknownTypesDrawNothing()
{
    QFETCH(int, type);
    OORectView view(QRect(0, 0, 15, 15));
    view.setType(type);
    view.setRectColor(Fill);
    QVERIFY(isBlank(WidgetRenderer::render(&view)));
}

void TestRectView::noColourMeansNoFill()
{
    OORectView view(QRect(0, 0, 30, 30));
    const QImage image = WidgetRenderer::render(&view);
    QVERIFY(RenderProbe::near(RenderProbe::at(image, 15, 0), White, 4));
    QCOMPARE(qAlpha(image.pixel(15, 15)), 0);
}

void TestRectView::shadowFallsDownRight()
{
    // The outline casts its shadow 2 points down and right, over the fill:
    // just inside the left outline the fill is darkened, just inside the
    // right outline (whose shadow falls outside the swatch) it is not.
    QWidget parent;
    parent.resize(40, 40);
    auto *view = new OORectView(QRect(10, 10, 20, 20), &parent);
    view->setRectColor(Fill);
    const QImage image = WidgetRenderer::render(&parent);
    const QColor nearLeft = RenderProbe::at(image, 12, 20);
    const QColor farFromEdges = RenderProbe::at(image, 20, 20);
    QVERIFY2(nearLeft.blue() < farFromEdges.blue() - 20,
             qPrintable(RenderProbe::describe(nearLeft) + QLatin1Char(' ') + RenderProbe::describe(farFromEdges)));
    const QColor nearRight = RenderProbe::at(image, 27, 20);
    QVERIFY2(qAbs(nearRight.blue() - farFromEdges.blue()) < 8,
             qPrintable(RenderProbe::describe(nearRight) + QLatin1Char(' ') + RenderProbe::describe(farFromEdges)));
}

void TestRectView::onlyTheColourAsksForARepaint()
{
    OORectView view(QRect(0, 0, 20, 20));
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    PaintCounter counter;
    view.installEventFilter(&counter);
    QCoreApplication::processEvents();
    QTest::qWait(20);
    counter.paints = 0;

    view.setType(1);
    view.setBorder(3.0f);
    QTest::qWait(50);
    QCOMPARE(counter.paints, 0);

    view.setRectColor(Fill);
    QTRY_VERIFY(counter.paints > 0);
}

QTEST_MAIN(TestRectView)
#include "tst_rectview.moc"
