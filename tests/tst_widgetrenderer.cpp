#include "WidgetRenderer.h"

#include <QPainter>
#include <QtTest>

namespace {

// Paints its left half in its colour, to check placement and scale.
class HalfFill : public QWidget
{
public:
    HalfFill(QColor color, QWidget *parent = nullptr) : QWidget(parent), m_color(color) { }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.fillRect(QRectF(0, 0, width() / 2.0, height()), m_color);
    }

private:
    QColor m_color;
};

} // namespace

class TestWidgetRenderer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rendersWidgetAndChildren_data();
    void rendersWidgetAndChildren();
    void nullWidgetGivesNullImage();
};

void TestWidgetRenderer::rendersWidgetAndChildren_data()
{
    QTest::addColumn<qreal>("ratio");
    QTest::newRow("1x") << 1.0;
    QTest::newRow("2x: twice the pixels, same picture") << 2.0;
    QTest::newRow("fractional 1.5x") << 1.5;
}

void TestWidgetRenderer::rendersWidgetAndChildren()
{
    QFETCH(qreal, ratio);
    HalfFill parent(Qt::red);
    parent.resize(40, 20);
    auto *child = new HalfFill(Qt::blue, &parent);
    child->setGeometry(20, 10, 20, 10);

    const QImage image = WidgetRenderer::render(&parent, ratio);
    QVERIFY(!parent.isVisible());
    QCOMPARE(image.size(), QSize(qCeil(40 * ratio), qCeil(20 * ratio)));
    QCOMPARE(image.devicePixelRatio(), ratio);
    auto at = [&](qreal x, qreal y) { return QColor::fromRgba(image.pixel(int(x * ratio), int(y * ratio))); };
    QCOMPARE(at(5, 5), QColor(Qt::red));
    QCOMPARE(at(25, 5).alpha(), 0);
    QCOMPARE(at(25, 15), QColor(Qt::blue));
    QCOMPARE(at(35, 15).alpha(), 0);
}

void TestWidgetRenderer::nullWidgetGivesNullImage()
{
    QVERIFY(WidgetRenderer::render(nullptr).isNull());
    QWidget widget;
    QVERIFY(WidgetRenderer::render(&widget, 0.0).isNull());
}

QTEST_MAIN(TestWidgetRenderer)
#include "tst_widgetrenderer.moc"
