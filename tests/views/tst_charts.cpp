// The chart and indicator widgets, read back as letters for the colours at
// points their layout fixes.
#include "OOHistogramView.h"
#include "OOPieChartView.h"
#include "OORectView.h"
#include "OOStateBarView.h"
#include "WidgetRenderer.h"

#include "RenderProbe.h"

#include <QtTest>

#include <cmath>
#include <numbers>

namespace {

using Key = QList<std::pair<char, QColor>>;
using Samples = QList<QList<int>>;

// The first letter of the key whose colour is near the pixel's; '.' for a
// clear or all but clear pixel, '?' for anything else.
char letter(const QImage &image, qreal x, qreal y, const Key &key, int tolerance)
{
    const QColor c = RenderProbe::at(image, x, y);
    for (const auto &[name, colour] : key) {
        if (RenderProbe::near(c, colour, tolerance))
            return name;
    }
    return c.alpha() < 16 ? '.' : '?';
}

template<typename Item>
Item item(double value, const QColor &c)
{
    return Item(value, float(c.redF()), float(c.greenF()), float(c.blueF()), float(c.alphaF()));
}

} // namespace

class TestCharts : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void histogram_data()
    {
        QTest::addColumn<float>("cell");
        QTest::addColumn<Samples>("samples");  // user, system, idle
        QTest::addColumn<QString>("expected"); // columns left to right, top row first: U cyan, S red
        // 38 x 76 with 6 x 6 cells: 4 columns (4 points spare on the right) of 10 rows.
        QTest::newRow("short history hugs the right edge, the spare width stays right")
            << 6.f << Samples{{1, 0, 0}, {0, 1, 0}} << ".......... .......... UUUUUUUUUU SSSSSSSSSS";
        QTest::newRow("one sample too many drops the oldest from view")
            << 6.f << Samples{{0, 1, 0}, {1, 0, 0}, {1, 0, 0}, {1, 0, 0}, {1, 0, 0}}
            << "UUUUUUUUUU UUUUUUUUUU UUUUUUUUUU UUUUUUUUUU";
        QTest::newRow("1:1:1 over 10 rows: idle 3 on top, user 4 with the rounding row, system 3 at the foot")
            << 6.f << Samples{{1, 1, 1}} << ".......... .......... .......... ...UUUUSSS";
        QTest::newRow("rounding remainder 2: one row to user, the other to idle")
            << 6.f << Samples{{2, 2, 3}} << ".......... .......... .......... .....UUUSS";
        QTest::newRow("an all-zero sample is ignored, an all-idle one is a bare column")
            << 6.f << Samples{{1, 0, 0}, {0, 0, 0}, {0, 0, 1}} << ".......... .......... UUUUUUUUUU ..........";
        QTest::newRow("tick counts near 2^31 split by ratio without overflow")
            << 6.f << Samples{{700000000, 700000000, 700000000}} << ".......... .......... .......... ...UUUUSSS";
        QTest::newRow("no samples: only the frame")
            << 6.f << Samples{} << ".......... .......... .......... ..........";
        QTest::newRow("a negative cell size draws no cells and does not hang")
            << -1.f << Samples{{1, 0, 0}} << ".......... .......... .......... ..........";
    }

    void histogram()
    {
        QFETCH(float, cell);
        QFETCH(Samples, samples);
        QFETCH(QString, expected);
        OOHistogramView view(QRect(0, 0, 38, 76));
        view.setItemRectWidth(cell);
        view.setItemRectHeight(cell);
        for (const QList<int> &s : samples)
            view.addItemData(HistogramItem::initWithUser(s.at(0), s.at(1), s.at(2)));
        const QImage image = WidgetRenderer::render(&view);
        // Column k starts at x = 3 + 7k, row j at y = 3 + 7j.
        QString seen;
        for (int k = 0; k < 4; ++k) {
            seen += k ? QStringLiteral(" ") : QString();
            for (int j = 0; j < 10; ++j)
                seen += letter(image, 6 + 7 * k, 6 + 7 * j, {{'U', Qt::cyan}, {'S', Qt::red}}, 24);
        }
        QCOMPARE(seen, expected);
        // The 4-point frame straddles the edge: its inner 2 points show white.
        for (const QPoint p : {QPoint(1, 38), QPoint(36, 38), QPoint(19, 1), QPoint(19, 74)})
            QCOMPARE(letter(image, p.x(), p.y(), {{'W', Qt::white}}, 8), 'W');
    }

    void histogramKeepsTheNewestSamples()
    {
        OOHistogramView view;
        for (int i = 0; i <= OOHistogramView::HistoryLimit; ++i)
            view.addItemData(HistogramItem::initWithUser(i, 1, 0));
        QCOMPARE(view.itemData().size(), OOHistogramView::HistoryLimit);
        QCOMPARE(view.itemData().first().user(), 1);
        QCOMPARE(view.itemData().last().user(), OOHistogramView::HistoryLimit);
    }

    void pie_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QList<quint64>>("values"); // coloured red, green, blue, yellow in turn
        QTest::addColumn<QString>("expected");      // at 22.5, 67.5, ... 337.5 degrees clockwise from the right; g grey
        QTest::newRow("four equal items start at right, bottom, left, top in order")
            << QSize(100, 100) << QList<quint64>{1, 1, 1, 1} << "RRGGBBYY";
        QTest::newRow("the last item closes the ring at angle 0")
            << QSize(100, 100) << QList<quint64>{1, 1, 1} << "RRRGGBBB";
        QTest::newRow("a single item paints no segment, only the grey ring")
            << QSize(100, 100) << QList<quint64>{5} << "gggggggg";
        QTest::newRow("no items: the grey ring, and a log line") << QSize(100, 100) << QList<quint64>{} << "gggggggg";
        QTest::newRow("all zero draws no segment instead of garbage")
            << QSize(100, 100) << QList<quint64>{0, 0} << "gggggggg";
        QTest::newRow(
            "memory sizes past 32 bits; zero items last take no room though rounding puts them past a full turn")
            << QSize(100, 100) << QList<quint64>{8ull << 30, 24ull << 30, 0, 0} << "RRGGGGGG";
        QTest::newRow("wider than tall: the height sets the ring, centred across")
            << QSize(200, 100) << QList<quint64>{1, 3} << "RRGGGGGG";
        QTest::newRow("taller than wide: the width sets the ring, centred down")
            << QSize(80, 160) << QList<quint64>{1, 3} << "RRGGGGGG";
    }

    void pie()
    {
        QFETCH(QSize, size);
        QFETCH(QList<quint64>, values);
        QFETCH(QString, expected);
        const Key key{
            {'R', Qt::red}, {'G', Qt::green}, {'B', Qt::blue}, {'Y', Qt::yellow}, {'g', QColor(128, 128, 128)}};
        QList<PieChartItem> items;
        for (qsizetype i = 0; i < values.size(); ++i)
            items.append(item<PieChartItem>(double(values.at(i)), key.at(i).second));
        OOPieChartView view(QRect(QPoint(0, 0), size));
        if (items.size() == 4) { // as the screens do it: all four replaced at once
            view.addItemData0(item<PieChartItem>(9, Qt::white), items.at(0), items.at(0), items.at(0));
            view.addItemData0(items.at(0), items.at(1), items.at(2), items.at(3));
        } else {
            view.setItemData(items);
        }
        if (items.isEmpty())
            QTest::ignoreMessage(QtWarningMsg, "#### OOPieChartView itemData count:[0]");
        const QImage image = WidgetRenderer::render(&view);

        const QPointF c(size.width() / 2.0, size.height() / 2.0);
        const qreal outer = qMin(size.width(), size.height()) / 2.0 - 5.0, inner = outer / 3.0;
        QString seen;
        for (qreal a = std::numbers::pi / 8.0; a < 2.0 * std::numbers::pi; a += std::numbers::pi / 4.0) {
            // Near both outlines alike: the segment spans the ring from r to R.
            const char inside = letter(image, c.x() + (inner + 6.0) * std::cos(a) - 0.5,
                                       c.y() + (inner + 6.0) * std::sin(a) - 0.5, key, 16);
            seen += inside
                    == letter(image, c.x() + (outer - 6.0) * std::cos(a) - 0.5,
                              c.y() + (outer - 6.0) * std::sin(a) - 0.5, key, 16)
                ? inside
                : '?';
        }
        QCOMPARE(seen, expected);
        // White outlines on both radii, seen on the left; the hole stays clear.
        for (const qreal radius : {outer, inner})
            QCOMPARE(letter(image, c.x() - radius - 0.5, c.y(), {{'W', Qt::white}}, 40), 'W');
        QCOMPARE(RenderProbe::at(image, c.x(), c.y()).alpha(), 0);
    }

    void stateBar_data()
    {
        QTest::addColumn<QList<double>>("values"); // coloured red, blue, translucent green in turn
        QTest::addColumn<QString>("expected");     // at x 12, 59, 60, 66, 67, 133, 134, 139, 140, 195, 199
        // 206 x 30 with shadow size 5: widths are taken of 206 - 5 = 201.
        QTest::newRow("30/70 splits at trunc(201 * 0.3) = 60") << QList<double>{30, 70} << "RRBBBBBBBBW";
        QTest::newRow("1/2 splits at 67 of 201, not 68 of 206") << QList<double>{1, 2} << "RRRRBBBBBBW";
        QTest::newRow("widths truncate: 201 * 0.7 = 140.7 gives 140") << QList<double>{70, 30} << "RRRRRRRRBBW";
        QTest::newRow("each segment starts where the last ended; translucent ones lie on black")
            << QList<double>{1, 1, 1} << "RRRRBBGGGGW";
        QTest::newRow("a zero first item leaves the whole bar to the second") << QList<double>{0, 5} << "BBBBBBBBBBW";
        QTest::newRow("no items: grey, and a log line") << QList<double>{} << "ggggggggggW";
    }

    void stateBar()
    {
        QFETCH(QList<double>, values);
        QFETCH(QString, expected);
        const QList<QColor> colours{Qt::red, Qt::blue, QColor(0, 255, 0, 128)};
        QList<StateBarItem> items;
        for (qsizetype i = 0; i < values.size(); ++i)
            items.append(item<StateBarItem>(values.at(i), colours.at(i)));
        OOStateBarView view(QRect(0, 0, 206, 30));
        // The corner radius is half the height less the shadow; a path's radius
        // is capped by half the longer side (100 here), not the shorter (10).
        QCOMPARE(view.cornerRadius(), 10.0f);
        QCOMPARE(OOStateBarView::createRoundedRectPathWithRect(QRectF(10, 7, 200, 20), 1000).elementAt(0).x, 110.0);
        view.addItemData(item<StateBarItem>(100, Qt::white));
        if (items.size() == 2) // as the screens do it: both replaced at once
            view.addItemData0(items.at(0), items.at(1));
        else
            view.setItemData(items);
        if (items.isEmpty())
            QTest::ignoreMessage(QtWarningMsg, "#### OOStateBarView itemData count:[0]");
        const QImage image = WidgetRenderer::render(&view);

        const Key key{
            {'R', Qt::red}, {'B', Qt::blue}, {'G', QColor(0, 128, 0)}, {'g', QColor(128, 128, 128)}, {'W', Qt::white}};
        QString seen;
        for (int x : {12, 59, 60, 66, 67, 133, 134, 139, 140, 195, 199})
            seen += letter(image, x, 12, key, 4);
        QCOMPARE(seen, expected);
        // The segments are clipped to the 200 x 24 shape with its rounded corners.
        for (const QPoint p : {QPoint(203, 12), QPoint(4, 4), QPoint(100, 26)})
            QVERIFY(!QByteArray("RBG").contains(letter(image, p.x(), p.y(), key, 60)));
    }

    void swatch_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<float>("border");
        QTest::addColumn<QColor>("colour");
        // The innermost border pixel on the top, left, right and bottom, (1, 1)
        // by the corner, just inside the left border (under its shadow), the
        // centre: W white, w partly white (a curve), F the fill, d the fill in
        // shadow, s shadow alone.
        QTest::addColumn<QString>("expected");
        QTest::newRow("rectangle, border 1: the outline lies wholly inside the bounds")
            << 0 << 1.f << QColor(Qt::blue) << "WWWWFdF";
        QTest::newRow("border 2 covers two whole pixels on each side") << 0 << 2.f << QColor(Qt::blue) << "WWWWWdF";
        QTest::newRow("ellipse: the corners stay out") << 1 << 1.f << QColor(Qt::blue) << "wwww.dF";
        QTest::newRow("no colour: the outline without a fill") << 0 << 1.f << QColor() << "WWWW.s.";
        QTest::newRow("type 2 draws nothing at all") << 2 << 1.f << QColor(Qt::blue) << ".......";
        QTest::newRow("a negative type draws nothing at all") << -1 << 1.f << QColor(Qt::blue) << ".......";
    }

    void swatch()
    {
        QFETCH(int, type);
        QFETCH(float, border);
        QFETCH(QColor, colour);
        QFETCH(QString, expected);
        OORectView view(QRect(0, 0, 21, 21));
        view.setType(type);
        view.setBorder(border);
        view.setRectColor(colour);
        const QImage image = WidgetRenderer::render(&view);
        const Key key{{'W', Qt::white},
                      {'w', QColor(191, 191, 255)},
                      {'F', Qt::blue},
                      {'d', QColor(0, 0, 213)},
                      {'s', QColor(0, 0, 0, 28)}};
        const int in = int(border) - 1;
        QString seen;
        for (const QPoint p : {QPoint(10, in), QPoint(in, 10), QPoint(20 - in, 10), QPoint(10, 20 - in), QPoint(1, 1),
                               QPoint(in + 2, 10), QPoint(10, 10)})
            seen += letter(image, p.x(), p.y(), key, 16);
        QCOMPARE(seen, expected);
    }

    void swatchColourChangeRepaints()
    {
        struct Counting : OORectView {
            int paints = 0;
            void paintEvent(QPaintEvent *event) override
            {
                ++paints;
                OORectView::paintEvent(event);
            }
        } view;
        view.resize(20, 20);
        view.show();
        QTRY_VERIFY(view.paints > 0);
        QCoreApplication::processEvents();
        view.paints = 0;
        view.setRectColor(Qt::blue);
        QTRY_VERIFY_WITH_TIMEOUT(view.paints > 0, 1000);
    }
};

QTEST_MAIN(TestCharts)
#include "tst_charts.moc"
