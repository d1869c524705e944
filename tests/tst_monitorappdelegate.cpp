#include "ADControl.h"
#include "ADControlForiPad.h"
#include "Device.h"
#include "FixtureTree.h"
#include "GADBannerView.h"
#include "MetricsServer.h"
#include "MonitorAppDelegate_iPad.h"
#include "StatCore.h"
#include "TerminationSignals.h"
#include "iPadRootViewController.h"
#include "iPhoneRootViewController.h"

#include <QtNetwork>
#include <QtWidgets>

#include <array>
#include <csignal>
#include <cstring>

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
    void commandLine_data() { FixtureTree::addRows("app-tables/app-command-line.tsv", {"arguments", "variable", "idiom", "adServer", "verdict", "metrics"}); }
    void commandLine()
    {
        QFETCH(QString, arguments);
        QFETCH(QString, variable);
        QFETCH(QString, idiom);
        QFETCH(QString, adServer);
        QFETCH(QString, verdict);
        QFETCH(QString, metrics);
        QProcessEnvironment environment;
        environment.insert(QStringLiteral("KOVAR_AD_SERVER"), variable);
        const LaunchOptions options = LaunchOptions::parse(QStringList{"kovar"} + arguments.split(u' ', Qt::SkipEmptyParts), environment);
        QCOMPARE(options.idiom, ::idiom(idiom));
        QCOMPARE(options.adServer.toString(), adServer);
        QCOMPARE(QString::fromLatin1(options.error.isEmpty() ? "accepted" : "refused"), verdict);
        QCOMPARE(options.serveMetrics ? options.metricsAddress + u' ' + QString::number(options.metricsPort) : QString(),
                 metrics);
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
        LaunchOptions options; // an ad server that refuses at once, on this machine
        options.adServer = QUrl(QStringLiteral("http://127.0.0.1:1/ads"));
        QVERIFY(delegate->application(qApp, options));
        QVERIFY(delegate->window()->isVisible() && device.isBatteryMonitoringEnabled());
        delegate->application(qApp, options); // a launch message arriving twice stacks nothing
        const ADControlBase *banners = tablet ? static_cast<ADControlBase *>(ADControlForiPad::defaultsADForiPad()) : ADControl::defaultsAD();
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

    // What happens to the window: Ctrl+Q, or an X event ("X <code> <whose window>") that
    // another client caused; the application ends when its window closes.
    void windowCloses_data() { FixtureTree::addRows("app-tables/app-window-closes.tsv", {"event", "window"}); }
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

    void signalEndsEventLoop_data()
    {
        QTest::addColumn<int>("signalNumber");
        QTest::newRow("SIGTERM") << SIGTERM;
        QTest::newRow("SIGINT, as Ctrl+C sends") << SIGINT;
    }
    void signalEndsEventLoop()
    {
        QFETCH(int, signalNumber);
        const TerminationSignals ending;
        QTimer::singleShot(0, [signalNumber] { std::raise(signalNumber); });
        QTimer stuck; // bounds the wait for a loop that the signal failed to end
        stuck.callOnTimeout([] { QCoreApplication::exit(1); });
        stuck.start(5000);
        QCOMPARE(QCoreApplication::exec(), 0); // as a quit ends it, for the same teardown
    }

    // Each kind of client is closed when its time is up and not before: the deadlines are
    // short here, and each check waits for its condition.
    void metricsConnectionsEnd()
    {
        const QString tree = FixtureTree::path(QStringLiteral("proc-x86-laptop"));
        StatCore core(tree, tree, 4096, SystemInfoReader::SystemCalls{}, NetworkInfoReader::Seams{});
        QLoggingCategory::setFilterRules(QStringLiteral("kovar.stats*.warning=false"));
        MetricsServer server(core, nullptr);
        QVERIFY(server.start(QHostAddress::LocalHost, 0, {8, 1024, 400, 1200, 25}));
        const quint16 port = server.listener()->serverPort();
        const QByteArray get = "GET /metrics HTTP/1.1\r\nHost: kovar\r\n\r\n";
        QTcpSocket answered, quiet, silent, partial;
        for (QTcpSocket *client : {&answered, &quiet, &silent, &partial}) {
            client->connectToHost(QHostAddress::LocalHost, port);
            QVERIFY(client->waitForConnected(2000));
            connect(client, &QIODevice::readyRead, client, [client] { client->readAll(); });
        }
        quiet.write(get);
        partial.write("GET /met");
        QTimer again; // a scraper that keeps asking
        connect(&again, &QTimer::timeout, &answered, [&] { answered.write(get); });
        again.start(100);
        const auto open = [](const QTcpSocket &client) { return client.state() == QAbstractSocket::ConnectedState; };
        QTRY_VERIFY_WITH_TIMEOUT(!open(silent) && !open(partial), 3000);
        QVERIFY(open(quiet) && open(answered));
        QTRY_VERIFY_WITH_TIMEOUT(!open(quiet), 5000);
        QVERIFY(open(answered));
        // Eight at most: beside the scraper, seven more are let in and the eighth is closed at once.
        std::array<QTcpSocket, 8> crowd;
        for (QTcpSocket &client : crowd)
            client.connectToHost(QHostAddress::LocalHost, port);
        const auto closed = [](const QTcpSocket &client) { return client.state() == QAbstractSocket::UnconnectedState; };
        QTRY_COMPARE_WITH_TIMEOUT(std::count_if(crowd.begin(), crowd.end(), closed), 1, 3000);
        QCOMPARE(std::count_if(crowd.begin(), crowd.end(), open), 7);
    }
};

QTEST_MAIN(TestMonitorAppDelegate)
#include "tst_monitorappdelegate.moc"
