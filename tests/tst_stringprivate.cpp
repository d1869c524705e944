#include "StringPrivate.h"

#include <QTest>

class TestStringPrivate : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void commify_data();
    void commify();
    void commifyWithUnit_data();
    void commifyWithUnit();
    void commifyNullAndEmpty();
    void trimming_data();
    void trimming();
    void trimmingNullAndEmpty();
};

void TestStringPrivate::commify_data()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("expected");

    QTest::newRow("seven digits get two separators") << "1234567" << "1,234,567";
    QTest::newRow("minus sign is not a digit") << "-1234" << "-1,234";
    QTest::newRow("minus sign does not add a group") << "-123" << "-123";
    QTest::newRow("three digits stay ungrouped") << "123" << "123";
    QTest::newRow("four digits get one separator") << "1000" << "1,000";
    QTest::newRow("fraction kept verbatim, not grouped") << "1234.5678" << "1,234.5678";
    QTest::newRow("negative with fraction") << "-1234.5" << "-1,234.5";
    QTest::newRow("negative above -1 keeps its sign") << "-0.5" << "-0.5";
    QTest::newRow("negative -0.25 keeps its sign") << "-0.25" << "-0.25";
    QTest::newRow("leading plus dropped") << "+1234" << "1,234";
    QTest::newRow("blanks and tab around the number") << "  42\t" << "42";
    QTest::newRow("beyond 32 bits") << "12345678901" << "12,345,678,901";
    QTest::newRow("six digits, one separator") << "123456" << "123,456";
    QTest::newRow("leading zeros dropped") << "007" << "7";
    QTest::newRow("text after the digits dropped") << "1234 KB" << "1,234";
    QTest::newRow("trailing zeros of a fraction kept") << "1048576.00" << "1,048,576.00";
    QTest::newRow("fraction with one leading digit") << "1.50" << "1.50";
    QTest::newRow("no digits at all") << "abc" << "0";
    QTest::newRow("largest 64-bit value") << "9223372036854775807" << "9,223,372,036,854,775,807";
}

void TestStringPrivate::commify()
{
    QFETCH(QString, input);
    QFETCH(QString, expected);
    QCOMPARE(StringPrivate::stringByCommifyWithString(input), expected);
}

void TestStringPrivate::commifyWithUnit_data()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QString>("expected");

    QTest::newRow("unit appended directly") << "4657" << "GB" << "4,657GB";
    QTest::newRow("unit with its own blank kept") << "1023" << " Byte" << "1,023 Byte";
    QTest::newRow("empty unit") << "1234.5" << "" << "1,234.5";
}

void TestStringPrivate::commifyWithUnit()
{
    QFETCH(QString, input);
    QFETCH(QString, unit);
    QFETCH(QString, expected);
    QCOMPARE(StringPrivate::stringByCommifyWithString(input, unit), expected);
}

void TestStringPrivate::commifyNullAndEmpty()
{
    QVERIFY(StringPrivate::stringByCommifyWithString(QString()).isNull());
    const QString empty = StringPrivate::stringByCommifyWithString(QStringLiteral(""));
    QVERIFY(empty.isEmpty());
    QVERIFY(!empty.isNull());
}

void TestStringPrivate::trimming_data()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("expected");

    QTest::newRow("space and tab on both sides") << " \tab \t" << "ab";
    QTest::newRow("only blanks give empty") << "   " << "";
    QTest::newRow("line break is not a blank") << "a\n" << "a\n";
    QTest::newRow("leading line break stays") << "\n a" << "\n a";
    QTest::newRow("inner blanks stay") << "  a b  " << "a b";
    QTest::newRow("nothing to trim") << "abc" << "abc";
    QTest::newRow("single character") << "x" << "x";
    QTest::newRow("no-break space is not a blank") << QStringLiteral("\u00a0a") << QStringLiteral("\u00a0a");
}

void TestStringPrivate::trimming()
{
    QFETCH(QString, input);
    QFETCH(QString, expected);
    QCOMPARE(StringPrivate::stringByTrimmingSpaceWithString(input), expected);
}

void TestStringPrivate::trimmingNullAndEmpty()
{
    QVERIFY(StringPrivate::stringByTrimmingSpaceWithString(QString()).isNull());
    const QString empty = StringPrivate::stringByTrimmingSpaceWithString(QStringLiteral(""));
    QVERIFY(empty.isEmpty());
    QVERIFY(!empty.isNull());
    const QString blanks = StringPrivate::stringByTrimmingSpaceWithString(QStringLiteral(" \t "));
    QVERIFY(blanks.isEmpty());
    QVERIFY(!blanks.isNull());
}

QTEST_APPLESS_MAIN(TestStringPrivate)
#include "tst_stringprivate.moc"
