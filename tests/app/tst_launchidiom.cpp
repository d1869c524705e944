#include "FixtureTree.h"
#include "LaunchIdiom.h"
#include "LaunchOptions.h"

#include <QProcessEnvironment>
#include <QtTest>

namespace {

QSize size(const QString &text) // "WxH"; "" for none
{
    return text.isEmpty() ? QSize() : QSize(text.section(u'x', 0, 0).toInt(), text.section(u'x', 1).toInt());
}

LaunchOptions options(const QString &commandLine)
{
    const QStringList arguments = QStringList{QStringLiteral("kovar")} + commandLine.split(u' ', Qt::SkipEmptyParts);
    return LaunchOptions::parse(arguments, QProcessEnvironment());
}

} // namespace

// The layout chosen for a screen, the window it opens and its zoom.
class TestLaunchIdiom : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void idiomAndWindow_data()
    {
        FixtureTree::addRows("app-idiom.tsv", {"arguments", "screen", "kind", "window", "zoom"});
    }
    void idiomAndWindow()
    {
        QFETCH(QString, arguments);
        QFETCH(QString, screen);
        QFETCH(QString, kind);
        QFETCH(QString, window);
        QFETCH(QString, zoom);
        const LaunchOptions launch = options(arguments);
        QVERIFY2(launch.error.isEmpty(), qPrintable(launch.error));
        const LaunchIdiom::Kind chosen = LaunchIdiom::choose(launch.idiom, size(screen));
        QCOMPARE(chosen, kind == u"Tablet" ? LaunchIdiom::Kind::Tablet : LaunchIdiom::Kind::Phone);
        QCOMPARE(LaunchIdiom::windowSize(chosen, size(screen)), size(window));
        QCOMPARE(qRound(LaunchIdiom::firstZoom(chosen, size(screen), launch.zoomPercent) * 100), zoom.toInt());
    }

    // Ctrl+Plus and Ctrl+Minus from a zoom, as often as asked: "+", "-" or "+++".
    void zoomSteps_data() { FixtureTree::addRows("app-zoom-steps.tsv", {"from", "keys", "to"}); }
    void zoomSteps()
    {
        QFETCH(QString, from);
        QFETCH(QString, keys);
        QFETCH(QString, to);
        const int steps = int(keys.count(u'+')) - int(keys.count(u'-'));
        QCOMPARE(LaunchIdiom::steppedZoom(from.toDouble() / 100, steps) * 100, to.toDouble());
    }
};

QTEST_APPLESS_MAIN(TestLaunchIdiom)
#include "tst_launchidiom.moc"
