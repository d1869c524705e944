#include "DropShadow.h"

#include "RenderProbe.h"

#include <QPainter>
#include <QPainterPath>
#include <QtTest>

namespace {

// A white 20 x 20 square at (10, 10) with its shadow, in a 60 x 60 image.
QImage paintSquare(QPointF offset, qreal blur, qreal ratio, qreal fillAlpha = 1.0)
{
    QImage image(QSize(60, 60) * ratio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath square;
    square.addRect(QRectF(10, 10, 20, 20));
    DropShadow::fillPath(painter, square, QColor::fromRgbF(1.0, 1.0, 1.0, fillAlpha), offset, blur);
    return image;
}

int alphaAtDevice(const QImage &image, int x, int y)
{
    return qAlpha(image.pixel(x, y));
}

} // namespace

class TestDropShadow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hardShadowIsOffsetBlackAtOneThird_data();
    void hardShadowIsOffsetBlackAtOneThird();
    void blurSoftensTheEdge_data();
    void blurSoftensTheEdge();
    void shapeStaysCrispAtDoubleDensity();
    void strokeCastsOnlyTheStrokesShadow();
};

void TestDropShadow::hardShadowIsOffsetBlackAtOneThird_data()
{
    QTest::addColumn<qreal>("ratio");
    QTest::addColumn<qreal>("fillAlpha");
    QTest::addColumn<int>("shadowAlpha");
    QTest::newRow("opaque fill, 1x") << 1.0 << 1.0 << 85;
    QTest::newRow("opaque fill, 2x: offset scales with the density") << 2.0 << 1.0 << 85;
    QTest::newRow("half-transparent fill casts a fainter shadow") << 1.0 << 0.5 << 42;
}

void TestDropShadow::hardShadowIsOffsetBlackAtOneThird()
{
    QFETCH(qreal, ratio);
    QFETCH(qreal, fillAlpha);
    QFETCH(int, shadowAlpha);
    const QImage image = paintSquare(QPointF(4, 4), 0.0, ratio, fillAlpha);

    // Only the shadow covers (31, 31): the square ends at 30, its shadow at 34.
    const QColor shadow = RenderProbe::at(image, 31, 31);
    QVERIFY2(qAbs(shadow.alpha() - shadowAlpha) <= 2 && shadow.red() == 0 && shadow.green() == 0 && shadow.blue() == 0,
             qPrintable(RenderProbe::describe(shadow)));
    QCOMPARE(RenderProbe::at(image, 34, 31).alpha(), 0);
    QCOMPARE(RenderProbe::at(image, 12, 31).alpha(), 0);
    QCOMPARE(RenderProbe::at(image, 31, 12).alpha(), 0);
    // The shape is painted over its shadow.
    const QColor shape = RenderProbe::at(image, 20, 20);
    QVERIFY2(RenderProbe::near(shape, QColor(255, 255, 255, int(255 * fillAlpha + 0.5)), 2) || fillAlpha < 1.0,
             qPrintable(RenderProbe::describe(shape)));
}

void TestDropShadow::blurSoftensTheEdge_data()
{
    QTest::addColumn<qreal>("ratio");
    QTest::newRow("1x") << 1.0;
    QTest::newRow("2x") << 2.0;
}

void TestDropShadow::blurSoftensTheEdge()
{
    QFETCH(qreal, ratio);
    const QImage image = paintSquare(QPointF(4, 4), 4.0, ratio);
    // Walk out across the shadow's right edge (at x = 34) along y = 25:
    // alpha falls off gradually over several pixels instead of in one step.
    const int y = int(25 * ratio);
    QList<int> alphas;
    for (int x = int(30 * ratio); x < int(40 * ratio); ++x)
        alphas.append(alphaAtDevice(image, x, y));
    int intermediate = 0;
    for (int i = 1; i < alphas.size(); ++i) {
        QVERIFY2(alphas.at(i) <= alphas.at(i - 1), "the shadow's edge must fade monotonically");
        if (alphas.at(i) > 3 && alphas.at(i) < 80)
            ++intermediate;
    }
    QVERIFY2(intermediate >= int(4 * ratio), qPrintable(QStringLiteral("only %1 soft pixels").arg(intermediate)));
    // Half way down the blurred edge it is about half as dark as the core.
    const int edge = alphaAtDevice(image, int(34 * ratio), y);
    QVERIFY2(edge > 25 && edge < 60, qPrintable(QString::number(edge)));
    QVERIFY(alphaAtDevice(image, int(39 * ratio), y) < 5);
}

void TestDropShadow::shapeStaysCrispAtDoubleDensity()
{
    const QImage image = paintSquare(QPointF(4, 4), 4.0, 2.0);
    // The square's right edge is at device pixel 60: left of it solid white,
    // right of it only shadow.
    QCOMPARE(QColor::fromRgba(image.pixel(59, 50)), QColor(255, 255, 255));
    const QColor right = QColor::fromRgba(image.pixel(60, 50));
    QVERIFY2(right.red() == 0 && right.alpha() > 40, qPrintable(RenderProbe::describe(right)));
}

void TestDropShadow::strokeCastsOnlyTheStrokesShadow()
{
    QImage image(60, 60, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        QPainterPath square;
        square.addRect(QRectF(10, 10, 30, 30));
        DropShadow::strokePath(painter, square, QPen(Qt::white, 2.0), QPointF(3, 3), 0.0);
    }
    // The stroke (9..11) casts a shadow at 12..14; the inside stays clear.
    QVERIFY(RenderProbe::near(RenderProbe::at(image, 10, 25), QColor(255, 255, 255), 2));
    QVERIFY(qAbs(RenderProbe::at(image, 13, 25).alpha() - 85) <= 2);
    QCOMPARE(RenderProbe::at(image, 25, 25).alpha(), 0);
}

QTEST_MAIN(TestDropShadow)
#include "tst_dropshadow.moc"
