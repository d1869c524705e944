#include "FontTable.h"

#include <QApplication>
#include <QFontInfo>
#include <QtTest>

class TestFontTable : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void resolvesToAnInstalledStandIn_data();
    void resolvesToAnInstalledStandIn();
    void unknownNameKeepsTheDefaultFamily();
    void pageTitlesFitTheirCells_data();
    void pageTitlesFitTheirCells();
};

void TestFontTable::resolvesToAnInstalledStandIn_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<qreal>("size");
    QTest::addColumn<QString>("installed"); // the family the machine's fonts provide
    QTest::addColumn<bool>("fixedPitch");

    QTest::newRow("label font is a bold monospace, not a proportional fallback")
        << "CourierNewPS-BoldMT" << 13.0 << "Liberation Mono" << true;
    QTest::newRow("Helvetica-Bold is Nimbus Sans") << "Helvetica-Bold" << 18.0 << "Nimbus Sans" << false;
    QTest::newRow("Trebuchet falls back to DejaVu Sans") << "TrebuchetMS-Bold" << 12.0 << "DejaVu Sans" << false;
    QTest::newRow("sizes are logical pixels, rounded to whole ones") << "TrebuchetMS-Bold" << 11.6 << "DejaVu Sans"
                                                                       << false;
}

void TestFontTable::resolvesToAnInstalledStandIn()
{
    QFETCH(QString, name);
    QFETCH(qreal, size);
    QFETCH(QString, installed);
    QFETCH(bool, fixedPitch);

    const QFont font = FontTable::font(name, size);
    QVERIFY(FontTable::families(name).contains(installed));
    QCOMPARE(font.pixelSize(), qRound(size));
    QCOMPARE(font.weight(), QFont::Bold);

    const QFontInfo info(font);
    // fontconfig may add the foundry: "Nimbus Sans [urw]".
    const QString family = info.family().section(QStringLiteral(" ["), 0, 0);
    QVERIFY2(FontTable::families(name).contains(family), qPrintable(info.family()));
    QCOMPARE(info.fixedPitch(), fixedPitch);
    QCOMPARE(info.bold(), true);
    QCOMPARE(info.pixelSize(), qRound(size));
}

void TestFontTable::unknownNameKeepsTheDefaultFamily()
{
    const QFont font = FontTable::font(QStringLiteral("NoSuchFont-Regular"), 15.0);
    QVERIFY(FontTable::families(QStringLiteral("NoSuchFont-Regular")).isEmpty());
    QCOMPARE(font.families(), QApplication::font().families());
    QCOMPARE(font.pixelSize(), 15);
}

void TestFontTable::pageTitlesFitTheirCells_data()
{
    QTest::addColumn<QString>("title");
    QTest::newRow("Summary") << "Summary";
    QTest::newRow("Network") << "Network";
    QTest::newRow("System") << "System";
}

void TestFontTable::pageTitlesFitTheirCells()
{
    // The phone pager's cells are 65 wide with a 1.5 border on each side and
    // rounded ends; the titles are drawn at 12.
    QFETCH(QString, title);
    const QFontMetricsF metrics(FontTable::font(QStringLiteral("TrebuchetMS-Bold"), 12.0));
    QVERIFY2(metrics.horizontalAdvance(title) <= 60.0, qPrintable(QString::number(metrics.horizontalAdvance(title))));
}

QTEST_MAIN(TestFontTable)
#include "tst_fonttable.moc"
