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
class BoundedFetch : public QObject {
    Q_OBJECT

public:
    static constexpr int MaxRedirects = 5;

    BoundedFetch(QNetworkAccessManager *manager, const QUrl &url, qint64 maxBytes, int timeoutMs,
                 QObject *parent = nullptr);
    ~BoundedFetch() override;

    // Stops the exchange without a finished() signal.
    void cancel();

    bool succeeded() const { return _succeeded; }
    GADRequestError error() const { return _error; }
    QByteArray body() const { return _body; }

    static bool isWebUrl(const QUrl &url);

Q_SIGNALS:
    void finished();

private:
    void readBody();
    void checkHeaders();
    void replyFinished();
    void fail(GADRequestError::Code code, const QString &description);
    void detachReply();

    QPointer<QNetworkReply> _reply;
    QTimer _deadline;
    qint64 _maxBytes;
    int _redirects = 0;
    QByteArray _body;
    GADRequestError _error;
    bool _succeeded = false;
    bool _done = false;
};
