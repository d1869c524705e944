#include "FixtureTree.h"
#include "LaunchIdiom.h"
#include "LaunchOptions.h"

#include <QtTest>

namespace {

QSize size(const QString &text) // "WxH"; "" for none
{
    return text.isEmpty() ? QSize() : QSize(text.section(u'x', 0, 0).toInt(), text.section(u'x', 1).toInt());
}

LaunchOptions::Idiom idiom(const QString &name)
{
    return LaunchOptions::Idiom(QStringList{"Automatic", "Phone", "Tablet"}.indexOf(name));
}

} // namespace

class TestLaunchIdiom : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void idiomAndWindow_data() { FixtureTree::addRows("app-idiom.tsv", {"requested", "screen", "kind", "window"}); }
    void idiomAndWindow()
    {
        QFETCH(QString, requested);
        QFETCH(QString, screen);
        QFETCH(QString, kind);
        QFETCH(QString, window);
        const LaunchIdiom::Kind chosen = LaunchIdiom::choose(idiom(requested), size(screen));
        QCOMPARE(chosen, kind == u"Tablet" ? LaunchIdiom::Kind::Tablet : LaunchIdiom::Kind::Phone);
        QCOMPARE(LaunchIdiom::windowSize(chosen, size(screen)), size(window));
    }
};

QTEST_APPLESS_MAIN(TestLaunchIdiom)
#include "tst_launchidiom.moc"
