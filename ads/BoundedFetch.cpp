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
    , m_maxBytes(maxBytes)
{
    QNetworkRequest request(url);
    // Each redirect is looked at before it is followed: only http(s) targets are allowed.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::UserVerifiedRedirectPolicy);
    // We count redirects ourselves (below); Qt's own limit must never be the one that ends it.
    request.setMaximumRedirectsAllowed(MaxRedirects + 1);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);

    m_reply = manager->get(request);
    // Whatever we do not read stays in Qt's buffer: keep that bounded too.
    m_reply->setReadBufferSize(64 * 1024);

    connect(m_reply, &QNetworkReply::redirected, this, [this](const QUrl &target) {
        if (++m_redirects > MaxRedirects) {
            fail(GADRequestError::NetworkError, QStringLiteral("Too many redirects"));
            return;
        }
        if (!isWebUrl(target)) {
            fail(GADRequestError::NetworkError,
                 QStringLiteral("Refused a redirect to %1").arg(target.toDisplayString()));
            return;
        }
        Q_EMIT m_reply->redirectAllowed();
    });
    connect(m_reply, &QNetworkReply::metaDataChanged, this, &BoundedFetch::checkHeaders);
    connect(m_reply, &QNetworkReply::readyRead, this, &BoundedFetch::readBody);
    connect(m_reply, &QNetworkReply::finished, this, &BoundedFetch::replyFinished);

    // setTransferTimeout() only notices silence; a server that trickles a byte now and then
    // must still be cut off, so the deadline covers the whole exchange.
    m_deadline.setSingleShot(true);
    connect(&m_deadline, &QTimer::timeout, this, [this] {
        fail(GADRequestError::Timeout, QStringLiteral("The request timed out."));
    });
    m_deadline.start(timeoutMs);
}

BoundedFetch::~BoundedFetch()
{
    detachReply();
}

void BoundedFetch::cancel()
{
    m_done = true;
    m_deadline.stop();
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
    if (m_done || !m_reply)
        return;
    const int status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (isRedirectStatus(status))
        return;
    const QVariant length = m_reply->header(QNetworkRequest::ContentLengthHeader);
    if (length.isValid() && length.toLongLong() > m_maxBytes) {
        fail(GADRequestError::TooLarge,
             QStringLiteral("The server announced %1 bytes, more than the %2 allowed")
                 .arg(length.toLongLong())
                 .arg(m_maxBytes));
    }
}

void BoundedFetch::readBody()
{
    if (m_done || !m_reply)
        return;
    const int status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (isRedirectStatus(status)) {
        m_reply->readAll();
        return;
    }
    // Read no more than one byte past the cap: that is enough to know it was exceeded.
    m_body += m_reply->read(m_maxBytes + 1 - m_body.size());
    if (m_body.size() > m_maxBytes) {
        m_body.clear();
        fail(GADRequestError::TooLarge, QStringLiteral("The response is larger than %1 bytes").arg(m_maxBytes));
    }
}

void BoundedFetch::replyFinished()
{
    if (m_done || !m_reply)
        return;
    readBody();
    if (m_done)
        return;

    const QNetworkReply::NetworkError networkError = m_reply->error();
    const QVariant statusAttribute = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    const int status = statusAttribute.toInt();
    if (networkError == QNetworkReply::TooManyRedirectsError || networkError == QNetworkReply::InsecureRedirectError
        || isUnfinishedStatus(status)) {
        // A redirect still standing at the end was refused or one too many.
        fail(GADRequestError::NetworkError,
             QStringLiteral("The redirects were not followed: %1").arg(m_reply->errorString()));
    } else if (statusAttribute.isValid() && (status < 200 || status > 299)) {
        fail(GADRequestError::ServerError, QStringLiteral("The server answered with status %1").arg(status));
    } else if (networkError != QNetworkReply::NoError) {
        fail(GADRequestError::NetworkError, m_reply->errorString());
    } else {
        m_done = true;
        m_succeeded = true;
        m_deadline.stop();
        detachReply();
        Q_EMIT finished();
    }
}

void BoundedFetch::fail(GADRequestError::Code code, const QString &description)
{
    if (m_done)
        return;
    m_done = true;
    m_deadline.stop();
    m_error.code = code;
    m_error.localizedDescription = description;
    m_body.clear();
    detachReply();
    Q_EMIT finished();
}

void BoundedFetch::detachReply()
{
    if (!m_reply)
        return;
    QNetworkReply *reply = m_reply;
    m_reply = nullptr;
    // abort() emits finished() at once: nobody of ours is listening any more.
    reply->disconnect(this);
    reply->abort();
    reply->deleteLater();
}
