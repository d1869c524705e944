#include "StartTimeFormatter.h"

#include <QTest>

class TestStartTimeFormatter : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void format_data();
    void format();
    void unknownZoneFallsBackToGmt();
};

void TestStartTimeFormatter::format_data()
{
    QTest::addColumn<QByteArray>("locale");
    QTest::addColumn<QString>("zone");
    QTest::addColumn<qint64>("seconds");
    QTest::addColumn<QString>("expected");

    QTest::newRow("en_US, UTC, narrow no-break space before PM")
        << QByteArray("en_US") << "UTC" << qint64(1700000000) << QStringLiteral("Nov 14, 2023, 10:13:20\u202fPM");
    QTest::newRow("en_US, UTC, morning") << QByteArray("en_US") << "UTC" << qint64(1690000000)
                                         << QStringLiteral("Jul 22, 2023, 4:26:40\u202fAM");
    QTest::newRow("en_US, New York winter") << QByteArray("en_US") << "America/New_York" << qint64(1700000000)
                                            << QStringLiteral("Nov 14, 2023, 5:13:20\u202fPM");
    QTest::newRow("de_DE, Berlin winter time") << QByteArray("de_DE") << "Europe/Berlin" << qint64(1700000000)
                                               << QStringLiteral("14.11.2023, 23:13:20");
    QTest::newRow("de_DE, Berlin summer time") << QByteArray("de_DE") << "Europe/Berlin" << qint64(1690000000)
                                               << QStringLiteral("22.07.2023, 06:26:40");
    QTest::newRow("seconds dropped, not rounded") << QByteArray("de_DE") << "UTC" << qint64(59)
                                                  << QStringLiteral("01.01.1970, 00:00:59");
    QTest::newRow("beyond 2038") << QByteArray("en_US") << "UTC" << qint64(4102444800)
                                 << QStringLiteral("Jan 1, 2100, 12:00:00\u202fAM");
}

void TestStartTimeFormatter::format()
{
    QFETCH(QByteArray, locale);
    QFETCH(QString, zone);
    QFETCH(qint64, seconds);
    QFETCH(QString, expected);

    const StartTimeFormatter formatter(locale, zone);
    QVERIFY(formatter.isValid());
    QCOMPARE(formatter.format(seconds), expected);
    // The formatter is reused for every process: a second use must not differ.
    QCOMPARE(formatter.format(seconds), expected);
}

void TestStartTimeFormatter::unknownZoneFallsBackToGmt()
{
    const StartTimeFormatter formatter(QByteArray("de_DE"), QStringLiteral("Nowhere/Atlantis"));
    QVERIFY(formatter.isValid());
    QCOMPARE(formatter.format(1700000000), QStringLiteral("14.11.2023, 22:13:20"));
}

QTEST_APPLESS_MAIN(TestStartTimeFormatter)
#include "tst_starttimeformatter.moc"
