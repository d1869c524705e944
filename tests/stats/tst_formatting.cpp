#include "FixtureTree.h"
#include "Formatting.h"
#include "StringPrivate.h"

#include <QtTest>

using namespace FixtureTree;

// The size and frequency formatters and the text helpers they build on.
class TestFormatting : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void formatters_data() { addRows("formatters.tsv", {"family", "value", "decimals", "space", "expected"}); }
    void formatters()
    {
        QFETCH(QString, family);
        QFETCH(QString, value);
        QFETCH(QString, decimals);
        QFETCH(QString, space);
        const auto format = family == u"hz" ? &Formatting::hzToKiloMegaGigaWithHz : &Formatting::byteToKiloMegaGigaWithByte;
        QTEST(format(value.toDouble(), decimals.toInt(), space == u"1"), "expected");
    }

    void text_data() { addRows("text.tsv", {"helper", "input", "unit", "expected"}); }
    void text()
    {
        QFETCH(QString, helper);
        QFETCH(QString, input);
        QFETCH(QString, unit);
        QTEST(helper == u"trim" ? StringPrivate::stringByTrimmingSpaceWithString(input)
                                : StringPrivate::stringByCommifyWithString(input, unit),
              "expected");
    }

    void textNullAndEmpty()
    {
        QVERIFY(StringPrivate::stringByCommifyWithString(QString()).isNull());
        QVERIFY(StringPrivate::stringByTrimmingSpaceWithString(QString()).isNull());
        QVERIFY(!StringPrivate::stringByCommifyWithString(QStringLiteral("")).isNull());
        for (const QString &blank : {QStringLiteral(""), QStringLiteral(" \t ")})
            QVERIFY(!StringPrivate::stringByTrimmingSpaceWithString(blank).isNull());
    }
};

QTEST_APPLESS_MAIN(TestFormatting)
#include "tst_formatting.moc"
