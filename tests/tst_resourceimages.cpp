#include "ResourceImages.h"
#include "WidgetRenderer.h"

#include <QLabel>
#include <QtTest>

namespace {

double meanLuminance(const QImage &image, int top, int bottom)
{
    double sum = 0.0;
    int count = 0;
    for (int y = top; y < bottom; ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb p = image.pixel(x, y);
            sum += 0.299 * qRed(p) + 0.587 * qGreen(p) + 0.114 * qBlue(p);
            ++count;
        }
    }
    return count ? sum / count : 0.0;
}

double meanAlpha(const QImage &image, int top, int bottom)
{
    double sum = 0.0;
    int count = 0;
    for (int y = top; y < bottom; ++y) {
        for (int x = 0; x < image.width(); ++x) {
            sum += qAlpha(image.pixel(x, y));
            ++count;
        }
    }
    return count ? sum / count : 0.0;
}

} // namespace

class TestResourceImages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void backgrounds_data();
    void backgrounds();
    void glassEffects_data();
    void glassEffects();
    void unknownImageIsNull();
};

void TestResourceImages::backgrounds_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QSize>("logicalSize");
    QTest::newRow("phone background") << "bg.png" << QSize(320, 480);
    QTest::newRow("tablet background") << "ipad_bg2.png" << QSize(768, 1024);
}

void TestResourceImages::backgrounds()
{
    QFETCH(QString, name);
    QFETCH(QSize, logicalSize);
    const QPixmap pixmap = ResourceImages::pixmap(name);
    QVERIFY(!pixmap.isNull());
    QCOMPARE(pixmap.deviceIndependentSize().toSize(), logicalSize);
    const QImage image = pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
    QVERIFY(!image.hasAlphaChannel() || meanAlpha(image, 0, image.height()) == 255.0);
    // Dark enough for white text and black translucent panels, lighter at the top.
    const double top = meanLuminance(image, 0, image.height() / 4);
    const double bottom = meanLuminance(image, image.height() * 3 / 4, image.height());
    QVERIFY2(top < 60.0 && bottom < top && bottom > 1.0, qPrintable(QStringLiteral("%1 %2").arg(top).arg(bottom)));
}

void TestResourceImages::glassEffects_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QSize>("logicalSize");
    QTest::newRow("histogram frame on the phone summary") << "histogram_glass_effect.png" << QSize(150, 75);
    QTest::newRow("state bar frame on the phone summary") << "statebar_glass_effect.png" << QSize(295, 27);
}

void TestResourceImages::glassEffects()
{
    QFETCH(QString, name);
    QFETCH(QSize, logicalSize);
    const QPixmap pixmap = ResourceImages::pixmap(name);
    QVERIFY(!pixmap.isNull());
    QCOMPARE(pixmap.deviceIndependentSize().toSize(), logicalSize);
    const QImage image = pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
    const int h = image.height();
    // A sheen over the upper part that never hides the chart: translucent
    // everywhere, brighter at the top, clear over the lower half.
    int maxAlpha = 0;
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb p = image.pixel(x, y);
            maxAlpha = qMax(maxAlpha, qAlpha(p));
            if (qAlpha(p) > 0)
                QVERIFY(qRed(p) == 255 && qGreen(p) == 255 && qBlue(p) == 255);
        }
    }
    QVERIFY2(maxAlpha > 20 && maxAlpha < 128, qPrintable(QString::number(maxAlpha)));
    QVERIFY(meanAlpha(image, h / 8, h / 4) > meanAlpha(image, h / 3, h / 2));
    QCOMPARE(meanAlpha(image, h * 3 / 5, h), 0.0);
    // The outline's 2 points at the left stay clear.
    QCOMPARE(qAlpha(image.pixel(1, h / 8)), 0);
}

void TestResourceImages::unknownImageIsNull()
{
    QVERIFY(ResourceImages::pixmap(QStringLiteral("missing.png")).isNull());
}

QTEST_MAIN(TestResourceImages)
#include "tst_resourceimages.moc"
