#include "FixtureTree.h"
#include "GADBannerView.h"
#include "GADBannerViewDelegate.h"
#include "LoopbackHttpServer.h"
#include "RenderProbe.h"

#include <QtGui>
#include <QtNetwork>
#include <QtTest>

// The ad network's banner against servers that answer well, badly or not at all.
namespace {

using E = GADRequestError;
const QColor Red(255, 0, 0);
constexpr int Arrival = -1; // in a recorder's codes, beside the error codes

// Every callback of a banner, in order.
struct Recorder : GADBannerViewDelegate {
    void adViewDidReceiveAd(GADBannerView *view) override { views << view, codes << Arrival; }
    void adView(GADBannerView *view, const GADRequestError &error) override { views << view, codes << error.code; }
    QList<GADBannerView *> views;
    QList<int> codes;
};
using Banner = std::pair<std::unique_ptr<GADBannerView>, std::unique_ptr<Recorder>>;

bool waitFor(const std::function<bool()> &condition, int ms = 5000)
{
    const QDeadlineTimer deadline(ms);
    while (!condition() && !deadline.hasExpired())
        QTest::qWait(1);
    return condition();
}

QByteArray table(const QString &name)
{
    QFile file(FixtureTree::tablePath(qPrintable(name)));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray fixture(const QString &name)
{
    QFile file(FixtureTree::path(QStringLiteral("banner/") + name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// What a server answers a banner on show with, what the banner then shows, and a click on it.
struct Answer {
    QString server;
    int code = Arrival;
    QSize imageSize = {640, 100};
    QPoint painted = {160, 25}, unpainted = {}; // unpainted: outside the scaled image, or (0, 0)
    int timeoutMs = 3000;
    Qt::MouseButton button = Qt::LeftButton;
    QPoint press = {160, 25}, release = {160, 25}; // a left click released inside opens the address
};

} // namespace

Q_DECLARE_METATYPE(Answer)

class TestGADBannerView : public QObject {
    Q_OBJECT

    LoopbackHttpServer _server;
    QList<QUrl> _opened;
    std::vector<Banner> _kept;
    const QByteArray _png = fixture(QStringLiteral("red-640x100.png"));

    // Banner descriptions, with "$" for the server's address until resolved.
    static QByteArray description(const QByteArray &image, const QByteArray &more = "")
    {
        return "{\"image\": \"" + image + "\", \"click\": \"$/click/new\"" + more + '}';
    }
    QByteArray resolved(QByteArray json) const { return json.replace('$', _server.url({}).toEncoded()); }
    void routeBanner(const QByteArray &server, const QByteArray &json)
    {
        _server.routeReply(server + "/v1/banner", resolved(json));
    }
    Banner banner(const QString &server, int timeoutMs = 5000, int msPerSecond = 1000)
    {
        Banner made{std::make_unique<GADBannerView>(QRect(0, 0, 320, 50)), std::make_unique<Recorder>()};
        made.first->applicationStateChanged(Qt::ApplicationActive);
        made.first->setAdUnitID(QStringLiteral("c0ffee000000001"));
        made.first->setServerUrl(server.startsWith(u"http") ? QUrl(server) : _server.url(server.toLatin1()));
        made.first->setTiming({timeoutMs, msPerSecond});
        made.first->setDelegate(made.second.get());
        return made;
    }

public Q_SLOTS:
    void open(const QUrl &url) { _opened << url; } // the user's browser

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(_server.listen(QHostAddress::LocalHost));
        for (const char *scheme : {"http", "https", "file", "javascript"})
            QDesktopServices::setUrlHandler(QLatin1String(scheme), this, "open");
        for (const QString &name : QDir(FixtureTree::path(QStringLiteral("banner"))).entryList(QDir::Files))
            _server.routeReply("/banner/" + name.toLatin1(), fixture(name));
        routeBanner("/shown", description("$/banner/red-640x100.png").replace("/click/new", "/click/shown"));
    }
    void init() { _opened.clear(); }
    void cleanupTestCase()
    {
        for (const char *scheme : {"http", "https", "file", "javascript"})
            QDesktopServices::unsetUrlHandler(QLatin1String(scheme));
    }

    void answers_data()
    {
        QTest::addColumn<Answer>("answer");
        _server.routeReply("/full.png", _png + QByteArray(GADBannerView::MaxImageBytes - _png.size(), '\0'));
        QByteArray full = resolved(description("$/full.png"));
        routeBanner("/full", full.insert(1, QByteArray(GADBannerView::MaxResponseBytes - full.size(), ' ')));
        routeBanner("/jpeg", description("$/banner/red-640x100.jpg"));
        routeBanner("/gif", description("$/banner/red-1x1.gif"));
        routeBanner("/deep/prefix", description("$/banner/red-640x100.png"));
        const QByteArray moved = "Location: " + _server.url("/deep/prefix/v1/banner").toEncoded() + "\r\n";
        _server.route("/moved/v1/banner", [moved](QTcpSocket *socket, const QByteArray &) {
            LoopbackHttpServer::reply(socket, "302 Found", {}, moved);
        });
        QTest::newRow("PNG of exactly 1 MiB in JSON of exactly 64 KiB fills the banner")
            << Answer{.server = "/full", .painted = {2, 2}};
        QTest::newRow("JPEG; a right click opens nothing") << Answer{.server = "/jpeg", .button = Qt::RightButton};
        QTest::newRow("GIF of one pixel, scaled up square and centred; a click beside it opens the address") << Answer{
            .server = "/gif", .imageSize = {1, 1}, .unpainted = {100, 25}, .press = {319, 49}, .release = {319, 49}};
        QTest::newRow("server address with a path prefix; a drag off the bottom opens nothing")
            << Answer{.server = "/deep/prefix", .painted = {317, 47}, .press = {100, 20}, .release = {100, 50}};
        QTest::newRow("server address with a trailing slash; a drag off the left opens nothing")
            << Answer{.server = "/deep/prefix/", .press = {100, 20}, .release = {-1, 20}};
        QTest::newRow("a redirect") << Answer{.server = "/moved"};

        // Each refused answer at a path of its own: /<n>/v1/banner, and /<n>/image for its image.
        int rows = 0;
        const auto add = [&](const char *name, const QByteArray &json, int code, LoopbackHttpServer::Handler image = {},
                             int timeoutMs = 3000) {
            const QByteArray path = '/' + QByteArray::number(++rows);
            routeBanner(path, QByteArray(json).replace("$/image", "$" + path + "/image"));
            _server.route(
                path + "/image", image ? image : [](QTcpSocket *s, const QByteArray &) {
                    LoopbackHttpServer::reply(s, "404 Not Found", {});
                });
            QTest::newRow(name) << Answer{.server = QString::fromLatin1(path), .code = code, .timeoutMs = timeoutMs};
        };
        const QStringList codeNames = {"NotConfigured", "NetworkError", "ServerError", "InvalidResponse",
                                       "InvalidImage",  "Timeout",      "TooLarge"};
        for (const QByteArray &line : table(QStringLiteral("refused.tsv")).trimmed().split('\n')) {
            const QList<QByteArray> row = line.split('\t'); // name, code, the JSON the server sends
            add(row.value(0).constData(), row.value(2), codeNames.indexOf(QString::fromLatin1(row.value(1))));
        }
        const E::Code codes[] = {E::Timeout, E::TooLarge, E::TooLarge, E::ServerError, E::NetworkError};
        for (const HostileServer &hostile : HostileServer::all()) {
            const int timeoutMs = hostile.refusal == HostileServer::Timeout ? 80 : 3000;
            add(qPrintable(QStringLiteral("server %1").arg(hostile.name)), "{}", codes[hostile.refusal], {}, timeoutMs);
            _server.route('/' + QByteArray::number(rows) + "/v1/banner",
                          hostile.serving(resolved(description("$/banner/red-640x100.png"))));
            add(qPrintable(QStringLiteral("image server %1").arg(hostile.name)), description("$/image"),
                codes[hostile.refusal], hostile.serving(_png), timeoutMs);
        }
        QTest::newRow("connection refused") << Answer{.server = "http://127.0.0.1:1", .code = E::NetworkError};
    }
    void answers()
    {
        QFETCH(Answer, answer);
        Banner b = banner(QStringLiteral("/shown"));
        b.first->loadRequest({});
        QVERIFY(waitFor([&] { return !b.second->codes.isEmpty(); }));
        const QImage shown = b.first->image();
        b.first->setServerUrl(answer.server.startsWith(u"http") ? QUrl(answer.server)
                                                                : _server.url(answer.server.toLatin1()));
        b.first->setTiming({answer.timeoutMs, 1000});
        b.first->loadRequest({});
        QVERIFY(waitFor([&] { return b.second->codes.size() > 1; }, answer.timeoutMs + 1000));
        QCOMPARE(b.second->codes, (QList<int>{Arrival, answer.code}));
        QCOMPARE(b.second->views.last(), b.first.get());
        const QByteArray path = answer.server.toLatin1() + (answer.server.endsWith(u'/') ? "" : "/") + "v1/banner";
        QVERIFY(answer.server.startsWith(u"http")
                || _server.requests(path).value(0).target == path + "?unit=c0ffee000000001&w=320&h=50");

        // A refused answer leaves the banner on show, and a click opens the address of the one on show.
        QVERIFY(answer.code == Arrival || b.first->image() == shown);
        QCOMPARE(b.first->image().size(), answer.code == Arrival ? answer.imageSize : shown.size());
        const QImage shot = b.first->grab().toImage();
        const QColor inside = RenderProbe::at(shot, answer.painted.x(), answer.painted.y());
        QVERIFY2(RenderProbe::near(inside, Red, 40), qPrintable(RenderProbe::describe(inside)));
        QVERIFY(answer.unpainted.isNull()
                || !RenderProbe::near(RenderProbe::at(shot, answer.unpainted.x(), answer.unpainted.y()), Red, 60));
        QTest::mousePress(b.first.get(), answer.button, {}, answer.press);
        QTest::mouseRelease(b.first.get(), answer.button, {}, answer.release);
        const bool opens = answer.button == Qt::LeftButton && b.first->rect().contains(answer.release);
        QCOMPARE(_opened,
                 opens ? QList<QUrl>{_server.url(answer.code == Arrival ? "/click/new" : "/click/shown")}
                       : QList<QUrl>{});
        // From the keyboard, whatever the mouse did: Return opens the banner on show.
        _opened.clear();
        QCOMPARE(b.first->focusPolicy(), Qt::TabFocus);
        QTest::keyClick(b.first.get(), Qt::Key_Return);
        QCOMPARE(_opened, QList<QUrl>{_server.url(answer.code == Arrival ? "/click/new" : "/click/shown")});
        _kept.push_back(std::move(b)); // see noSecondCallback()
    }

    void schedule()
    {
        // All at once, each at so many ms a second; from one request to the next.
        const struct {
            const char *name, *refresh;
            int msPerSecond, seconds;
        } cases[] = {
            {"refresh 40 is taken as given", ", \"refresh\": 40", 3, 40},
            {"refresh 1 is raised to 30", ", \"refresh\": 1", 3, 30},
            {"refresh 1000 is cut to 300", ", \"refresh\": 1000", 1, 300},
            {"refresh missing means 60", "", 3, 60},
            {"a failure is retried after 60", nullptr, 3, 60},
        };
        std::vector<Banner> banners;
        const auto asked = [this](size_t i) {
            return _server.requests("/refresh/" + QByteArray::number(i) + "/v1/banner");
        };
        for (const auto &c : cases) {
            const QByteArray path = "/refresh/" + QByteArray::number(banners.size());
            _server.routeReply(path + "/v1/banner", resolved(description("$/banner/red-640x100.png", c.refresh)),
                               c.refresh ? "200 OK" : "500 Internal Server Error");
            banners.push_back(banner(QString::fromLatin1(path), 5000, c.msPerSecond));
            banners.back().first->loadRequest({});
        }
        QVERIFY(waitFor([&] {
            return asked(0).size() > 1 && asked(1).size() > 1 && asked(2).size() > 1 && asked(3).size() > 1
                && asked(4).size() > 1;
        }));
        for (size_t i = 0; i < banners.size(); ++i) {
            const qint64 gap = asked(i).at(1).atMs - asked(i).at(0).atMs,
                         expected = cases[i].seconds * cases[i].msPerSecond;
            QVERIFY2(gap >= expected * 0.85 && gap <= expected * 2 + 300,
                     qPrintable(QStringLiteral("%1: %2 ms").arg(cases[i].name).arg(gap)));
        }
    }

    void pause()
    {
        // refresh 30 at 3 ms a second: due 90 ms after an answer.
        routeBanner("/pause", description("$/banner/red-640x100.png"));
        const auto asked = [this] { return _server.requests("/pause/v1/banner"); };
        const Banner b = banner(QStringLiteral("/pause"), 5000, 3);
        // Loaded while the application is inactive: not even a network manager yet.
        b.first->applicationStateChanged(Qt::ApplicationInactive);
        b.first->loadRequest({});
        QVERIFY(b.first->findChildren<QNetworkAccessManager *>().isEmpty()
                && !b.first->testAttribute(Qt::WA_SetCursor));
        b.first->applicationStateChanged(Qt::ApplicationActive);
        QVERIFY(waitFor([&] { return !b.second->codes.isEmpty(); }));
        QCOMPARE(b.first->cursor().shape(), Qt::PointingHandCursor);
        // Paused briefly: the remaining time runs on.
        b.first->applicationStateChanged(Qt::ApplicationInactive);
        b.first->applicationStateChanged(Qt::ApplicationActive);
        QVERIFY(waitFor([&] { return b.second->codes.size() == 2; }));
        QVERIFY2(asked()[1].atMs - asked()[0].atMs >= 75,
                 qPrintable(QString::number(asked()[1].atMs - asked()[0].atMs)));
        // Paused past the due time: nothing until the application is active again, then at once.
        b.first->applicationStateChanged(Qt::ApplicationInactive);
        QVERIFY(waitFor([&] { return _server.elapsedMs() > asked()[1].atMs + 150; }));
        QCOMPARE(asked().size(), 2);
        const qint64 activated = _server.elapsedMs();
        b.first->applicationStateChanged(Qt::ApplicationActive);
        QVERIFY(waitFor([&] { return asked().size() == 3; }));
        QVERIFY2(asked()[2].atMs - activated < 60, qPrintable(QString::number(asked()[2].atMs - activated)));
    }

    void notConfigured_data() { FixtureTree::addRows("parked.tsv", {"server", "unit"}); }
    void notConfigured()
    {
        QFETCH(QString, server);
        QFETCH(QString, unit);
        Banner b = banner(server, 5000, 1); // a retry would come 60 ms later
        b.first->setServerUrl(QUrl(server.replace(u'$', _server.url({}).authority())));
        b.first->setAdUnitID(unit);
        b.first->loadRequest({});
        b.first->setDelegate(nullptr); // hears nothing, and nothing breaks
        QCoreApplication::processEvents();
        // Told once, through the event loop, whoever is the delegate by then; the first load's failure is dropped.
        Recorder first;
        b.first->setDelegate(&first);
        b.first->loadRequest({});
        b.first->loadRequest({});
        b.first->setDelegate(b.second.get());
        QVERIFY(waitFor([&] { return !b.second->codes.isEmpty(); }));
        QCOMPARE(b.second->codes, QList<int>{E::NotConfigured});
        QVERIFY(first.codes.isEmpty() && b.first->findChildren<QNetworkAccessManager *>().isEmpty());
        // Nor does becoming active again wake a parked banner.
        b.first->applicationStateChanged(Qt::ApplicationInactive);
        b.first->applicationStateChanged(Qt::ApplicationActive);
        _kept.push_back(std::move(b));
    }

    void noSecondCallback()
    {
        // One wait for all the banners kept above, past their time-outs and a parked banner's retry:
        // each was told once more after its banner on show, if it had one.
        QTest::qWait(200);
        for (const Banner &b : _kept)
            QCOMPARE(b.second->codes.size(), b.second->codes.first() == Arrival ? 2 : 1);
        QVERIFY(_server.requests("/parked/v1/banner").isEmpty());
    }
};

QTEST_MAIN(TestGADBannerView)
#include "tst_gadbannerview.moc"
