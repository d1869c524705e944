#include "GADBannerView.h"
#include "GADBannerViewDelegate.h"
#include "LoopbackHttpServer.h"
#include "RenderProbe.h"

#include <QBuffer>
#include <QDesktopServices>
#include <QMouseEvent>
#include <QNetworkAccessManager>
#include <QRegularExpression>
#include <QTcpSocket>
#include <QTest>

namespace {

using Request = LoopbackHttpServer::Request;

const QColor BannerRed(255, 0, 0);

// Remembers every callback, with the server's clock, so that tests can check order and timing.
class RecordingDelegate : public GADBannerViewDelegate
{
public:
    explicit RecordingDelegate(const LoopbackHttpServer *clock = nullptr)
        : m_clock(clock)
    {
    }

    void adViewDidReceiveAd(GADBannerView *view) override
    {
        arrivals.append(view);
        arrivalTimes.append(now());
    }
    void adView(GADBannerView *view, const GADRequestError &error) override
    {
        failingViews.append(view);
        failures.append(error.code);
        descriptions.append(error.localizedDescription);
        failureTimes.append(now());
    }

    QList<GADBannerView *> arrivals;
    QList<qint64> arrivalTimes;
    QList<GADBannerView *> failingViews;
    QList<GADRequestError::Code> failures;
    QStringList descriptions;
    QList<qint64> failureTimes;

private:
    qint64 now() const { return m_clock ? m_clock->elapsedMs() : 0; }
    const LoopbackHttpServer *m_clock;
};

// A left press and release in the middle of a 320 x 50 banner.
void clickCentre(QWidget *banner)
{
    const QPointF centre(160, 25);
    QMouseEvent down(QEvent::MouseButtonPress, centre, banner->mapToGlobal(centre), Qt::LeftButton, Qt::LeftButton,
                     Qt::NoModifier);
    QCoreApplication::sendEvent(banner, &down);
    QMouseEvent up(QEvent::MouseButtonRelease, centre, banner->mapToGlobal(centre), Qt::LeftButton, Qt::NoButton,
                   Qt::NoModifier);
    QCoreApplication::sendEvent(banner, &up);
}

QByteArray encoded(const QImage &image, const char *format)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes;
}

QImage solid(int width, int height, const QColor &color)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(color);
    return image;
}

// Qt writes no GIF, so this one is made by hand: one red pixel.
QByteArray redPixelGif()
{
    static const unsigned char bytes[] = {
        'G', 'I', 'F', '8', '9', 'a', 1, 0, 1, 0, 0x80, 0, 0,  // screen 1 x 1, 2-colour table
        0xff, 0, 0, 0, 0, 0,                                   // red, black
        0x2c, 0, 0, 0, 0, 1, 0, 1, 0, 0,                       // image 1 x 1 at 0, 0
        2, 2, 0x44, 0x01, 0,                                   // LZW: clear, index 0, end
        0x3b};
    return QByteArray(reinterpret_cast<const char *>(bytes), sizeof bytes);
}

quint32 crc32(const QByteArray &data)
{
    quint32 crc = 0xffffffffu;
    for (const char byte : data) {
        crc ^= quint8(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ (0xedb88320u & (0u - (crc & 1u)));
    }
    return ~crc;
}

QByteArray bigEndian(quint32 value)
{
    return QByteArray(1, char(value >> 24)) + char(value >> 16) + char(value >> 8) + char(value);
}

QByteArray pngChunk(const QByteArray &type, const QByteArray &data)
{
    const QByteArray chunk = type + data;
    return bigEndian(quint32(data.size())) + chunk + bigEndian(crc32(chunk));
}

// A well-formed PNG head claiming the given size, with a token of pixel data: decoding it
// would need the memory that the size claims.
QByteArray pngHeaderOnly(quint32 width, quint32 height)
{
    return QByteArray("\x89PNG\r\n\x1a\n", 8)
        + pngChunk("IHDR", bigEndian(width) + bigEndian(height) + QByteArray("\x08\x06\x00\x00\x00", 5))
        + pngChunk("IDAT", QByteArray("\x78\x9c\x03\x00\x00\x00\x00\x01", 8)) + pngChunk("IEND", QByteArray());
}

} // namespace

// Stands in for the user's browser.
class OpenedUrls : public QObject
{
    Q_OBJECT

public:
    QList<QUrl> urls;

public Q_SLOTS:
    void open(const QUrl &url) { urls.append(url); }
};

class TestGADBannerView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void goodBanner_data();
    void goodBanner();
    void clicks_data();
    void clicks();
    void nothingBeforeTheFirstBanner();
    void badInput_data();
    void badInput();
    void schedule_data();
    void schedule();
    void pause_data();
    void pause();
    void loadWhileInactiveWaits();
    void newLoadAbortsTheRunningOne();
    void delegateIsReadAtDelivery();
    void notConfigured_data();
    void notConfigured();
    void buildConfiguration();

