#include "ADControl.h"
#include "ADControlForiPad.h"
#include "Device.h"
#include "FixtureTree.h"
#include "GADBannerView.h"
#include "IdiomDelegate.h"
#include "LaunchIdiom.h"
#include "LaunchOptions.h"
#include "MonitorAppDelegate_iPad.h"
#include "ZoomView.h"

#include <QtTest>
#include <QtWidgets>

#include <array>
#include <cstring>

namespace {

const QString laptop = FixtureTree::path(QStringLiteral("power_supply/laptop-discharging"));

} // namespace

class TestMonitorAppDelegate : public QObject {
    Q_OBJECT

private Q_SLOTS:
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
        const auto delegate = IdiomDelegate::create(tablet ? LaunchIdiom::Kind::Tablet : LaunchIdiom::Kind::Phone,
                                                    window, &device);
        LaunchOptions options; // an ad server that refuses at once, on this machine
        options.adServer = QUrl(QStringLiteral("http://127.0.0.1:1/ads"));
        QVERIFY(delegate->application(qApp, options));
        QVERIFY(delegate->window()->isVisible() && device.isBatteryMonitoringEnabled());
        delegate->application(qApp, options); // a launch message arriving twice stacks nothing
        const ADControlBase *banners = tablet ? static_cast<ADControlBase *>(ADControlForiPad::defaultsADForiPad())
                                              : ADControl::defaultsAD();
        QCOMPARE(banners->adMobBanner()->serverUrl(), options.adServer);
        QVERIFY(!delegate->window()->windowIcon().pixmap(32).isNull());

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

    void monitoringFollowsState_data() { FixtureTree::addRows("app-monitoring.tsv", {"steps", "monitoring"}); }
    void monitoringFollowsState()
    {
        QFETCH(QString, steps);
        QFETCH(QString, monitoring);
        Device device(laptop);
        MonitorAppDelegate_iPad delegate(QSize(768, 1024), &device);
        delegate.application(qApp, LaunchOptions());
        const QMap<QChar, Qt::ApplicationState> states{{u'A', Qt::ApplicationActive},
                                                       {u'I', Qt::ApplicationInactive},
                                                       {u'H', Qt::ApplicationHidden},
                                                       {u'S', Qt::ApplicationSuspended}};
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

    // What happens to the window: Ctrl+Q, or an X event ("X <code> <whose window>") that
    // another client caused; the application ends when its window closes.
    void windowCloses_data() { FixtureTree::addRows("app-window-closes.tsv", {"event", "window"}); }
    void windowCloses()
    {
        QFETCH(QString, event);
        QFETCH(QString, window);
        Device device(laptop);
        MonitorAppDelegate delegate(QSize(320, 480), &device);
        delegate.application(qApp, LaunchOptions());
        if (event == u"Ctrl+Q") {
            delegate.window()->activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(delegate.window()));
            QTest::keyClick(delegate.window(), Qt::Key_Q, Qt::ControlModifier);
        } else {
            const QStringList x = event.split(u' ');
            std::array<quint8, 32> bytes{quint8(x[1].toUInt())};
            const quint32 id = quint32(delegate.window()->winId()) + (x[2] == u"ours" ? 0 : 1);
            std::memcpy(bytes.data() + 8, &id, sizeof id);
            qintptr result = 0;
            QAbstractEventDispatcher::instance()->filterNativeEvent("xcb_generic_event_t", bytes.data(), &result);
        }
        QCoreApplication::processEvents();
        QCOMPARE(QString::fromLatin1(delegate.window()->isVisible() ? "open" : "closed"), window);
    }
};

QTEST_MAIN(TestMonitorAppDelegate)
#include "tst_monitorappdelegate.moc"
