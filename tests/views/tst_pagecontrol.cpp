#include "OOPageCellButton.h"
#include "OOPageControl.h"
#include "OOPageControlDelegate.h"
#include "WidgetRenderer.h"

#include "RenderProbe.h"

#include <QtTest>

namespace {

const QColor Orange = QColor::fromRgbF(1.0, 0.5, 0.0);

struct Recorder : OOPageControlDelegate {
    int taps = 0;
    void pageControlClicked(OOPageControl *, int) override { ++taps; }
};

} // namespace

class TestPageControl : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cells_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<int>("pages");
        QTest::addColumn<QRectF>("last");
        QTest::newRow("phone pager 270 x 20, 4 pages: cells 67 apart, each 65 x 16")
            << QSize(270, 20) << 4 << QRectF(203, 2, 65, 16);
        QTest::newRow("fractional cell width is kept, not rounded")
            << QSize(100, 20) << 8 << QRectF(87.75, 2, 10.25, 16);
        QTest::newRow("no pages: an empty, clear control") << QSize(100, 20) << 0 << QRectF();
    }

    void cells()
    {
        QFETCH(QSize, size);
        QFETCH(int, pages);
        QFETCH(QRectF, last);
        OOPageControl control(QRect(QPoint(0, 0), size), pages);
        control.setTitles({QStringLiteral("A")});
        QCOMPARE(control.cellRect(pages - 1), last);
        // Height 20: corner radius 8 and titles 12 pixels high.
        QCOMPARE(control.cellCornerRadius(), 8.0);
        QCOMPARE(control.titleFont().pixelSize(), 12);
        // The white border lies just inside the cell.
        const QImage image = WidgetRenderer::render(&control);
        QCOMPARE(RenderProbe::at(image, 1, 10).alpha(), 0);
        QCOMPARE(RenderProbe::near(RenderProbe::at(image, 2, 10), Qt::white, 16), pages > 0);
    }

    void marking_data()
    {
        QTest::addColumn<QList<int>>("calls");
        QTest::addColumn<int>("tap"); // the cell tapped afterwards, -1 none
        // Per cell: P a black pill seen through 0.6 opacity, . none; O orange title, W white.
        QTest::addColumn<QString>("expected");
        QTest::newRow("nothing is marked before the first call") << QList<int>{} << -1 << ".W .W .W .W";
        QTest::newRow("page 2 marks only the third cell") << QList{2} << -1 << ".W .W PO .W";
        QTest::newRow("moving the mark unmarks the old cell") << QList{1, 3} << -1 << ".W .W .W PO";
        QTest::newRow("page 7, out of range, after page 2 clears the mark") << QList{2, 7} << -1 << ".W .W .W .W";
        QTest::newRow("a negative page marks none") << QList{1, -1} << -1 << ".W .W .W .W";
        QTest::newRow("a tap on a cell changes nothing and tells no delegate") << QList{1} << 3 << ".W PO .W .W";
    }

    void marking()
    {
        QFETCH(QList<int>, calls);
        QFETCH(int, tap);
        QFETCH(QString, expected);
        OOPageControl control(QRect(0, 0, 270, 20), 4);
        Recorder delegate;
        control.setDelegate(&delegate);
        // Solid blocks as titles show their colour at the cell's centre.
        control.setTitles(QVariantList(4, QStringLiteral("\u2588\u2588")));
        for (int page : calls)
            control.setCurrentPage(page);
        if (tap >= 0)
            control.cellButtons().at(tap)->click();
        QCOMPARE(delegate.taps, 0);
        const QImage image = WidgetRenderer::render(&control);
        QString seen;
        for (int i = 0; i < 4; ++i) {
            const QColor pill = RenderProbe::at(image, 67 * i + 12, 10),
                         title = RenderProbe::at(image, 67 * i + 35, 10);
            const char p = RenderProbe::near(pill, QColor(0, 0, 0, 153), 3) ? 'P' : pill.alpha() ? '?' : '.';
            seen += QStringLiteral(" %1%2").arg(p).arg(RenderProbe::near(title, Orange, 40)          ? 'O'
                                                           : RenderProbe::near(title, Qt::white, 40) ? 'W'
                                                                                                     : '?');
        }
        QCOMPARE(seen.mid(1), expected);
    }

    void titles()
    {
        // Only strings take a cell, in order; surplus ones are dropped.
        OOPageControl control(QRect(0, 0, 270, 20), 4);
        control.setTitles({QStringLiteral("Summary"), 42, QByteArray("raw"), QVariant(), QStringLiteral("Processes"),
                           QStringLiteral("C"), QStringLiteral("D"), QStringLiteral("E")});
        const QStringList titles{control.title(0), control.title(1), control.title(2), control.title(3)};
        QCOMPARE(titles, QStringList({"Summary", "Processes", "C", "D"}));
    }
};

QTEST_MAIN(TestPageControl)
#include "tst_pagecontrol.moc"
