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

// The idiom asked for on the command line, "Automatic" when none is.
LaunchOptions::Idiom requestedIdiom(const QString &name)
{
    QStringList arguments{QStringLiteral("kovar")};
    if (name != u"Automatic")
        arguments << QStringLiteral("--idiom") << name.toLower();
    return LaunchOptions::parse(arguments, QProcessEnvironment()).idiom;
}

} // namespace

// The layout chosen for a screen, and the window it opens.
class TestLaunchIdiom : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void idiomAndWindow_data() { FixtureTree::addRows("app-idiom.tsv", {"requested", "screen", "kind", "window"}); }
    void idiomAndWindow()
    {
        QFETCH(QString, requested);
        QFETCH(QString, screen);
        QFETCH(QString, kind);
        QFETCH(QString, window);
        const LaunchIdiom::Kind chosen = LaunchIdiom::choose(requestedIdiom(requested), size(screen));
        QCOMPARE(chosen, kind == u"Tablet" ? LaunchIdiom::Kind::Tablet : LaunchIdiom::Kind::Phone);
        QCOMPARE(LaunchIdiom::windowSize(chosen, size(screen)), size(window));
    }
};

QTEST_APPLESS_MAIN(TestLaunchIdiom)
#include "tst_launchidiom.moc"
