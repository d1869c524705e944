#pragma once

#include "GADRequest.h"
#include "GADRequestError.h"

#include <QImage>
#include <QPointer>
#include <QUrl>
#include <QWidget>

class GADBannerViewDelegate;

// The ad network's banner: asks the ad server for a banner, fetches its image, shows it
// scaled into its frame and opens the banner's address in the browser when clicked, or
// from the keyboard (Return, Enter or Space) once Tab has brought the focus to it.
// It refreshes on its own schedule and pauses while the application is not active.
//
// The server speaks one request:
//   GET <server>/v1/banner?unit=<ad unit>&w=<width>&h=<height>
//   -> {"image": "<http(s) url>", "click": "<http(s) url>", "refresh": <seconds>}
class GADBannerView : public QWidget {
    Q_OBJECT

public:
    static constexpr qint64 MaxResponseBytes = 64 * 1024;
    static constexpr qint64 MaxImageBytes = 1024 * 1024;
    static constexpr int MinRefreshSeconds = 30;
    static constexpr int MaxRefreshSeconds = 300;
    static constexpr int DefaultRefreshSeconds = 60;
    static constexpr int RetrySeconds = 60;

    // How long things take; tests shorten them instead of sleeping for minutes.
    struct Timing {
        int requestTimeoutMs = 10000; // a whole request, however slowly the bytes come
        int msPerSecond = 1000;       // what one second of the refresh schedule lasts
    };

    // The ad server (empty: none, so no traffic at all): the build's, unless one was chosen
    // at run time in its place; and the build's ad unit identifier.
    static QUrl configuredServerUrl();
    static void setConfiguredServerUrl(const QUrl &serverUrl);
    static QString configuredAdUnitID();

    explicit GADBannerView(const QRect &frame, QWidget *parent = nullptr);
    ~GADBannerView() override;

    QWidget *rootViewController() const;
    void setRootViewController(QWidget *controller);
    GADBannerViewDelegate *delegate() const;
    void setDelegate(GADBannerViewDelegate *delegate);
    QString adUnitID() const;
    void setAdUnitID(const QString &adUnitID);
    QUrl serverUrl() const; // starts as configuredServerUrl()
    void setServerUrl(const QUrl &serverUrl);
    Timing timing() const;
    void setTiming(const Timing &timing);

    // Starts loading; later banners come on the client's own schedule.
    void loadRequest(const GADRequest &request);

    // The banner on show: a null image and an empty address until one has arrived.
    QImage image() const;
    QUrl clickUrl() const;

public Q_SLOTS:
    // Connected to the application's state on construction; public so that a host
    // which knows better (a minimised window) can say so.
    void applicationStateChanged(Qt::ApplicationState state);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    class Private;
    Private *d;
};
