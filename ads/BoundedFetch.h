#pragma once

#include "GADRequestError.h"

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QUrl>

class QNetworkAccessManager;
class QNetworkReply;

// One GET from an untrusted server, with a hard deadline for the whole exchange, a cap on
// the body that holds while it streams in, and redirects only to http(s), a few at most.
// Emits finished() exactly once unless cancelled; never from inside the constructor.
class BoundedFetch : public QObject
{
    Q_OBJECT

public:
    static constexpr int MaxRedirects = 5;

    BoundedFetch(QNetworkAccessManager *manager, const QUrl &url, qint64 maxBytes, int timeoutMs,
                 QObject *parent = nullptr);
    ~BoundedFetch() override;

    // Stops the exchange without a finished() signal.
    void cancel();

    bool succeeded() const { return m_succeeded; }
    GADRequestError error() const { return m_error; }
    QByteArray body() const { return m_body; }

    static bool isWebUrl(const QUrl &url);

Q_SIGNALS:
    void finished();

private:
    void readBody();
    void checkHeaders();
    void replyFinished();
    void fail(GADRequestError::Code code, const QString &description);
    void detachReply();

    QPointer<QNetworkReply> m_reply;
    QTimer m_deadline;
    qint64 m_maxBytes;
    int m_redirects = 0;
    QByteArray m_body;
    GADRequestError m_error;
    bool m_succeeded = false;
    bool m_done = false;
};
