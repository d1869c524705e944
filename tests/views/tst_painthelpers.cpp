// The helpers every chart and screen paints with: the drop shadow, the
// off-screen renderer, the font table and the bundled images.
#include "DropShadow.h"
#include "FontTable.h"
#include "ResourceImages.h"
#include "WidgetRenderer.h"

#include "RenderProbe.h"

#include <QPainter>
#include <QPainterPath>
#include <QtTest>

class TestPaintHelpers : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void shadow_data()
    {
        QTest::addColumn<qreal>("ratio");
        QTest::addColumn<qreal>("blur");
        QTest::addColumn<QPointF>("probe");
        QTest::addColumn<QColor>("expected");
        // A white square 20.5 x 20.5 at (10, 10) filled with its shadow offset (4, 4).
        QTest::newRow("hard shadow: black at one third, 4 down and right")
            << 1.0 << 0.0 << QPointF(31, 31) << QColor(0, 0, 0, 85);
        QTest::newRow("hard shadow ends 4 past the shape") << 1.0 << 0.0 << QPointF(35, 31) << QColor(0, 0, 0, 0);
        QTest::newRow("the shape lies over its own shadow") << 1.0 << 0.0 << QPointF(20, 20) << QColor(Qt::white);
        QTest::newRow("2x: the offset is in points, not pixels")
            << 2.0 << 0.0 << QPointF(33.25, 31) << QColor(0, 0, 0, 85);
        QTest::newRow("2x: an edge between two device pixels stays crisp")
            << 2.0 << 0.0 << QPointF(33.75, 31) << QColor(0, 0, 0, 85);
        QTest::newRow("blur 4: 2 points inside the edge") << 1.0 << 4.0 << QPointF(32, 25) << QColor(0, 0, 0, 71);
        QTest::newRow("blur 4: 2 points beyond the edge") << 1.0 << 4.0 << QPointF(36, 25) << QColor(0, 0, 0, 12);
        QTest::newRow("blur 4 at 2x: as soft in points") << 2.0 << 4.0 << QPointF(36, 25) << QColor(0, 0, 0, 12);
    }

    void shadow()
    {
        QFETCH(qreal, ratio);
        QFETCH(qreal, blur);
        QFETCH(QPointF, probe);
        QFETCH(QColor, expected);
        QImage image(QSize(60, 60) * ratio, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(ratio);
        image.fill(Qt::transparent);
        {
            QPainter painter(&image);
            painter.setRenderHint(QPainter::Antialiasing);
            QPainterPath square;
            square.addRect(QRectF(10, 10, 20.5, 20.5));
            DropShadow::fillPath(painter, square, Qt::white, QPointF(4, 4), blur);
        }
        const QColor seen = RenderProbe::at(image, probe.x(), probe.y());
        QVERIFY2(RenderProbe::near(seen, expected, 3), qPrintable(RenderProbe::describe(seen)));
    }

    void renderer()
    {
        QWidget parent;
        parent.resize(41, 21);
        QWidget child(&parent);
        child.setGeometry(20, 10, 21, 11);
        child.setAutoFillBackground(true);
        child.setPalette(QPalette(Qt::red));
        // 1.5x of an odd size rounds up; the image keeps the ratio.
        const QImage image = WidgetRenderer::render(&parent, 1.5);
        QCOMPARE(image.size(), QSize(62, 32));
        QCOMPARE(image.devicePixelRatio(), 1.5);
        // A widget that fills nothing stays clear, its children are drawn.
        QCOMPARE(RenderProbe::at(image, 10, 5).alpha(), 0);
        QCOMPARE(RenderProbe::at(image, 30, 15), QColor(Qt::red));
        QVERIFY(WidgetRenderer::render(nullptr).isNull());
        QVERIFY(WidgetRenderer::render(&parent, 0.0).isNull());
    }

    void fonts()
    {
        // Sizes are whole pixels, rounded; labels get a bold monospace.
        QCOMPARE(QFontInfo(FontTable::font("TrebuchetMS-Bold", 11.6)).pixelSize(), 12);
        const QFontInfo label(FontTable::font("CourierNewPS-BoldMT", 13.0));
        QVERIFY(label.fixedPitch() && label.bold() && label.pixelSize() == 13);
        // fontconfig may add the foundry: "Liberation Mono [1ASC]".
        QVERIFY2(FontTable::families("CourierNewPS-BoldMT").contains(label.family().section(" [", 0, 0)),
                 qPrintable(label.family()));
        QCOMPARE(FontTable::font("NoSuchFont", 15.0).families(), QGuiApplication::font().families());
        // 65-wide page cells with a 1.5 border and rounded ends leave about 60.
        const QFontMetricsF metrics(FontTable::font("TrebuchetMS-Bold", 12.0));
        for (const char *title : {"Summary", "Network", "System"})
            QVERIFY2(metrics.horizontalAdvance(QLatin1String(title)) <= 60.0, title);
    }

    void images()
    {
        // Stored at twice their size in points; an unknown name gives a null image.
        QCOMPARE(ResourceImages::pixmap("bg.png").deviceIndependentSize(), QSizeF(320, 480));
        QCOMPARE(ResourceImages::pixmap("ipad_bg2.png").deviceIndependentSize(), QSizeF(768, 1024));
        QCOMPARE(ResourceImages::pixmap("histogram_glass_effect.png").deviceIndependentSize(), QSizeF(150, 75));
        QCOMPARE(ResourceImages::pixmap("statebar_glass_effect.png").deviceIndependentSize(), QSizeF(295, 27));
        QVERIFY(ResourceImages::pixmap("missing.png").isNull());
        // Kept decoded at the screens' scale only: a quarter of the pixels on this 1x screen.
        QCOMPARE(ResourceImages::pixmap("bg.png").size(), QSize(320, 480));
        ResourceImages::setKeptScale(2.0);
        QCOMPARE(ResourceImages::pixmap("bg.png").size(), QSize(640, 960));
        ResourceImages::setKeptScale(0.0);
    }
};

QTEST_MAIN(TestPaintHelpers)
#include "tst_painthelpers.moc"
