#include "FixtureTree.h"
#include "Formatting.h"
#include "StringPrivate.h"

#include <QtTest>

using namespace FixtureTree;

// The size and frequency formatters and the text helpers they build on.
class TestFormatting : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { useLocale(QStringLiteral("C.UTF-8")); }

    void formatters_data()
    {
        addRows("formatters.tsv", {"family", "value", "decimals", "space", "expected"}, KOVAR_FIGURE_LOCALES);
    }
    void formatters()
    {
        QFETCH(QString, locale);
        QVERIFY2(useLocale(locale), qPrintable(locale + QStringLiteral(" is not installed")));
        QFETCH(QString, family);
        QFETCH(QString, value);
        QFETCH(QString, decimals);
        QFETCH(QString, space);
        const auto format = family == u"hz" ? &Formatting::hzToKiloMegaGigaWithHz
                                            : &Formatting::byteToKiloMegaGigaWithByte;
        QTEST(format(value.toDouble(), decimals.toInt(), space == u"1"), "expected");
    }

    void text_data() { addRows("text.tsv", {"helper", "input", "unit", "expected"}, KOVAR_FIGURE_LOCALES); }
    void text()
    {
        QFETCH(QString, locale);
        QVERIFY2(useLocale(locale), qPrintable(locale + QStringLiteral(" is not installed")));
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
