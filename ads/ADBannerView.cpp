#include "ADBannerView.h"

const QString ADBannerView::ADBannerContentSizeIdentifierPortrait = QStringLiteral(
    "ADBannerContentSizeIdentifierPortrait");

ADBannerView::ADBannerView(const QRect &frame, QWidget *parent)
    : QWidget(parent)
{
    setGeometry(frame);
}

void ADBannerView::setRequiredContentSizeIdentifiers(const QSet<QString> &identifiers)
{
    _required = identifiers;
}

void ADBannerView::setCurrentContentSizeIdentifier(const QString &identifier)
{
    _current = identifier;
}

void ADBannerView::setDelegate(ADBannerViewDelegate *delegate)
{
    _delegate = delegate;
}
