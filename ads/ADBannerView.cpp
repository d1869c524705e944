#include "ADBannerView.h"

const QString ADBannerView::ADBannerContentSizeIdentifierPortrait = QStringLiteral("ADBannerContentSizeIdentifierPortrait");

ADBannerView::ADBannerView(const QRect &frame, QWidget *parent)
    : QWidget(parent)
{
    setGeometry(frame);
}

void ADBannerView::setRequiredContentSizeIdentifiers(const QSet<QString> &identifiers)
{
    m_required = identifiers;
}

void ADBannerView::setCurrentContentSizeIdentifier(const QString &identifier)
{
    m_current = identifier;
}

void ADBannerView::setDelegate(ADBannerViewDelegate *delegate)
{
    m_delegate = delegate;
}
