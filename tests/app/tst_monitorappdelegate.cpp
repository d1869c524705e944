#include "ADControl.h"
#include "ADControlForiPad.h"
#include "Device.h"
#include "FixtureTree.h"
#include "GADBannerView.h"
#include "IdiomDelegate.h"
#include "LaunchIdiom.h"
#include "LaunchOptions.h"
#include "MonitorAppDelegate_iPad.h"
#include "MonitorAppDelegate_iPhone.h"
#include "PagingScrollView.h"
#include "ZoomView.h"
#include "iPhoneRootViewController.h"

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
        // A window made wide shows the portrait screen zoomed to its height, centred on black.
        delegate->window()->resize(window.height(), window.width());
        QCOMPARE(delegate->window()->size(), window.transposed());
        QCOMPARE(delegate->window()->zoom(), qreal(window.width()) / window.height());
        const QImage wide = delegate->window()->grab().toImage();
        const int margin = (window.height() - window.width() * window.width() / window.height()) / 2;
        QCOMPARE(wide.pixelColor(margin / 2, window.width() / 2), QColor(Qt::black));
        QVERIFY(wide.pixelColor(margin + 20, window.width() / 2) != QColor(Qt::black));
        QCOMPARE(wide.pixelColor(window.height() - margin / 2, window.width() / 2), QColor(Qt::black));
    }

    // The zoom keys and the wheel, on a phone window in the offscreen screen: "Ctrl+=" for
    // Ctrl+Plus, "wheel:N" for Ctrl+wheel by N eighths of a degree, "resize:WxH" for the
    // window manager's resizing; then the zoom, the window's size and the page that Right
    // turns to (keys still reach the screen's widgets).
    void zoom_data() { FixtureTree::addRows("app-zoom.tsv", {"inputs", "zoom", "window", "page"}); }
    void zoom()
    {
        QFETCH(QString, inputs);
        QFETCH(QString, zoom);
        QFETCH(QString, window);
        QFETCH(QString, page);
        Device device(laptop);
        MonitorAppDelegate_iPhone delegate(QSize(320, 480), &device);
        delegate.application(qApp, LaunchOptions());
        ZoomView *view = delegate.window();
        view->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(view));
        for (const QString &input : inputs.split(u' ', Qt::SkipEmptyParts)) {
            if (input.startsWith(u"resize:")) {
                view->resize(QSize(input.section(u':', 1).section(u'x', 0, 0).toInt(), input.section(u'x', 1).toInt()));
            } else if (input.startsWith(u"wheel:")) {
                const QPointF at(view->width() / 2, view->height() / 2);
                QWheelEvent wheel(at, view->mapToGlobal(at), QPoint(), QPoint(0, input.section(u':', 1).toInt()),
                                  Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase, false);
                QApplication::sendEvent(view->viewport(), &wheel);
            } else {
                QTest::keySequence(view, QKeySequence::fromString(input));
            }
        }
        QCOMPARE(qRound(view->zoom() * 100), zoom.toInt());
        QCOMPARE(QStringLiteral("%1x%2").arg(view->width()).arg(view->height()), window);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
        QTRY_COMPARE(QString::number(delegate.rootViewController()->mainScrollView()->targetPage()), page);
    }

    // The screen at 150 % is the screen at 100 % with every frame half as large again: where
    // the picture at 100 % is flat, the one at 150 % has the same colour at 1.5 times the place.
    void framesScaleWithZoom()
    {
        Device device(laptop);
        MonitorAppDelegate_iPhone delegate(QSize(320, 480), &device);
        delegate.application(qApp, LaunchOptions());
        ZoomView *view = delegate.window();
        const QImage plain = view->grab().toImage();
        view->resize(480, 720);
        QCOMPARE(view->zoom(), 1.5);
        const QImage zoomed = view->grab().toImage();
        QCOMPARE(zoomed.size(), QSize(480, 720));
        int compared = 0;
        for (int y = 2; y < 478; y += 6) {
            for (int x = 2; x < 318; x += 6) {
                const QRgb c = plain.pixel(x, y);
                bool flat = true;
                for (int dy = -2; dy <= 2 && flat; ++dy)
                    for (int dx = -2; dx <= 2 && flat; ++dx)
                        flat = plain.pixel(x + dx, y + dy) == c;
                if (!flat)
                    continue;
                ++compared;
                const QColor z = zoomed.pixelColor(int((x + 0.5) * 1.5), int((y + 0.5) * 1.5));
                QVERIFY2(std::abs(z.red() - qRed(c)) + std::abs(z.green() - qGreen(c)) + std::abs(z.blue() - qBlue(c))
                             <= 12,
                         qPrintable(QStringLiteral("at %1,%2").arg(x).arg(y)));
            }
        }
        QVERIFY(compared > 500);
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
