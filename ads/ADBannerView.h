#pragma once

#include <QSet>
#include <QString>
#include <QWidget>

class ADBannerViewDelegate;

// What the banner controllers need of a platform's own ad banner. Linux has no ad
// service, so no kind of this is registered by the application; a platform that has one
// registers its subclass with BannerKinds under the name "ADBannerView".
class ADBannerView : public QWidget {
    Q_OBJECT

public:
    static const QString ADBannerContentSizeIdentifierPortrait;

    explicit ADBannerView(const QRect &frame, QWidget *parent = nullptr);

    QSet<QString> requiredContentSizeIdentifiers() const { return _required; }
    virtual void setRequiredContentSizeIdentifiers(const QSet<QString> &identifiers);
    QString currentContentSizeIdentifier() const { return _current; }
    virtual void setCurrentContentSizeIdentifier(const QString &identifier);
    ADBannerViewDelegate *delegate() const { return _delegate; }
    virtual void setDelegate(ADBannerViewDelegate *delegate);

private:
    QSet<QString> _required;
    QString _current;
    ADBannerViewDelegate *_delegate = nullptr;
};
