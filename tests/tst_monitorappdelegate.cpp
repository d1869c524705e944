#include "Device.h"
#include "LaunchIdiom.h"
#include "LaunchOptions.h"
#include "MonitorAppDelegate.h"
#include "MonitorAppDelegate_iPad.h"
#include "MonitorAppDelegate_iPhone.h"
#include "iPadRootViewController.h"
#include "iPhoneRootViewController.h"

#include <QApplication>
#include <QImage>
#include <QTest>
#include <QWidget>

namespace {

const QString laptop = QStringLiteral(KOVAR_FIXTURES "/power_supply/laptop-discharging");

// Steps of an application's life as the tests drive them.
enum Step { Active, Inactive, Hidden, Suspended, Minimise, Restore };

void apply(MonitorAppDelegate &delegate, Step step)
{
    switch (step) {
    case Active:
        delegate.applicationStateDidChange(Qt::ApplicationActive);
        break;
    case Inactive:
        delegate.applicationStateDidChange(Qt::ApplicationInactive);
        break;
    case Hidden:
        delegate.applicationStateDidChange(Qt::ApplicationHidden);
        break;
    case Suspended:
        delegate.applicationStateDidChange(Qt::ApplicationSuspended);
        break;
    case Minimise:
        delegate.window()->setWindowState(delegate.window()->windowState() | Qt::WindowMinimized);
        break;
    case Restore:
        delegate.window()->setWindowState(delegate.window()->windowState() & ~Qt::WindowMinimized);
        break;
    }
}

int rootScreens(const MonitorAppDelegate &delegate)
{
    return int(delegate.window()->findChildren<iPhoneRootViewController *>().size()
               + delegate.window()->findChildren<iPadRootViewController *>().size());
}

} // namespace

class TestMonitorAppDelegate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void idiomChoice_data();
    void idiomChoice();
    void windowSize_data();
    void windowSize();

    void launch_data();
    void launch();
    void monitoringFollowsApplicationState_data();
    void monitoringFollowsApplicationState();
    void reactivationKeepsOneRootScreen_data();
    void reactivationKeepsOneRootScreen();
};

void TestMonitorAppDelegate::idiomChoice_data()
{
    QTest::addColumn<int>("requested");
    QTest::addColumn<QSize>("screen");
    QTest::addColumn<int>("expected");

    const int automatic = int(LaunchOptions::Idiom::Automatic);
    const int phone = int(LaunchIdiom::Kind::Phone);
    const int tablet = int(LaunchIdiom::Kind::Tablet);
    QTest::newRow("--idiom phone on a large desktop") << int(LaunchOptions::Idiom::Phone) << QSize(3840, 2100) << phone;
    QTest::newRow("--idiom tablet on a small screen") << int(LaunchOptions::Idiom::Tablet) << QSize(360, 720) << tablet;
    QTest::newRow("laptop 1366x768 less its panel") << automatic << QSize(1366, 736) << phone;
    QTest::newRow("smaller side exactly 768") << automatic << QSize(1024, 768) << tablet;
    QTest::newRow("smaller side 767") << automatic << QSize(1024, 767) << phone;
    QTest::newRow("full-HD desktop") << automatic << QSize(1920, 1040) << tablet;
    QTest::newRow("portrait phone") << automatic << QSize(360, 720) << phone;
    QTest::newRow("portrait tablet: width is the smaller side") << automatic << QSize(800, 1232) << tablet;
    QTest::newRow("no screen at all") << automatic << QSize() << phone;
}

void TestMonitorAppDelegate::idiomChoice()
{
    QFETCH(int, requested);
    QFETCH(QSize, screen);
    QFETCH(int, expected);

    QCOMPARE(int(LaunchIdiom::choose(LaunchOptions::Idiom(requested), screen)), expected);
}

void TestMonitorAppDelegate::windowSize_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QSize>("screen");
    QTest::addColumn<QSize>("expected");

    const int phone = int(LaunchIdiom::Kind::Phone);
    const int tablet = int(LaunchIdiom::Kind::Tablet);
    QTest::newRow("phone on a desktop") << phone << QSize(1920, 1040) << QSize(320, 480);
    QTest::newRow("tablet on a desktop") << tablet << QSize(1920, 1040) << QSize(768, 1024);
    QTest::newRow("phone on a small laptop") << phone << QSize(1366, 736) << QSize(320, 480);
    QTest::newRow("handheld phone takes its screen") << phone << QSize(360, 720) << QSize(360, 720);
    QTest::newRow("handheld tablet takes its screen") << tablet << QSize(800, 1232) << QSize(800, 1232);
    QTest::newRow("square screen is no handheld") << phone << QSize(1000, 1000) << QSize(320, 480);
    QTest::newRow("no screen at all") << phone << QSize() << QSize(320, 480);
    QTest::newRow("portrait sliver too short for content") << phone << QSize(10, 30) << QSize(320, 480);
}

void TestMonitorAppDelegate::windowSize()
{
    QFETCH(int, kind);
    QFETCH(QSize, screen);
    QFETCH(QSize, expected);

    QCOMPARE(LaunchIdiom::windowSize(LaunchIdiom::Kind(kind), screen), expected);
}

void TestMonitorAppDelegate::launch_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QSize>("size");

    QTest::newRow("phone") << int(LaunchIdiom::Kind::Phone) << QSize(320, 480);
    QTest::newRow("tablet") << int(LaunchIdiom::Kind::Tablet) << QSize(768, 1024);
    QTest::newRow("handheld screen") << int(LaunchIdiom::Kind::Phone) << QSize(360, 720);
}

