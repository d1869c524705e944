#include "OOPageCellButton.h"
#include "OOPageControl.h"
#include "OOPageControlDelegate.h"
#include "WidgetRenderer.h"

#include "RenderProbe.h"

#include <QtTest>

namespace {

const QColor White(255, 255, 255);
const QColor Orange = QColor::fromRgbF(1.0, 0.5, 0.0);

class RecordingDelegate : public OOPageControlDelegate
{
public:
    QList<int> clicked;
    void pageControlClicked(OOPageControl *, int pageNumber) override { clicked.append(pageNumber); }
};

int countPixels(const QImage &image, const QRect &area, const std::function<bool(const QColor &)> &match)
{
    int count = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (match(QColor::fromRgba(image.pixel(x, y))))
                ++count;
        }
    }
    return count;
}

bool isOrange(const QColor &c)
{
    return c.alpha() > 128 && c.red() > 200 && c.green() > 80 && c.green() < 170 && c.blue() < 60;
}

QVariantList phoneTitles()
{
    return { QStringLiteral("Summary"), QStringLiteral("Processes"), QStringLiteral("System"),
             QStringLiteral("Network") };
}

} // namespace

class TestPageControl : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cellFrames_data();
    void cellFrames();
    void outlinesAreDrawnOnTheCellFrames();
    void recolouring_data();
    void recolouring();
    void titles_data();
    void titles();
    void tapsChangeNothing();
    void noPagesIsAnEmptyClearView();
};

void TestPageControl::cellFrames_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("pages");
    QTest::addColumn<QList<QRectF>>("cells");
    QTest::addColumn<qreal>("radius");
    QTest::addColumn<int>("fontSize");

    QTest::newRow("phone pager 270 x 20, 4 pages: cell 67, each 65 x 16")
        << QSize(270, 20) << 4
        << QList<QRectF> { QRectF(2, 2, 65, 16), QRectF(69, 2, 65, 16), QRectF(136, 2, 65, 16),
                           QRectF(203, 2, 65, 16) }
        << 8.0 << 12;
    QTest::newRow("fractional cell width is kept, not rounded")
        << QSize(100, 30) << 3
        << QList<QRectF> { QRectF(2, 2, 30.6666666667, 26), QRectF(34.6666666667, 2, 30.6666666667, 26),
                           QRectF(67.3333333333, 2, 30.6666666667, 26) }
        << 13.0 << 22;
    QTest::newRow("one page spans the control") << QSize(80, 24) << 1 << QList<QRectF> { QRectF(2, 2, 76, 20) }
                                                << 10.0 << 16;
}

void TestPageControl::cellFrames()
{
    QFETCH(QSize, size);
    QFETCH(int, pages);
    QFETCH(QList<QRectF>, cells);
    QFETCH(qreal, radius);
    QFETCH(int, fontSize);

    OOPageControl control(QRect(QPoint(0, 0), size), pages);
    QCOMPARE(control.numberOfPages(), pages);
    for (int i = 0; i < pages; ++i) {
        const QRectF cell = control.cellRect(i);
        QVERIFY2(qAbs(cell.x() - cells.at(i).x()) < 1e-6 && qAbs(cell.y() - cells.at(i).y()) < 1e-6
                     && qAbs(cell.width() - cells.at(i).width()) < 1e-6
                     && qAbs(cell.height() - cells.at(i).height()) < 1e-6,
                 qPrintable(QStringLiteral("cell %1: %2,%3 %4x%5")
                                .arg(i)
                                .arg(cell.x())
                                .arg(cell.y())
                                .arg(cell.width())
                                .arg(cell.height())));
        // Each cell has its own button over it.
        QCOMPARE(QRectF(control.cellButtons().at(i)->geometry()).intersected(cell).width() > cells.at(i).width() - 1.0,
                 true);
    }
    QCOMPARE(control.cellButtons().size(), pages);
    QCOMPARE(control.cellCornerRadius(), radius);
    QCOMPARE(control.titleFont().pixelSize(), fontSize);
    QCOMPARE(control.titleFont().bold(), true);
}

