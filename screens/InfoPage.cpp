#include "InfoPage.h"

#include "PageTableView.h"

#include "FontTable.h"
#include "LabelView.h"
#include "PanelView.h"

#include <QListView>

InfoPage::InfoPage(const QString &title, QWidget *parent)
    : QWidget(parent)
    , _title(title)
{
}

void InfoPage::viewDidLoad()
{
    _baseView = new QWidget(this);
    _baseView->setGeometry(0, 20, width(), height() - 20);
    QColor fill(Qt::black);
    fill.setAlphaF(0.4f);
    _panelBackground = new PanelView(QRect(5, 5, width() - 10, _baseView->height() - 10), fill, 7, _baseView);
    _panelBackground->setProperty("tag", PanelBackgroundTag);
    auto *title = new LabelView(QRect(15, 10, _baseView->width() - 30, 20), _title,
                                FontTable::font(QStringLiteral("CourierNewPS-BoldMT"), 19), _baseView);
    title->setShadow(Qt::black, QPointF(2, 2));
}

void InfoPage::setFrameForAd()
{
    if (!_baseView)
        return;
    _baseView->setGeometry(0, 20, width(), height() - 20);
    _panelBackground->setGeometry(5, 5, width() - 10, _baseView->height() - 10);
    layoutTableView();
}

QListView *InfoPage::buildTableView(QAbstractItemModel *model, QAbstractItemDelegate *delegate)
{
    _tableView = new PageTableView(model, delegate, _baseView);
    layoutTableView();
    _tableView->show();
    return _tableView;
}

void InfoPage::layoutTableView()
{
    if (_tableView)
        _tableView->setGeometry(15, 40, _baseView->width() - 30, _baseView->height() - 55);
}

QWidget *InfoPage::panelBackground() const
{
    return _panelBackground;
}