private:
    QString jsonFor(const QString &image, const QString &click, const QString &refresh = QStringLiteral("30")) const;
    void routeBanner(const QByteArray &name, const QByteArray &json);
    GADBannerView::Timing fastTiming(int requestTimeoutMs = 5000, int msPerSecond = 1000) const;
    // A banner told that the application is active, so that its schedule runs.
    std::unique_ptr<GADBannerView> makeBanner(const QString &prefix, RecordingDelegate *delegate,
                                              const GADBannerView::Timing &timing, QSize size = QSize(320, 50));

    LoopbackHttpServer m_server;
    OpenedUrls m_opened;
};

QString TestGADBannerView::jsonFor(const QString &image, const QString &click, const QString &refresh) const
{
    QString json = QStringLiteral("{\"image\": %1, \"click\": %2").arg(image, click);
    if (!refresh.isEmpty())
        json += QStringLiteral(", \"refresh\": %1").arg(refresh);
    return json + QLatin1Char('}');
}

void TestGADBannerView::routeBanner(const QByteArray &name, const QByteArray &json)
{
    m_server.routeReply("/" + name + "/v1/banner", "200 OK", json, "application/json");
}

GADBannerView::Timing TestGADBannerView::fastTiming(int requestTimeoutMs, int msPerSecond) const
{
    GADBannerView::Timing timing;
    timing.requestTimeoutMs = requestTimeoutMs;
    timing.msPerSecond = msPerSecond;
    return timing;
}

std::unique_ptr<GADBannerView> TestGADBannerView::makeBanner(const QString &prefix, RecordingDelegate *delegate,
                                                             const GADBannerView::Timing &timing, QSize size)
{
    auto banner = std::make_unique<GADBannerView>(QRect(QPoint(0, 0), size));
    banner->applicationStateChanged(Qt::ApplicationActive);
    banner->setAdUnitID(QStringLiteral("c0ffee000000001"));
    banner->setServerUrl(prefix.startsWith(QLatin1String("http")) ? QUrl(prefix) : m_server.url(prefix));
    banner->setTiming(timing);
    banner->setDelegate(delegate);
    return banner;
}