void TestPageControl::outlinesAreDrawnOnTheCellFrames()
{
    OOPageControl control(QRect(0, 0, 270, 20), 4);
    const QImage image = WidgetRenderer::render(&control);
    // Cells at x 2, 69, 136, 203, 65 x 16 from y 2: the 1.5-wide white border
    // lies just inside each cell, and the pixel just outside stays clear.
    for (int left : { 2, 69, 136, 203 }) {
        const int right = left + 64;
        const int middleX = left + 32;
        const QList<QPoint> onBorder { QPoint(left, 10), QPoint(right, 10), QPoint(middleX, 2), QPoint(middleX, 17) };
        for (const QPoint &p : onBorder) {
            const QColor c = RenderProbe::at(image, p.x(), p.y());
            QVERIFY2(RenderProbe::near(c, White, 16),
                     qPrintable(QStringLiteral("(%1,%2) %3").arg(p.x()).arg(p.y()).arg(RenderProbe::describe(c))));
        }
        const QList<QPoint> outside { QPoint(left - 1, 10), QPoint(right + 1, 10), QPoint(middleX, 1),
                                      QPoint(middleX, 18), QPoint(middleX, 10) };
        for (const QPoint &p : outside) {
            const QColor c = RenderProbe::at(image, p.x(), p.y());
            QVERIFY2(c.alpha() == 0,
                     qPrintable(QStringLiteral("(%1,%2) %3").arg(p.x()).arg(p.y()).arg(RenderProbe::describe(c))));
        }
    }
}

void TestPageControl::recolouring_data()
{
    QTest::addColumn<QList<int>>("calls");
    QTest::addColumn<int>("marked"); // -1: none

    QTest::newRow("page 2 marks only the third cell") << QList<int> { 2 } << 2;
    QTest::newRow("page 0 marks the first") << QList<int> { 0 } << 0;
    QTest::newRow("page 7 (out of range) marks none") << QList<int> { 7 } << -1;
    QTest::newRow("page 7 after page 2 clears the mark") << QList<int> { 2, 7 } << -1;
    QTest::newRow("negative page marks none") << QList<int> { 1, -1 } << -1;
    QTest::newRow("moving the mark unmarks the old cell") << QList<int> { 1, 3 } << 3;
    QTest::newRow("nothing is marked before the first call") << QList<int> {} << -1;
}

void TestPageControl::recolouring()
{
    QFETCH(QList<int>, calls);
    QFETCH(int, marked);

    OOPageControl bare(QRect(0, 0, 270, 20), 4);
    OOPageControl titled(QRect(0, 0, 270, 20), 4);
    titled.setTitles({ QStringLiteral("Sum"), QStringLiteral("Pro"), QStringLiteral("Sys"), QStringLiteral("Net") });
    for (int page : calls) {
        bare.setCurrentPage(page);
        titled.setCurrentPage(page);
    }
    const QImage pills = WidgetRenderer::render(&bare);
    const QImage texts = WidgetRenderer::render(&titled);

    for (int i = 0; i < 4; ++i) {
        const bool current = i == marked;
        QCOMPARE(titled.titleColor(i), current ? Orange : White);
        // The pill is black seen through 0.6 opacity, or not there at all.
        const QColor pill = RenderProbe::at(pills, 2 + 67 * i + 10, 10);
        if (current)
            QVERIFY2(RenderProbe::near(pill, QColor(0, 0, 0, 153), 3), qPrintable(RenderProbe::describe(pill)));
        else
            QVERIFY2(pill.alpha() == 0, qPrintable(RenderProbe::describe(pill)));
        // The title is painted orange only in the marked cell.
        const QRect inner(2 + 67 * i + 10, 5, 46, 10);
        const int orange = countPixels(texts, inner, isOrange);
        const int white = countPixels(texts, inner, [](const QColor &c) {
            return c.alpha() > 200 && c.red() > 230 && c.green() > 230 && c.blue() > 230;
        });
        if (current) {
            QVERIFY2(orange > 10 && white == 0, qPrintable(QStringLiteral("cell %1: %2 orange, %3 white")
                                                               .arg(i)
                                                               .arg(orange)
                                                               .arg(white)));
        } else {
            QVERIFY2(orange == 0 && white > 10, qPrintable(QStringLiteral("cell %1: %2 orange, %3 white")
                                                               .arg(i)
                                                               .arg(orange)
                                                               .arg(white)));
        }
    }
}

