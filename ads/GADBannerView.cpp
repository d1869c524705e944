#include "GADBannerView.h"

#include "BannerResponse.h"
#include "BoundedFetch.h"
#include "GADBannerViewDelegate.h"

#include <QDesktopServices>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QNetworkAccessManager>
#include <QPainter>
#include <QRegularExpression>
#include <QTimer>
#include <QUrlQuery>

#include <algorithm>

#ifndef KOVAR_AD_SERVER_URL
#define KOVAR_AD_SERVER_URL ""
#endif
#ifndef KOVAR_AD_UNIT_ID
#define KOVAR_AD_UNIT_ID ""
#endif

namespace {

constexpr int MaxImageSide = 4096;

bool isValidAdUnitID(const QString &adUnitID)
{
    // Anchored as a whole: "^...$" would let a trailing newline through.
    static const QRegularExpression pattern(QRegularExpression::anchoredPattern(QStringLiteral("[0-9a-f]{15}")));
    return pattern.match(adUnitID).hasMatch();
}

GADRequestError makeError(GADRequestError::Code code, const QString &description)
{
    GADRequestError error;
    error.code = code;
    error.localizedDescription = description;
    return error;
}

} // namespace

class GADBannerView::Private {
public:
    explicit Private(GADBannerView *q)
        : q(q)
    {
    }

    bool isConfigured() const;
    QUrl bannerRequestUrl() const;
    void startRequest();
    void cancelFetch();
    BoundedFetch *takeFinishedFetch();
    void jsonFetched();
    void imageFetched();
    void arrived(const QImage &newImage, const QUrl &newClickUrl, int refreshSeconds);
    void failed(const GADRequestError &error);
    void schedule(int seconds);
    void refreshDue();
    void deliver(bool arrival, const GADRequestError &error);

    GADBannerView *q;
    QPointer<QWidget> rootViewController;
    GADBannerViewDelegate *delegate = nullptr;
    QString adUnitID;
    QUrl serverUrl = GADBannerView::configuredServerUrl();
    Timing timing;

    QNetworkAccessManager *manager = nullptr; // made on the first real request only
    BoundedFetch *fetch = nullptr;
    QUrl pendingClickUrl;
    int pendingRefreshSeconds = DefaultRefreshSeconds;

    QTimer refreshTimer;
    bool loading = false; // loadRequest() was called and the schedule runs
    bool active = true;   // the application is active
    bool dueWhilePaused = false;
    quint64 generation = 0; // bumped by loadRequest(): callbacks of an older load are dropped

    QImage image;
    QUrl clickUrl;
    bool pressed = false;
    bool keyboardFocus = false; // the focus came by keyboard: the ring shows
};

bool GADBannerView::Private::isConfigured() const
{
    return BoundedFetch::isWebUrl(serverUrl) && isValidAdUnitID(adUnitID);
}

QUrl GADBannerView::Private::bannerRequestUrl() const
{
    QUrl url = serverUrl;
    QString path = url.path();
    if (!path.endsWith(QLatin1Char('/')))
        path += QLatin1Char('/');
    url.setPath(path + QStringLiteral("v1/banner"));
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("unit"), adUnitID);
    query.addQueryItem(QStringLiteral("w"), QString::number(q->width()));
    query.addQueryItem(QStringLiteral("h"), QString::number(q->height()));
    url.setQuery(query);
    url.setFragment(QString());
    return url;
}

void GADBannerView::Private::startRequest()
{
    cancelFetch();
    dueWhilePaused = false;
    if (!active) {
        // Asked for while paused: it goes out when the application becomes active.
        dueWhilePaused = true;
        return;
    }
    if (!manager)
        manager = new QNetworkAccessManager(q);
    fetch = new BoundedFetch(manager, bannerRequestUrl(), MaxResponseBytes, timing.requestTimeoutMs, q);
    QObject::connect(fetch, &BoundedFetch::finished, q, [this] { jsonFetched(); });
}

void GADBannerView::Private::cancelFetch()
{
    if (!fetch)
        return;
    fetch->cancel();
    fetch->deleteLater();
    fetch = nullptr;
}

BoundedFetch *GADBannerView::Private::takeFinishedFetch()
{
    // The fetch is done either way; a failed one is reported here.
    BoundedFetch *done = fetch;
    fetch = nullptr;
    done->deleteLater();
    if (done->succeeded())
        return done;
    failed(done->error());
    return nullptr;
}