void TestGADBannerView::initTestCase()
{
    QVERIFY(m_server.start());
    const auto url = [this](const char *path) { return QLatin1Char('"') + m_server.url(QLatin1String(path)).toString() + QLatin1Char('"'); };
    const QString click = url("/click/1");

    m_server.routeReply("/img/red-640x100.png", "200 OK", encoded(solid(640, 100, BannerRed), "PNG"), "image/png");
    m_server.routeReply("/img/red-640x100.jpg", "200 OK", encoded(solid(640, 100, BannerRed), "JPEG"), "image/jpeg");
    m_server.routeReply("/img/red-1x1.gif", "200 OK", redPixelGif(), "image/gif");
    m_server.routeReply("/img/text", "200 OK", "this is not an image", "image/png");
    m_server.routeReply("/img/red.bmp", "200 OK", encoded(solid(64, 10, BannerRed), "BMP"), "image/bmp");
    m_server.routeReply("/img/wide.png", "200 OK", pngHeaderOnly(100000, 50), "image/png");
    m_server.routeReply("/img/tall.png", "200 OK", pngHeaderOnly(320, 4097), "image/png");
    QByteArray overCap = encoded(solid(640, 100, BannerRed), "PNG");
    overCap += QByteArray(GADBannerView::MaxImageBytes + 1 - overCap.size(), '\0');
    m_server.routeReply("/img/over-cap.png", "200 OK", overCap, "image/png");
    m_server.route("/img/over-cap-chunked.png", [overCap](QTcpSocket *socket, const Request &) {
        LoopbackHttpServer::replyChunked(socket, overCap, "image/png");
    });
    m_server.route("/img/silent.png", [](QTcpSocket *, const Request &) {});
    // Announces more than the cap, then sends nothing: only the announcement can end it early.
    m_server.route("/img/announces-2mib.png", [](QTcpSocket *socket, const Request &) {
        socket->write("HTTP/1.1 200 OK\r\nContent-Type: image/png\r\nContent-Length: 2097152\r\n\r\n");
    });

    routeBanner("png", jsonFor(url("/img/red-640x100.png"), click).toUtf8());
    routeBanner("jpeg", jsonFor(url("/img/red-640x100.jpg"), click).toUtf8());
    routeBanner("gif", jsonFor(url("/img/red-1x1.gif"), QStringLiteral("\"https://127.0.0.1:1/click/2\"")).toUtf8());
    routeBanner("deep/prefix", jsonFor(url("/img/red-640x100.png"), click).toUtf8());

    const QString png = url("/img/red-640x100.png");
    m_server.routeReply("/status-500/v1/banner", "500 Internal Server Error", "{}", "application/json");
    routeBanner("not-json", "<html>hello</html>");
    routeBanner("json-array", "[\"image\", \"click\"]");
    routeBanner("no-image", QStringLiteral("{\"click\": %1, \"refresh\": 30}").arg(click).toUtf8());
    routeBanner("image-number", jsonFor(QStringLiteral("5"), click).toUtf8());
    routeBanner("image-data", jsonFor(QStringLiteral("\"data:image/png;base64,iVBORw0KGgo=\""), click).toUtf8());
    routeBanner("image-relative", jsonFor(QStringLiteral("\"/img/red-640x100.png\""), click).toUtf8());
    routeBanner("no-click", QStringLiteral("{\"image\": %1, \"refresh\": 30}").arg(png).toUtf8());
    routeBanner("click-javascript", jsonFor(png, QStringLiteral("\"javascript:alert(1)\"")).toUtf8());
    routeBanner("click-file", jsonFor(png, QStringLiteral("\"file:///click.html\"")).toUtf8());
    routeBanner("click-relative", jsonFor(png, QStringLiteral("\"/click/1\"")).toUtf8());
    routeBanner("refresh-string", jsonFor(png, click, QStringLiteral("\"30\"")).toUtf8());
    routeBanner("refresh-null", jsonFor(png, click, QStringLiteral("null")).toUtf8());
    routeBanner("image-404", jsonFor(url("/img/missing.png"), click).toUtf8());
    routeBanner("image-text", jsonFor(url("/img/text"), click).toUtf8());
    routeBanner("image-bmp", jsonFor(url("/img/red.bmp"), click).toUtf8());
    routeBanner("image-wide", jsonFor(url("/img/wide.png"), click).toUtf8());
    routeBanner("image-tall", jsonFor(url("/img/tall.png"), click).toUtf8());
    routeBanner("image-over-cap", jsonFor(url("/img/over-cap.png"), click).toUtf8());
    routeBanner("image-over-cap-chunked", jsonFor(url("/img/over-cap-chunked.png"), click).toUtf8());
    routeBanner("image-announced-too-large", jsonFor(url("/img/announces-2mib.png"), click).toUtf8());
    m_server.route("/json-announced-too-large/v1/banner", [](QTcpSocket *socket, const Request &) {
        socket->write("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: 65537\r\n\r\n{");
    });
    routeBanner("image-silent", jsonFor(url("/img/silent.png"), click).toUtf8());

    // Valid JSON, only too long: padding inside the object.
    QByteArray longJson = jsonFor(png, click).toUtf8();
    longJson.insert(1, QByteArray(GADBannerView::MaxResponseBytes, ' '));
    routeBanner("json-over-cap", longJson);
    m_server.route("/json-over-cap-chunked/v1/banner", [longJson](QTcpSocket *socket, const Request &) {
        LoopbackHttpServer::replyChunked(socket, longJson, "application/json");
    });
    m_server.route("/silent/v1/banner", [](QTcpSocket *, const Request &) {});
    m_server.route("/closes-early/v1/banner", [](QTcpSocket *socket, const Request &) {
        socket->write("HTTP/1.1 200 OK\r\nContent-Length: 500\r\n\r\n{\"image\": ");
        socket->flush();
        socket->abort();
    });
    m_server.route("/trickle/v1/banner", [](QTcpSocket *socket, const Request &) {
        LoopbackHttpServer::trickle(socket, 20);
    });
    m_server.route("/redirect-loop/v1/banner", [this](QTcpSocket *socket, const Request &) {
        socket->write("HTTP/1.1 302 Found\r\nLocation: " + m_server.url(QStringLiteral("/redirect-loop/v1/banner")).toEncoded()
                      + "\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
        socket->disconnectFromHost();
    });
    m_server.route("/redirect-to-file/v1/banner", [](QTcpSocket *socket, const Request &) {
        socket->write("HTTP/1.1 302 Found\r\nLocation: file:///banner.json\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
        socket->disconnectFromHost();
    });

    routeBanner("refresh-40", jsonFor(png, click, QStringLiteral("40")).toUtf8());
    routeBanner("refresh-1", jsonFor(png, click, QStringLiteral("1")).toUtf8());
    routeBanner("refresh-1000", jsonFor(png, click, QStringLiteral("1000")).toUtf8());
    routeBanner("refresh-missing", jsonFor(png, click, QString()).toUtf8());
    routeBanner("refresh-30", jsonFor(png, click, QStringLiteral("30")).toUtf8());
}

void TestGADBannerView::init()
{
    m_opened.urls.clear();
    QDesktopServices::setUrlHandler(QStringLiteral("http"), &m_opened, "open");
    QDesktopServices::setUrlHandler(QStringLiteral("https"), &m_opened, "open");
    QDesktopServices::setUrlHandler(QStringLiteral("file"), &m_opened, "open");
    QDesktopServices::setUrlHandler(QStringLiteral("javascript"), &m_opened, "open");
}

void TestGADBannerView::cleanup()
{
    for (const char *scheme : {"http", "https", "file", "javascript"})
        QDesktopServices::unsetUrlHandler(QLatin1String(scheme));
}

void TestGADBannerView::goodBanner_data()
{
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<QSize>("imageSize");
    QTest::addColumn<QString>("click");
    QTest::addColumn<QPoint>("painted");     // shows the banner's colour
    QTest::addColumn<QPoint>("unpainted");   // outside the scaled image, or (-1, -1)
    QTest::addColumn<int>("tolerance");

    const QString click = m_server.url(QStringLiteral("/click/1")).toString();
    QTest::newRow("PNG at twice the size fills the banner") << "/png" << QSize(640, 100) << click << QPoint(2, 2)
                                                           << QPoint(-1, -1) << 0;
    QTest::newRow("JPEG is decoded") << "/jpeg" << QSize(640, 100) << click << QPoint(160, 25) << QPoint(-1, -1) << 40;
    QTest::newRow("GIF 1x1 is scaled up square and centred")
        << "/gif" << QSize(1, 1) << "https://127.0.0.1:1/click/2" << QPoint(160, 25) << QPoint(100, 25) << 0;
    QTest::newRow("server address with a path prefix") << "/deep/prefix" << QSize(640, 100) << click
                                                      << QPoint(317, 47) << QPoint(-1, -1) << 0;
    QTest::newRow("server address with a trailing slash") << "/deep/prefix/" << QSize(640, 100) << click
                                                         << QPoint(160, 25) << QPoint(-1, -1) << 0;
}

void TestGADBannerView::goodBanner()
{
    QFETCH(QString, prefix);
    QFETCH(QSize, imageSize);
    QFETCH(QString, click);
    QFETCH(QPoint, painted);
    QFETCH(QPoint, unpainted);
    QFETCH(int, tolerance);

    RecordingDelegate delegate;
    auto banner = makeBanner(prefix, &delegate, fastTiming());
    QVERIFY(!banner->testAttribute(Qt::WA_SetCursor));
    const qsizetype requestsBefore = m_server.requests().size();
    banner->loadRequest(GADRequest::request());

    QTRY_COMPARE(delegate.arrivals.size(), 1);
    QCOMPARE(delegate.arrivals.first(), banner.get());
    QVERIFY(delegate.failures.isEmpty());
    QCOMPARE(banner->image().size(), imageSize);
    QCOMPARE(banner->clickUrl(), QUrl(click));
    QCOMPARE(banner->cursor().shape(), Qt::PointingHandCursor);

    // The banner request came first and carried the unit and the banner's size.
    const QList<Request> requests = m_server.requests().mid(requestsBefore);
    QCOMPARE(requests.size(), 2);
    QString expectedPath = prefix;
    if (!expectedPath.endsWith(QLatin1Char('/')))
        expectedPath += QLatin1Char('/');
    QCOMPARE(QString::fromLatin1(requests.at(0).path), expectedPath + QStringLiteral("v1/banner"));
    QCOMPARE(requests.at(0).query.queryItemValue(QStringLiteral("unit")), QStringLiteral("c0ffee000000001"));
    QCOMPARE(requests.at(0).query.queryItemValue(QStringLiteral("w")), QStringLiteral("320"));
    QCOMPARE(requests.at(0).query.queryItemValue(QStringLiteral("h")), QStringLiteral("50"));
    QVERIFY(requests.at(1).path.startsWith("/img/"));

    const QImage shot = banner->grab().toImage();
    const QColor inside = RenderProbe::at(shot, painted.x(), painted.y());
    QVERIFY2(RenderProbe::near(inside, BannerRed, tolerance), qPrintable(RenderProbe::describe(inside)));
    if (unpainted.x() >= 0) {
        const QColor outside = RenderProbe::at(shot, unpainted.x(), unpainted.y());
        QVERIFY2(!RenderProbe::near(outside, BannerRed, 60), qPrintable(RenderProbe::describe(outside)));
    }

    // Nothing more until the refresh falls due.
    QTest::qWait(100);
    QCOMPARE(delegate.arrivals.size(), 1);
    QCOMPARE(m_server.requests().size() - requestsBefore, 2);
    QVERIFY(m_opened.urls.isEmpty());
}

void TestGADBannerView::clicks_data()
{
    QTest::addColumn<int>("button");
    QTest::addColumn<QPoint>("press");
    QTest::addColumn<QPoint>("release");
    QTest::addColumn<bool>("opens");

    QTest::newRow("left click inside opens the address") << int(Qt::LeftButton) << QPoint(100, 20) << QPoint(102, 21) << true;
    QTest::newRow("left click at the far corner opens it") << int(Qt::LeftButton) << QPoint(319, 49) << QPoint(319, 49) << true;
    QTest::newRow("right click opens nothing") << int(Qt::RightButton) << QPoint(100, 20) << QPoint(100, 20) << false;
    QTest::newRow("middle click opens nothing") << int(Qt::MiddleButton) << QPoint(100, 20) << QPoint(100, 20) << false;
    QTest::newRow("drag off the bottom opens nothing") << int(Qt::LeftButton) << QPoint(100, 20) << QPoint(100, 80) << false;
    QTest::newRow("drag off the left opens nothing") << int(Qt::LeftButton) << QPoint(100, 20) << QPoint(-5, 20) << false;
}

void TestGADBannerView::clicks()
{
    QFETCH(int, button);
    QFETCH(QPoint, press);
    QFETCH(QPoint, release);
    QFETCH(bool, opens);

    RecordingDelegate delegate;
    auto banner = makeBanner(QStringLiteral("/png"), &delegate, fastTiming());
    banner->loadRequest(GADRequest::request());
    QTRY_COMPARE(delegate.arrivals.size(), 1);

    const auto mouseButton = Qt::MouseButton(button);
    QMouseEvent down(QEvent::MouseButtonPress, press, banner->mapToGlobal(press), mouseButton, mouseButton, Qt::NoModifier);
    QCoreApplication::sendEvent(banner.get(), &down);
    QMouseEvent up(QEvent::MouseButtonRelease, release, banner->mapToGlobal(release), mouseButton, Qt::NoButton,
                   Qt::NoModifier);
    QCoreApplication::sendEvent(banner.get(), &up);

    const QList<QUrl> expected = opens ? QList<QUrl>{m_server.url(QStringLiteral("/click/1"))} : QList<QUrl>{};
    QCOMPARE(m_opened.urls, expected);
}

void TestGADBannerView::nothingBeforeTheFirstBanner()
{
    RecordingDelegate delegate;
    auto banner = makeBanner(QStringLiteral("/silent"), &delegate, fastTiming());
    banner->loadRequest(GADRequest::request());
    QTRY_COMPARE(m_server.requests("/silent/v1/banner").size() > 0, true);

    QVERIFY(banner->image().isNull());
    QVERIFY(banner->clickUrl().isEmpty());
    QVERIFY(!banner->testAttribute(Qt::WA_SetCursor));
    const QImage shot = banner->grab().toImage();
    const QColor centre = RenderProbe::at(shot, 160, 25);
    QVERIFY2(!RenderProbe::near(centre, BannerRed, 60), qPrintable(RenderProbe::describe(centre)));
    clickCentre(banner.get());
    QVERIFY(m_opened.urls.isEmpty());
}

void TestGADBannerView::badInput_data()
{
    QTest::addColumn<QString>("server");
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("timeoutMs");
    QTest::addColumn<bool>("showing"); // a good banner was on show before

    struct Case {
        const char *name;
        QString server;
        GADRequestError::Code code;
        int timeoutMs;
    };
    const QList<Case> cases = {
        {"error status", QStringLiteral("/status-500"), GADRequestError::ServerError, 5000},
        {"body not JSON", QStringLiteral("/not-json"), GADRequestError::InvalidResponse, 5000},
        {"JSON array", QStringLiteral("/json-array"), GADRequestError::InvalidResponse, 5000},
        {"image missing", QStringLiteral("/no-image"), GADRequestError::InvalidResponse, 5000},
        {"image a number", QStringLiteral("/image-number"), GADRequestError::InvalidResponse, 5000},
        {"image a data: address", QStringLiteral("/image-data"), GADRequestError::InvalidResponse, 5000},
        {"image a relative address", QStringLiteral("/image-relative"), GADRequestError::InvalidResponse, 5000},
        {"click missing", QStringLiteral("/no-click"), GADRequestError::InvalidResponse, 5000},
        {"click javascript:", QStringLiteral("/click-javascript"), GADRequestError::InvalidResponse, 5000},
        {"click file:", QStringLiteral("/click-file"), GADRequestError::InvalidResponse, 5000},
        {"click relative", QStringLiteral("/click-relative"), GADRequestError::InvalidResponse, 5000},
        {"refresh a string", QStringLiteral("/refresh-string"), GADRequestError::InvalidResponse, 5000},
        {"refresh null", QStringLiteral("/refresh-null"), GADRequestError::InvalidResponse, 5000},
        {"image 404", QStringLiteral("/image-404"), GADRequestError::ServerError, 5000},
        {"image not an image", QStringLiteral("/image-text"), GADRequestError::InvalidImage, 5000},
        {"image a BMP", QStringLiteral("/image-bmp"), GADRequestError::InvalidImage, 5000},
        {"image 100000 pixels wide", QStringLiteral("/image-wide"), GADRequestError::TooLarge, 5000},
        {"image 4097 pixels high", QStringLiteral("/image-tall"), GADRequestError::TooLarge, 5000},
        {"image over 1 MiB with length", QStringLiteral("/image-over-cap"), GADRequestError::TooLarge, 5000},
        {"image over 1 MiB without length", QStringLiteral("/image-over-cap-chunked"), GADRequestError::TooLarge, 5000},
        {"image announced over 1 MiB refused before the body", QStringLiteral("/image-announced-too-large"),
         GADRequestError::TooLarge, 3000},
        {"JSON announced over 64 KiB refused before the body", QStringLiteral("/json-announced-too-large"),
         GADRequestError::TooLarge, 3000},
        {"JSON over 64 KiB with length", QStringLiteral("/json-over-cap"), GADRequestError::TooLarge, 5000},
        {"JSON over 64 KiB without length", QStringLiteral("/json-over-cap-chunked"), GADRequestError::TooLarge, 5000},
        {"server silent", QStringLiteral("/silent"), GADRequestError::Timeout, 300},
        {"image server silent", QStringLiteral("/image-silent"), GADRequestError::Timeout, 300},
        {"server trickles for ever", QStringLiteral("/trickle"), GADRequestError::Timeout, 400},
        {"server closes early", QStringLiteral("/closes-early"), GADRequestError::NetworkError, 5000},
        {"redirect loop", QStringLiteral("/redirect-loop"), GADRequestError::NetworkError, 5000},
        {"redirect to file:", QStringLiteral("/redirect-to-file"), GADRequestError::NetworkError, 5000},
        {"connection refused", QStringLiteral("http://127.0.0.1:1"), GADRequestError::NetworkError, 5000},
    };
    for (const Case &c : cases) {
        for (const bool showing : {false, true}) {
            const QString name = QString::fromLatin1(c.name) + (showing ? QStringLiteral(", old banner kept")
                                                                        : QStringLiteral(", nothing shown"));
            QTest::newRow(qPrintable(name)) << c.server << int(c.code) << c.timeoutMs << showing;
        }
    }
}

void TestGADBannerView::badInput()
{
    QFETCH(QString, server);
    QFETCH(int, code);
    QFETCH(int, timeoutMs);
    QFETCH(bool, showing);

    RecordingDelegate delegate(&m_server);
    auto banner = makeBanner(QStringLiteral("/png"), &delegate, fastTiming(timeoutMs));
    if (showing) {
        banner->loadRequest(GADRequest::request());
        QTRY_COMPARE(delegate.arrivals.size(), 1);
    }
    const QImage before = banner->image();
    const QUrl clickBefore = banner->clickUrl();

    banner->setServerUrl(server.startsWith(QLatin1String("http")) ? QUrl(server) : m_server.url(server));
    const qint64 started = m_server.elapsedMs();
    banner->loadRequest(GADRequest::request());
    QTRY_COMPARE_WITH_TIMEOUT(delegate.failures.size(), 1, timeoutMs + 3000);
    QVERIFY2(int(delegate.failures.first()) == code,
             qPrintable(QStringLiteral("code %1: %2").arg(int(delegate.failures.first())).arg(delegate.descriptions.first())));
    QCOMPARE(delegate.failingViews.first(), banner.get());
    QVERIFY2(delegate.failureTimes.first() - started < timeoutMs + 1500,
             qPrintable(QString::number(delegate.failureTimes.first() - started)));

    // One failure, no arrival, the old banner (or none) still on show.
    QTest::qWait(150);
    QCOMPARE(delegate.failures.size(), 1);
    QCOMPARE(delegate.arrivals.size(), showing ? 1 : 0);
    QCOMPARE(banner->image(), before);
    QCOMPARE(banner->clickUrl(), clickBefore);
    const QColor centre = RenderProbe::at(banner->grab().toImage(), 160, 25);
    QCOMPARE(RenderProbe::near(centre, BannerRed, 0), showing);

    // A click opens the old address if there was one, and never the bad one.
    clickCentre(banner.get());
    QCOMPARE(m_opened.urls, showing ? QList<QUrl>{clickBefore} : QList<QUrl>{});
}

void TestGADBannerView::schedule_data()
{
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<int>("msPerSecond");
    QTest::addColumn<int>("expectedMs");

    QTest::newRow("refresh 40 is taken as given") << "/refresh-40" << 10 << 400;
    QTest::newRow("refresh 1 is raised to 30") << "/refresh-1" << 10 << 300;
    QTest::newRow("refresh 1000 is cut to 300") << "/refresh-1000" << 4 << 1200;
    QTest::newRow("refresh missing means 60") << "/refresh-missing" << 5 << 300;
    QTest::newRow("a failure is retried after 60") << "/status-500" << 5 << 300;
}

void TestGADBannerView::schedule()
{
    QFETCH(QString, prefix);
    QFETCH(int, msPerSecond);
    QFETCH(int, expectedMs);

    const QByteArray path = prefix.toLatin1() + "/v1/banner";
    RecordingDelegate delegate(&m_server);
    auto banner = makeBanner(prefix, &delegate, fastTiming(5000, msPerSecond));
    const qsizetype before = m_server.requests(path).size();
    banner->loadRequest(GADRequest::request());
    QTRY_COMPARE(delegate.arrivals.size() + delegate.failures.size(), 1);
    const qint64 answered = delegate.arrivals.isEmpty() ? delegate.failureTimes.first() : delegate.arrivalTimes.first();

    QTRY_COMPARE_WITH_TIMEOUT(m_server.requests(path).size() - before, 2, expectedMs * 2 + 2000);
    const qint64 gap = m_server.requests(path).last().atMs - answered;
    QVERIFY2(gap >= expectedMs * 3 / 4, qPrintable(QStringLiteral("next request after %1 ms").arg(gap)));
    QVERIFY2(gap <= expectedMs + 1000, qPrintable(QStringLiteral("next request after %1 ms").arg(gap)));
}

void TestGADBannerView::pause_data()
{
    QTest::addColumn<int>("pauseMs");
    QTest::addColumn<bool>("dueDuringPause");

    // refresh 30 with 10 ms a second: due 300 ms after the arrival.
    QTest::newRow("paused past the due time: requested on activation") << 600 << true;
    QTest::newRow("paused briefly: the remaining time runs on") << 60 << false;
}

void TestGADBannerView::pause()
{
    QFETCH(int, pauseMs);
    QFETCH(bool, dueDuringPause);

    const QByteArray path = "/refresh-30/v1/banner";
    RecordingDelegate delegate(&m_server);
    auto banner = makeBanner(QStringLiteral("/refresh-30"), &delegate, fastTiming(5000, 10));
    const qsizetype before = m_server.requests(path).size();
    banner->loadRequest(GADRequest::request());
    QTRY_COMPARE(delegate.arrivals.size(), 1);
    const qint64 arrived = delegate.arrivalTimes.first();

    banner->applicationStateChanged(Qt::ApplicationInactive);
    QTest::qWait(pauseMs);
    QCOMPARE(m_server.requests(path).size() - before, 1);

    const qint64 activated = m_server.elapsedMs();
    banner->applicationStateChanged(Qt::ApplicationActive);
    QTRY_COMPARE_WITH_TIMEOUT(m_server.requests(path).size() - before, 2, 1500);
    const qint64 requested = m_server.requests(path).last().atMs;
    if (dueDuringPause) {
        QVERIFY2(requested - activated < 250, qPrintable(QString::number(requested - activated)));
    } else {
        QVERIFY2(requested - arrived >= 225, qPrintable(QString::number(requested - arrived)));
        QVERIFY2(requested - arrived <= 900, qPrintable(QString::number(requested - arrived)));
    }
}

void TestGADBannerView::loadWhileInactiveWaits()
{
    // A server of its own, so that no other test's late connection is counted.
    LoopbackHttpServer server;
    QVERIFY(server.start());
    server.routeReply("/v1/banner", "200 OK",
                      jsonFor(QLatin1Char('"') + m_server.url(QStringLiteral("/img/red-640x100.png")).toString()
                                  + QLatin1Char('"'),
                              QStringLiteral("\"http://127.0.0.1:1/click\""))
                          .toUtf8(),
                      "application/json");
    RecordingDelegate delegate;
    auto banner = makeBanner(server.url().toString(), &delegate, fastTiming());
    banner->applicationStateChanged(Qt::ApplicationInactive);
    banner->loadRequest(GADRequest::request());
    QTest::qWait(200);
    QCOMPARE(server.connectionCount(), 0);
    QVERIFY(delegate.arrivals.isEmpty() && delegate.failures.isEmpty());

    banner->applicationStateChanged(Qt::ApplicationActive);
    QTRY_COMPARE(delegate.arrivals.size(), 1);
}

void TestGADBannerView::newLoadAbortsTheRunningOne()
{
    RecordingDelegate delegate;
    auto banner = makeBanner(QStringLiteral("/silent"), &delegate, fastTiming(300));
    const qsizetype before = m_server.requests("/silent/v1/banner").size();
    banner->loadRequest(GADRequest::request());
    QTRY_COMPARE(m_server.requests("/silent/v1/banner").size() - before, 1);

    banner->setServerUrl(m_server.url(QStringLiteral("/png")));
    banner->loadRequest(GADRequest::request());
    QTRY_COMPARE(delegate.arrivals.size(), 1);
    // Well past the silent request's time-out: it was dropped, not reported.
    QTest::qWait(600);
    QVERIFY(delegate.failures.isEmpty());
    QCOMPARE(delegate.arrivals.size(), 1);
}

void TestGADBannerView::delegateIsReadAtDelivery()
{
    RecordingDelegate first;
    RecordingDelegate second;
    auto banner = makeBanner(QString(), &first, fastTiming());
    banner->setServerUrl(QUrl());
    banner->loadRequest(GADRequest::request());
    // Never from inside loadRequest().
    QVERIFY(first.failures.isEmpty());
    banner->setDelegate(&second);
    QTRY_COMPARE(second.failures.size(), 1);
    QVERIFY(first.failures.isEmpty());

    // A delegate cleared before delivery hears nothing, and nothing breaks.
    banner->loadRequest(GADRequest::request());
    banner->setDelegate(nullptr);
    QTest::qWait(50);
    banner->setDelegate(&second);
    QTest::qWait(50);
    QCOMPARE(second.failures.size(), 1);
}

void TestGADBannerView::notConfigured_data()
{
    QTest::addColumn<QString>("server");
    QTest::addColumn<QString>("adUnit");

    // "%1" is the port of a listening server that must see no connection.
    const QString good = QStringLiteral("http://127.0.0.1:%1/png");
    QTest::newRow("no ad server") << "" << "c0ffee000000001";
    QTest::newRow("ad server not http") << "ftp://127.0.0.1:%1/png" << "c0ffee000000001";
    QTest::newRow("ad unit empty") << good << "";
    QTest::newRow("ad unit 14 characters") << good << "c0ffee00000001";
    QTest::newRow("ad unit 16 characters") << good << "c0ffee0000000011";
    QTest::newRow("ad unit in capitals") << good << "C0FFEE000000001";
    QTest::newRow("ad unit not hexadecimal") << good << "c0ffee00000000g";
    QTest::newRow("ad unit with a newline") << good << "c0ffee000000001\n";
}

void TestGADBannerView::notConfigured()
{
    QFETCH(QString, server);
    QFETCH(QString, adUnit);

    // A server of its own, so that no other test's late connection is counted.
    LoopbackHttpServer listening;
    QVERIFY(listening.start());
    listening.routeReply("/png/v1/banner", "200 OK", "{}", "application/json");
    const int connections = 0;

    RecordingDelegate delegate;
    auto banner = makeBanner(QString(), &delegate, fastTiming(5000, 2)); // a retry would come after 120 ms
    banner->setServerUrl(server.contains(QLatin1String("%1")) ? QUrl(server.arg(listening.serverPort())) : QUrl(server));
    banner->setAdUnitID(adUnit);

    banner->loadRequest(GADRequest::request());
    QVERIFY(delegate.failures.isEmpty());
    QTRY_COMPARE(delegate.failures.size(), 1);
    QCOMPARE(delegate.failures.first(), GADRequestError::NotConfigured);

    QTest::qWait(400);
    QCOMPARE(delegate.failures.size(), 1);
    QVERIFY(delegate.arrivals.isEmpty());
    QCOMPARE(listening.connectionCount(), connections);
    QVERIFY(banner->findChildren<QNetworkAccessManager *>().isEmpty());

    // The application becoming active again does not wake a parked banner either.
    banner->applicationStateChanged(Qt::ApplicationInactive);
    banner->applicationStateChanged(Qt::ApplicationActive);
    QTest::qWait(100);
    QCOMPARE(delegate.failures.size(), 1);
    QCOMPARE(listening.connectionCount(), connections);
}

void TestGADBannerView::buildConfiguration()
{
    static const QRegularExpression unitPattern(QRegularExpression::anchoredPattern(QStringLiteral("[0-9a-f]{15}")));
    QVERIFY2(unitPattern.match(GADBannerView::configuredAdUnitID()).hasMatch(),
             qPrintable(GADBannerView::configuredAdUnitID()));
    QCOMPARE(GADBannerView::configuredServerUrl(), QUrl(QStringLiteral(KOVAR_AD_SERVER_URL)));
    QCOMPARE(GADBannerView::configuredAdUnitID(), QStringLiteral(KOVAR_AD_UNIT_ID));

    // A banner as the application makes it takes the build's settings.
    GADBannerView banner(QRect(0, 0, 320, 50));
    QCOMPARE(banner.serverUrl(), GADBannerView::configuredServerUrl());
    QCOMPARE(banner.adUnitID(), GADBannerView::configuredAdUnitID());
    if (!GADBannerView::configuredServerUrl().isEmpty())
        QSKIP("This build has an ad server; the default build has none.");

    RecordingDelegate delegate;
    banner.setDelegate(&delegate);
    banner.applicationStateChanged(Qt::ApplicationActive);
    banner.loadRequest(GADRequest::request());
    QTRY_COMPARE(delegate.failures.size(), 1);
    QCOMPARE(delegate.failures.first(), GADRequestError::NotConfigured);
    QVERIFY(banner.findChildren<QNetworkAccessManager *>().isEmpty());
}

QTEST_MAIN(TestGADBannerView)
#include "tst_gadbannerview.moc"