void TestPageControl::titles_data()
{
    QTest::addColumn<QVariantList>("titles");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("four strings in order") << phoneTitles()
                                           << QStringList { "Summary", "Processes", "System", "Network" };
    QTest::newRow("a non-string is skipped and the next string takes its cell")
        << QVariantList { QStringLiteral("Summary"), 42, QStringLiteral("Processes") }
        << QStringList { "Summary", "Processes", "", "" };
    QTest::newRow("leading null and numbers do not use up cells")
        << QVariantList { QVariant(), 1.5, QStringLiteral("A"), QVariant(true), QStringLiteral("B") }
        << QStringList { "A", "B", "", "" };
    QTest::newRow("surplus strings are ignored")
        << QVariantList { QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C"), QStringLiteral("D"),
                          QStringLiteral("E") }
        << QStringList { "A", "B", "C", "D" };
    QTest::newRow("a byte array is not a string")
        << QVariantList { QByteArray("raw"), QStringLiteral("A") } << QStringList { "A", "", "", "" };
}

void TestPageControl::titles()
{
    QFETCH(QVariantList, titles);
    QFETCH(QStringList, expected);

    OOPageControl control(QRect(0, 0, 270, 20), 4);
    control.setTitles(titles);
    const QImage image = WidgetRenderer::render(&control);
    for (int i = 0; i < 4; ++i) {
        QCOMPARE(control.title(i), expected.at(i));
        // A cell with a title shows text; an empty one only its outline.
        const QRect inner(2 + 67 * i + 10, 5, 46, 10);
        const int inked = countPixels(image, inner, [](const QColor &c) { return c.alpha() > 128; });
        QCOMPARE(inked > 0, !expected.at(i).isEmpty());
    }
}

void TestPageControl::tapsChangeNothing()
{
    OOPageControl control(QRect(0, 0, 270, 20), 4);
    RecordingDelegate delegate;
    control.setDelegate(&delegate);
    control.setTitles(phoneTitles());
    control.setCurrentPage(1);
    control.show();
    QVERIFY(QTest::qWaitForWindowExposed(&control));
    const QImage before = WidgetRenderer::render(&control);

    for (int i = 0; i < 4; ++i) {
        OOPageCellButton *button = control.cellButtons().at(i);
        QSignalSpy clicked(button, &QAbstractButton::clicked);
        QTest::mouseClick(button, Qt::LeftButton, {}, button->rect().center());
        // The tap reached the cell's button, and still nothing changed.
        QCOMPARE(clicked.count(), 1);
    }
    QVERIFY(delegate.clicked.isEmpty());
    for (int i = 0; i < 4; ++i)
        QCOMPARE(control.titleColor(i), i == 1 ? Orange : White);
    QCOMPARE(WidgetRenderer::render(&control), before);
}

void TestPageControl::noPagesIsAnEmptyClearView()
{
    OOPageControl control(QRect(0, 0, 270, 20), 0);
    control.setTitles(phoneTitles());
    control.setCurrentPage(0);
    QVERIFY(control.cellButtons().isEmpty());
    QCOMPARE(control.cellRect(0), QRectF());
    const QImage image = WidgetRenderer::render(&control);
    QCOMPARE(countPixels(image, image.rect(), [](const QColor &c) { return c.alpha() != 0; }), 0);
}

QTEST_MAIN(TestPageControl)
#include "tst_pagecontrol.moc"