void GADBannerView::Private::jsonFetched()
{
    BoundedFetch *done = takeFinishedFetch();
    if (!done)
        return;
    GADRequestError error;
    const std::optional<BannerResponse::Description> description = BannerResponse::parseDescription(
        done->body(), MinRefreshSeconds, MaxRefreshSeconds, DefaultRefreshSeconds, &error);
    if (!description) {
        failed(error);
        return;
    }
    pendingClickUrl = description->click;
    pendingRefreshSeconds = description->refreshSeconds;
    fetch = new BoundedFetch(manager, description->image, MaxImageBytes, timing.requestTimeoutMs, q);
    QObject::connect(fetch, &BoundedFetch::finished, q, [this] { imageFetched(); });
}

void GADBannerView::Private::imageFetched()
{
    BoundedFetch *done = takeFinishedFetch();
    if (!done)
        return;
    // Kept at no more than the frame at the screen's scale (at least twice the
    // frame, what banners are drawn for): a server's 4096-pixel image would
    // otherwise stay decoded at 64 MiB for a 320 x 50 slot.
    const qreal scale = std::max<qreal>(2.0, q->devicePixelRatioF());
    GADRequestError error;
    const QImage decoded = BannerResponse::decodeImage(done->body(), MaxImageSide, q->size() * scale, &error);
    if (decoded.isNull()) {
        failed(error);
        return;
    }
    arrived(decoded, pendingClickUrl, pendingRefreshSeconds);
}

void GADBannerView::Private::arrived(const QImage &newImage, const QUrl &newClickUrl, int refreshSeconds)
{
    image = newImage;
    clickUrl = newClickUrl;
    q->setCursor(Qt::PointingHandCursor);
    // Once there is something to open, the keyboard can reach it too.
    q->setFocusPolicy(Qt::TabFocus);
    q->setAccessibleDescription(QStringLiteral("Opens %1 in the browser").arg(clickUrl.host()));
    q->update();
    schedule(refreshSeconds);
    deliver(true, GADRequestError());
}

void GADBannerView::Private::failed(const GADRequestError &error)
{
    // The last banner, if any, stays on show until a new one arrives.
    schedule(RetrySeconds);
    deliver(false, error);
}

void GADBannerView::Private::schedule(int seconds)
{
    dueWhilePaused = false;
    // The timer runs on while the application is paused, so that a refresh which fell due
    // in the meantime goes out as soon as it is active again.
    refreshTimer.start(std::max(0, seconds * timing.msPerSecond));
}

void GADBannerView::Private::refreshDue()
{
    if (!loading)
        return;
    if (!active) {
        dueWhilePaused = true;
        return;
    }
    startRequest();
}

void GADBannerView::Private::deliver(bool arrival, const GADRequestError &error)
{
    // Always through the event loop: never inside loadRequest(), and a delegate that
    // deletes the banner or loads again finds it in a settled state.
    const quint64 sentGeneration = generation;
    QMetaObject::invokeMethod(
        q,
        [this, arrival, error, sentGeneration] {
            if (sentGeneration != generation)
                return;
            GADBannerViewDelegate *target = delegate; // whoever is the delegate now
            if (!target)
                return;
            if (arrival)
                target->adViewDidReceiveAd(q);
            else
                target->adView(q, error);
        },
        Qt::QueuedConnection);
}

namespace {
QUrl &serverUrlInUse()
{
    static QUrl url(QStringLiteral(KOVAR_AD_SERVER_URL));
    return url;
}
} // namespace

QUrl GADBannerView::configuredServerUrl()
{
    return serverUrlInUse();
}

void GADBannerView::setConfiguredServerUrl(const QUrl &serverUrl)
{
    serverUrlInUse() = serverUrl;
}

QString GADBannerView::configuredAdUnitID()
{
    return QStringLiteral(KOVAR_AD_UNIT_ID);
}

GADBannerView::GADBannerView(const QRect &frame, QWidget *parent)
    : QWidget(parent)
    , d(new Private(this))
{
    setGeometry(frame);
    setAccessibleName(QStringLiteral("Banner"));
    d->adUnitID = configuredAdUnitID();
    d->refreshTimer.setSingleShot(true);
    connect(&d->refreshTimer, &QTimer::timeout, this, [this] { d->refreshDue(); });
    if (qGuiApp) {
        d->active = QGuiApplication::applicationState() == Qt::ApplicationActive;
        connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, &GADBannerView::applicationStateChanged);
    }
}

