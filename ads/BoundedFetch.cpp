#include "BoundedFetch.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

namespace {

bool isRedirectStatus(int status)
{
    return status >= 300 && status < 400;
}

// A final status that is informational or a redirect means the exchange never got to a
// real answer (a refused or unfinished redirect).
bool isUnfinishedStatus(int status)
{
    return (status >= 100 && status < 200) || isRedirectStatus(status);
}

} // namespace

BoundedFetch::BoundedFetch(QNetworkAccessManager *manager, const QUrl &url, qint64 maxBytes, int timeoutMs,
                           QObject *parent)
    : QObject(parent)
    , _maxBytes(maxBytes)
{
    QNetworkRequest request(url);
    // Each redirect is looked at before it is followed: only http(s) targets are allowed.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::UserVerifiedRedirectPolicy);
    // We count redirects ourselves (below); Qt's own limit must never be the one that ends it.
    request.setMaximumRedirectsAllowed(MaxRedirects + 1);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);

    _reply = manager->get(request);
    // Whatever we do not read stays in Qt's buffer: keep that bounded too.
    _reply->setReadBufferSize(64 * 1024);

    connect(_reply, &QNetworkReply::redirected, this, [this](const QUrl &target) {
        if (++_redirects > MaxRedirects) {
            fail(GADRequestError::NetworkError, QStringLiteral("Too many redirects"));
            return;
        }
        if (!isWebUrl(target)) {
            fail(GADRequestError::NetworkError,
                 QStringLiteral("Refused a redirect to %1").arg(target.toDisplayString()));
            return;
        }
        Q_EMIT _reply->redirectAllowed();
    });
    connect(_reply, &QNetworkReply::metaDataChanged, this, &BoundedFetch::checkHeaders);
    connect(_reply, &QNetworkReply::readyRead, this, &BoundedFetch::readBody);
    connect(_reply, &QNetworkReply::finished, this, &BoundedFetch::replyFinished);

    // setTransferTimeout() only notices silence; a server that trickles a byte now and then
    // must still be cut off, so the deadline covers the whole exchange.
    _deadline.setSingleShot(true);
    connect(&_deadline, &QTimer::timeout, this,
            [this] { fail(GADRequestError::Timeout, QStringLiteral("The request timed out.")); });
    _deadline.start(timeoutMs);
}

BoundedFetch::~BoundedFetch()
{
    detachReply();
}

void BoundedFetch::cancel()
{
    _done = true;
    _deadline.stop();
    detachReply();
}

bool BoundedFetch::isWebUrl(const QUrl &url)
{
    const QString scheme = url.scheme();
    return url.isValid() && (scheme == QLatin1String("http") || scheme == QLatin1String("https"))
        && !url.host().isEmpty();
}

void BoundedFetch::checkHeaders()
{
    if (_done || !_reply)
        return;
    const int status = _reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (isRedirectStatus(status))
        return;
    const QVariant length = _reply->header(QNetworkRequest::ContentLengthHeader);
    if (length.isValid() && length.toLongLong() > _maxBytes) {
        fail(GADRequestError::TooLarge,
             QStringLiteral("The server announced %1 bytes, more than the %2 allowed")
                 .arg(length.toLongLong())
                 .arg(_maxBytes));
    }
}

void BoundedFetch::readBody()
{
    if (_done || !_reply)
        return;
    const int status = _reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (isRedirectStatus(status)) {
        _reply->readAll();
        return;
    }
    // Read no more than one byte past the cap: that is enough to know it was exceeded.
    _body += _reply->read(_maxBytes + 1 - _body.size());
    if (_body.size() > _maxBytes) {
        _body.clear();
        fail(GADRequestError::TooLarge, QStringLiteral("The response is larger than %1 bytes").arg(_maxBytes));
    }
}

void BoundedFetch::replyFinished()
{
    if (_done || !_reply)
        return;
    readBody();
    if (_done)
        return;

    const QNetworkReply::NetworkError networkError = _reply->error();
    const QVariant statusAttribute = _reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    const int status = statusAttribute.toInt();
    if (networkError == QNetworkReply::TooManyRedirectsError || networkError == QNetworkReply::InsecureRedirectError
        || isUnfinishedStatus(status)) {
        // A redirect still standing at the end was refused or one too many.
        fail(GADRequestError::NetworkError,
             QStringLiteral("The redirects were not followed: %1").arg(_reply->errorString()));
    } else if (statusAttribute.isValid() && (status < 200 || status > 299)) {
        fail(GADRequestError::ServerError, QStringLiteral("The server answered with status %1").arg(status));
    } else if (networkError != QNetworkReply::NoError) {
        fail(GADRequestError::NetworkError, _reply->errorString());
    } else {
        _done = true;
        _succeeded = true;
        _deadline.stop();
        detachReply();
        Q_EMIT finished();
    }
}

void BoundedFetch::fail(GADRequestError::Code code, const QString &description)
{
    if (_done)
        return;
    _done = true;
    _deadline.stop();
    _error.code = code;
    _error.localizedDescription = description;
    _body.clear();
    detachReply();
    Q_EMIT finished();
}

void BoundedFetch::detachReply()
{
    if (!_reply)
        return;
    QNetworkReply *reply = _reply;
    _reply = nullptr;
    // abort() emits finished() at once: nobody of ours is listening any more.
    reply->disconnect(this);
    reply->abort();
    reply->deleteLater();
}
