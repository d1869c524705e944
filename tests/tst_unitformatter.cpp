#include "UnitFormatter.h"

#include <QTest>

class TestUnitFormatter : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void bytes_data();
    void bytes();
    void hertz_data();
    void hertz();
    void commify_data();
    void commify();
    void commifyKeepsNull();
    void trim_data();
    void trim();
};

void TestUnitFormatter::bytes_data()
{
    QTest::addColumn<double>("bytes");
    QTest::addColumn<int>("decmal");
    QTest::addColumn<bool>("unitSpace");
    QTest::addColumn<QString>("expected");

    QTest::newRow("zero keeps singular Byte") << 0.0 << 0 << true << "0 Byte";
    QTest::newRow("zero without unit space") << 0.0 << 0 << false << "0Byte";
    QTest::newRow("1023 is still bytes, grouped") << 1023.0 << 2 << true << "1,023 Byte";
    QTest::newRow("decmal ignored below one KB") << 1000.0 << 3 << true << "1,000 Byte";
    QTest::newRow("exactly 1024 is one KB") << 1024.0 << 0 << true << "1 KB";
    QTest::newRow("1024 with two decimals") << 1024.0 << 2 << true << "1.00 KB";
    QTest::newRow("rounding in print only: 1,024 KB not 1 MB") << 1048575.0 << 0 << true << "1,024 KB";
    QTest::newRow("one and a half GB") << 1610612736.0 << 2 << true << "1.50 GB";
    QTest::newRow("no unit above GB, grouped") << 5.0e12 << 0 << true << "4,657 GB";
    QTest::newRow("beyond int32 GB saturates, still GB") << 3.0e21 << 0 << true << "2,793,967,723,846 GB";
    QTest::newRow("negative falls to Byte") << -123456.0 << 2 << true << "-123,456 Byte";
    QTest::newRow("decmal 7 behaves as 0") << 1536.0 << 7 << true << "2 KB";
    QTest::newRow("decmal -1 behaves as 0") << 1536.0 << -1 << true << "2 KB";
    QTest::newRow("half rounds to even, not away") << 2560.0 << 0 << true << "2 KB";
    QTest::newRow("32 KB cache") << 32768.0 << 0 << true << "32 KB";
    QTest::newRow("MB with one decimal") << 1572864.0 << 1 << false << "1.5MB";
}

void TestUnitFormatter::bytes()
{
    QFETCH(double, bytes);
    QFETCH(int, decmal);
    QFETCH(bool, unitSpace);
    QFETCH(QString, expected);
    QCOMPARE(UnitFormatter::byteToKiloMegaGigaWithByte(bytes, decmal, unitSpace), expected);
}

void TestUnitFormatter::hertz_data()
{
    QTest::addColumn<double>("hz");
    QTest::addColumn<int>("decmal");
    QTest::addColumn<bool>("unitSpace");
    QTest::addColumn<QString>("expected");

    QTest::newRow("24 MHz time base") << 24.0e6 << 0 << true << "24 MHz";
    QTest::newRow("GHz without unit space") << 2.5e9 << 1 << false << "2.5GHz";
    QTest::newRow("zero is Hz") << 0.0 << 0 << true << "0 Hz";
    QTest::newRow("1 kHz still MHz") << 1000.0 << 0 << true << "0 MHz";
    QTest::newRow("1 kHz with 3 decimals") << 1000.0 << 3 << true << "0.001 MHz";
    QTest::newRow("no grouping for big GHz") << 5.0e12 << 0 << true << "5000 GHz";
    QTest::newRow("negative is raw Hz") << -5.0 << 2 << true << "-5 Hz";
    QTest::newRow("decmal 9 behaves as 0") << 2.5e9 << 9 << true << "2 GHz";
}

void TestUnitFormatter::hertz()
{
    QFETCH(double, hz);
    QFETCH(int, decmal);
    QFETCH(bool, unitSpace);
    QFETCH(QString, expected);
    QCOMPARE(UnitFormatter::hzToKiloMegaGigaWithHz(hz, decmal, unitSpace), expected);
}

void TestUnitFormatter::commify_data()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("expected");

    QTest::newRow("seven digits") << "1234567" << "1,234,567";
    QTest::newRow("negative keeps sign out of groups") << "-1234" << "-1,234";
    QTest::newRow("three digits untouched") << "123" << "123";
    QTest::newRow("fraction kept verbatim") << "1234.5678" << "1,234.5678";
    QTest::newRow("negative with fraction") << "-1234.5" << "-1,234.5";
    QTest::newRow("minus above -1 survives") << "-0.5" << "-0.5";
    QTest::newRow("leading plus dropped") << "+1234" << "1,234";
    QTest::newRow("blanks and tab around") << "  42\t" << "42";
    QTest::newRow("beyond 32 bits") << "12345678901" << "12,345,678,901";
    QTest::newRow("leading zeros dropped") << "007" << "7";
    QTest::newRow("trailing text dropped") << "1234 KB" << "1,234";
    QTest::newRow("empty stays empty") << "" << "";
}

void TestUnitFormatter::commify()
{
    QFETCH(QString, input);
    QFETCH(QString, expected);
    const QString result = UnitFormatter::stringByCommifyWithString(input);
    QCOMPARE(result, expected);
    QVERIFY(!result.isNull());
    QCOMPARE(UnitFormatter::stringByCommifyWithString(input, QStringLiteral(" MB")), expected + QStringLiteral(" MB"));
}

void TestUnitFormatter::commifyKeepsNull()
{
    QVERIFY(UnitFormatter::stringByCommifyWithString(QString()).isNull());
    QVERIFY(UnitFormatter::stringByTrimmingSpaceWithString(QString()).isNull());
}

void TestUnitFormatter::trim_data()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("expected");

    QTest::newRow("space and tab both sides") << " \tab \t" << "ab";
    QTest::newRow("only blanks give empty") << "   " << "";
    QTest::newRow("line break is not a blank") << "a\n" << "a\n";
    QTest::newRow("inner blanks kept") << " a b " << "a b";
}

void TestUnitFormatter::trim()
{
    QFETCH(QString, input);
    QFETCH(QString, expected);
    const QString result = UnitFormatter::stringByTrimmingSpaceWithString(input);
    QCOMPARE(result, expected);
    QVERIFY(!result.isNull());
}

QTEST_GUILESS_MAIN(TestUnitFormatter)
#include "tst_unitformatter.moc"