GADBannerView::~GADBannerView()
{
    d->cancelFetch();
    delete d;
}

QWidget *GADBannerView::rootViewController() const
{
    return d->rootViewController;
}

void GADBannerView::setRootViewController(QWidget *controller)
{
    d->rootViewController = controller;
}

GADBannerViewDelegate *GADBannerView::delegate() const
{
    return d->delegate;
}

void GADBannerView::setDelegate(GADBannerViewDelegate *delegate)
{
    d->delegate = delegate;
}

QString GADBannerView::adUnitID() const
{
    return d->adUnitID;
}

void GADBannerView::setAdUnitID(const QString &adUnitID)
{
    d->adUnitID = adUnitID;
}

QUrl GADBannerView::serverUrl() const
{
    return d->serverUrl;
}

void GADBannerView::setServerUrl(const QUrl &serverUrl)
{
    d->serverUrl = serverUrl;
}

GADBannerView::Timing GADBannerView::timing() const
{
    return d->timing;
}

void GADBannerView::setTiming(const Timing &timing)
{
    d->timing = timing;
}

void GADBannerView::loadRequest(const GADRequest &request)
{
    Q_UNUSED(request);
    ++d->generation; // whatever the previous load still had to say is dropped
    d->cancelFetch();
    d->refreshTimer.stop();
    d->dueWhilePaused = false;
    if (!d->isConfigured()) {
        // Parked for good: no schedule, no retries, not a byte sent.
        d->loading = false;
        d->deliver(false,
                   makeError(GADRequestError::NotConfigured,
                             QStringLiteral("No ad server or no valid ad unit is configured")));
        return;
    }
    d->loading = true;
    d->startRequest();
}

QImage GADBannerView::image() const
{
    return d->image;
}

QUrl GADBannerView::clickUrl() const
{
    return d->clickUrl;
}

void GADBannerView::applicationStateChanged(Qt::ApplicationState state)
{
    const bool wasActive = d->active;
    d->active = state == Qt::ApplicationActive;
    if (d->active && !wasActive && d->loading && d->dueWhilePaused)
        d->startRequest();
}

void GADBannerView::paintEvent(QPaintEvent *event)
{
    Q_UNUSED(event);
    if (d->image.isNull())
        return;
    const QSize target = d->image.size().scaled(size(), Qt::KeepAspectRatio);
    const QRect area(QPoint((width() - target.width()) / 2, (height() - target.height()) / 2), target);
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(area, d->image);
    if (d->keyboardFocus && hasFocus()) {
        // The ring every focused item wears (orange, a white core), drawn here by hand:
        // the banners link no view code.
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(QColor::fromRgbF(1.0, 0.5, 0.0), 2.0));
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 6, 6);
        painter.setPen(QPen(Qt::white, 1.0));
        painter.drawRoundedRect(QRectF(rect()).adjusted(2.5, 2.5, -2.5, -2.5), 4.5, 4.5);
    }
}

void GADBannerView::mousePressEvent(QMouseEvent *event)
{
    d->pressed = event->button() == Qt::LeftButton && !d->image.isNull()
        && rect().contains(event->position().toPoint());
    event->accept();
}

void GADBannerView::mouseReleaseEvent(QMouseEvent *event)
{
    const bool wasPressed = d->pressed;
    d->pressed = false;
    event->accept();
    if (!wasPressed || event->button() != Qt::LeftButton || !rect().contains(event->position().toPoint()))
        return;
    if (BoundedFetch::isWebUrl(d->clickUrl))
        QDesktopServices::openUrl(d->clickUrl);
}

void GADBannerView::keyPressEvent(QKeyEvent *event)
{
    const int key = event->key();
    if (key != Qt::Key_Return && key != Qt::Key_Enter && key != Qt::Key_Space) {
        QWidget::keyPressEvent(event);
        return;
    }
    event->accept();
    if (!d->image.isNull() && BoundedFetch::isWebUrl(d->clickUrl))
        QDesktopServices::openUrl(d->clickUrl);
}

void GADBannerView::focusInEvent(QFocusEvent *event)
{
    const Qt::FocusReason reason = event->reason();
    if (reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason || reason == Qt::ShortcutFocusReason)
        d->keyboardFocus = true;
    else if (reason == Qt::MouseFocusReason)
        d->keyboardFocus = false;
    update();
    QWidget::focusInEvent(event);
}

void GADBannerView::focusOutEvent(QFocusEvent *event)
{
    update();
    QWidget::focusOutEvent(event);
}
