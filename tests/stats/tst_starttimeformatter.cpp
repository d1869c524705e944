#include "FixtureTree.h"
#include "StartTimeFormatter.h"

#include <QtTest>

using namespace FixtureTree;

class TestStartTimeFormatter : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void startTimes_data() { addRows("start-times.tsv", {"locale", "zone", "seconds", "expected"}); }
    void startTimes()
    {
        QFETCH(QString, locale);
        QFETCH(QString, zone);
        QFETCH(QString, seconds);
        const StartTimeFormatter formatter(locale.toLatin1(), zone);
        QVERIFY(formatter.isValid());
        QTEST(formatter.format(seconds.toLongLong()), "expected");
    }
};

QTEST_APPLESS_MAIN(TestStartTimeFormatter)
#include "tst_starttimeformatter.moc"