void TestMonitorAppDelegate::launch()
{
    QFETCH(int, kind);
    QFETCH(QSize, size);

    Device device(laptop);
    const auto delegate = MonitorAppDelegate::create(LaunchIdiom::Kind(kind), size, &device);
    QVERIFY(!delegate->window()->isVisible());
    QVERIFY(!device.isBatteryMonitoringEnabled());

    QVERIFY(delegate->application(qApp, LaunchOptions()));
    QVERIFY(delegate->window()->isVisible());
    QVERIFY(device.isBatteryMonitoringEnabled());
    QCOMPARE(device.batteryLevel(), 0.57f);

    const int width = size.width();
    const int height = size.height();
    QCOMPARE(delegate->window()->size(), size);
    QCOMPARE(delegate->statusBar()->geometry(), QRect(0, 0, width, 20));
    QCOMPARE(delegate->rootView()->geometry(), QRect(0, 20, width, height - 20));

    // The idiom's own root screen, filling the area under the band.
    QWidget *root = nullptr;
    if (LaunchIdiom::Kind(kind) == LaunchIdiom::Kind::Phone) {
        auto *phone = qobject_cast<MonitorAppDelegate_iPhone *>(delegate.get());
        QVERIFY(phone);
        root = phone->rootViewController();
        QVERIFY(qobject_cast<iPhoneRootViewController *>(root));
    } else {
        auto *tablet = qobject_cast<MonitorAppDelegate_iPad *>(delegate.get());
        QVERIFY(tablet);
        root = tablet->rootViewController();
        QVERIFY(qobject_cast<iPadRootViewController *>(root));
    }
    QCOMPARE(root->parentWidget(), delegate->rootView());
    QCOMPARE(root->geometry(), QRect(0, 0, width, height - 20));
    QVERIFY(root->isVisible());
    QCOMPARE(rootScreens(*delegate), 1);

    // Opaque black band edge to edge, and the root screen right under it.
    const QImage image = delegate->window()->grab().toImage();
    QCOMPARE(image.size(), size);
    for (const QPoint &point : {QPoint(0, 0), QPoint(width - 1, 0), QPoint(width / 2, 19), QPoint(width - 1, 19)})
        QCOMPARE(image.pixelColor(point), QColor(Qt::black));
    QVERIFY(image.pixelColor(width / 2, 20) != QColor(Qt::black));

    // Portrait only: the window manager cannot reshape it.
    delegate->window()->resize(size.height(), size.width());
    QCOMPARE(delegate->window()->size(), size);
}

void TestMonitorAppDelegate::monitoringFollowsApplicationState_data()
{
    QTest::addColumn<QList<int>>("steps");
    QTest::addColumn<QList<bool>>("monitoring");    // after each step

    QTest::newRow("hidden, then active again")
        << QList<int>{Hidden, Active} << QList<bool>{false, true};
    QTest::newRow("suspended, then active again")
        << QList<int>{Suspended, Active} << QList<bool>{false, true};
    QTest::newRow("losing focus is not the background")
        << QList<int>{Inactive, Active} << QList<bool>{true, true};
    QTest::newRow("minimised window")
        << QList<int>{Minimise, Restore} << QList<bool>{false, true};
    QTest::newRow("focus while minimised stays off")
        << QList<int>{Minimise, Active, Inactive, Active, Restore} << QList<bool>{false, false, false, false, true};
    QTest::newRow("hidden twice, active twice")
        << QList<int>{Hidden, Hidden, Active, Active} << QList<bool>{false, false, true, true};
    QTest::newRow("every return to the foreground")
        << QList<int>{Inactive, Hidden, Active, Inactive, Suspended, Active}
        << QList<bool>{true, false, true, true, false, true};
}

void TestMonitorAppDelegate::monitoringFollowsApplicationState()
{
    QFETCH(QList<int>, steps);
    QFETCH(QList<bool>, monitoring);

    Device device(laptop);
    MonitorAppDelegate_iPhone delegate(QSize(320, 480), &device);
    delegate.application(qApp, LaunchOptions());
    QVERIFY(device.isBatteryMonitoringEnabled());

    for (qsizetype i = 0; i < steps.size(); ++i) {
        apply(delegate, Step(steps[i]));
        QVERIFY2(device.isBatteryMonitoringEnabled() == monitoring[i], qPrintable(QStringLiteral("step %1").arg(i)));
        // Off means the battery reads unknown; on means the fixture's figure is back.
        QCOMPARE(device.batteryLevel(), monitoring[i] ? 0.57f : -1.0f);
    }
}

void TestMonitorAppDelegate::reactivationKeepsOneRootScreen_data()
{
    QTest::addColumn<int>("kind");

    QTest::newRow("phone") << int(LaunchIdiom::Kind::Phone);
    QTest::newRow("tablet") << int(LaunchIdiom::Kind::Tablet);
}

void TestMonitorAppDelegate::reactivationKeepsOneRootScreen()
{
    QFETCH(int, kind);

    Device device(laptop);
    const auto delegate = MonitorAppDelegate::create(LaunchIdiom::Kind(kind), QSize(320, 480), &device);
    delegate->application(qApp, LaunchOptions());
    QWidget *root = delegate->rootView()->findChild<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
    QVERIFY(root);

    for (Step step : {Hidden, Active, Minimise, Restore, Suspended, Active, Inactive, Active})
        apply(*delegate, step);
    // A launch message arriving twice must not stack a second root screen either.
    delegate->application(qApp, LaunchOptions());

    QCOMPARE(rootScreens(*delegate), 1);
    QCOMPARE(delegate->rootView()->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly).size(), 1);
    QCOMPARE(delegate->rootView()->findChild<QWidget *>(QString(), Qt::FindDirectChildrenOnly), root);
    QVERIFY(device.isBatteryMonitoringEnabled());
}

QTEST_MAIN(TestMonitorAppDelegate)
#include "tst_monitorappdelegate.moc"
