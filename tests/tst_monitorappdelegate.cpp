#include "Device.h"
#include "FixtureTree.h"
#include "MonitorAppDelegate_iPad.h"
#include "iPadRootViewController.h"
#include "iPhoneRootViewController.h"

#include <QtWidgets>

namespace {

const QString laptop = FixtureTree::path(QStringLiteral("power_supply/laptop-discharging"));

QSize size(const QString &text) // "WxH"; "" for none
{
    return text.isEmpty() ? QSize() : QSize(text.section(u'x', 0, 0).toInt(), text.section(u'x', 1).toInt());
}

LaunchOptions::Idiom idiom(const QString &name)
{
    return LaunchOptions::Idiom(QStringList{"Automatic", "Phone", "Tablet"}.indexOf(name));
}

} // namespace

class TestMonitorAppDelegate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void commandLine_data() { FixtureTree::addRows("app-tables/app-command-line.tsv", {"arguments", "idiom", "verdict"}); }
    void commandLine()
    {
        QFETCH(QString, arguments);
        QFETCH(QString, idiom);
        QFETCH(QString, verdict);
        const LaunchOptions options = LaunchOptions::parse(QStringList{"kovar"} + arguments.split(u' ', Qt::SkipEmptyParts));
        QCOMPARE(options.idiom, ::idiom(idiom));
        QCOMPARE(QString::fromLatin1(options.error.isEmpty() ? "accepted" : "refused"), verdict);
    }

    void idiomAndWindow_data() { FixtureTree::addRows("app-tables/app-idiom.tsv", {"requested", "screen", "kind", "window"}); }
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

    void launch_data()
    {
        QTest::addColumn<QSize>("window");
        QTest::newRow("phone") << QSize(320, 480);
        QTest::newRow("tablet") << QSize(768, 1024);
    }
    void launch()
    {
        QFETCH(QSize, window);
        Device device(laptop);
        const bool tablet = window.width() >= LaunchIdiom::tabletMinimumSide;
        const auto delegate = MonitorAppDelegate::create(tablet ? LaunchIdiom::Kind::Tablet : LaunchIdiom::Kind::Phone,
                                                         window, &device);
        QVERIFY(delegate->application(qApp, LaunchOptions()));
        QVERIFY(delegate->window()->isVisible() && device.isBatteryMonitoringEnabled());
        delegate->application(qApp, LaunchOptions()); // a launch message arriving twice stacks nothing

        const QList<QWidget *> roots = delegate->rootView()->findChildren<QWidget *>(Qt::FindDirectChildrenOnly);
        QCOMPARE(roots.size(), 1);
        QVERIFY(tablet ? roots[0]->inherits("iPadRootViewController") : roots[0]->inherits("iPhoneRootViewController"));
        QVERIFY(roots[0]->isVisible());
        QCOMPARE(roots[0]->geometry(), QRect(0, 0, window.width(), window.height() - 20));
        QCOMPARE(delegate->rootView()->geometry(), QRect(0, 20, window.width(), window.height() - 20));
        // An opaque black band edge to edge, and the root screen right under it.
        const QImage image = delegate->window()->grab().toImage();
        QVERIFY(image.pixelColor(0, 0) == Qt::black && image.pixelColor(window.width() - 1, 19) == Qt::black);
        QVERIFY(image.pixelColor(window.width() / 2, 20) != QColor(Qt::black));
        // Portrait only: the window manager cannot reshape it.
        delegate->window()->resize(window.height(), window.width());
        QCOMPARE(delegate->window()->size(), window);
    }

    void monitoringFollowsState_data() { FixtureTree::addRows("app-tables/app-monitoring.tsv", {"steps", "monitoring"}); }
    void monitoringFollowsState()
    {
        QFETCH(QString, steps);
        QFETCH(QString, monitoring);
        Device device(laptop);
        MonitorAppDelegate_iPad delegate(QSize(768, 1024), &device);
        delegate.application(qApp, LaunchOptions());
        const QMap<QChar, Qt::ApplicationState> states{{u'A', Qt::ApplicationActive}, {u'I', Qt::ApplicationInactive},
                                                       {u'H', Qt::ApplicationHidden}, {u'S', Qt::ApplicationSuspended}};
        QString seen;
        for (QChar step : steps) {
            if (states.contains(step))
                delegate.applicationStateDidChange(states[step]);
            else
                delegate.window()->setWindowState(step == u'M' ? Qt::WindowMinimized : Qt::WindowNoState);
            seen += device.isBatteryMonitoringEnabled() ? u'1' : u'0';
        }
        QCOMPARE(seen, monitoring);
    }
};

QTEST_MAIN(TestMonitorAppDelegate)
#include "tst_monitorappdelegate.moc"
