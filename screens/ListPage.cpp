#include "ListPage.h"

#include "PageTableView.h"

#include "FontTable.h"
#include "LabelView.h"
#include "PanelView.h"

#include <QListView>

ListPage::ListPage(const QString &title, const Insets &insets, int tableTop, QWidget *parent)
    : QWidget(parent)
    , _title(title)
    , _insets(insets)
    , _tableTop(tableTop)
{
}

void ListPage::viewDidLoad()
{
    _baseView = new QWidget(this);
    QColor fill(Qt::black);
    fill.setAlphaF(0.4f);
    _panelBackground = new PanelView(QRect(), fill, 7, _baseView);
    _panelBackground->setProperty("tag", PanelBackgroundTag);
    layoutForSize();

    QRect titleFrame = _insets.titleFrame;
    if (titleFrame.width() <= 0)
        titleFrame.setWidth(_baseView->width() - 2 * titleFrame.x());
    auto *title = new LabelView(titleFrame, _title,
                                FontTable::font(QStringLiteral("CourierNewPS-BoldMT"), _insets.titleSize), _baseView);
    title->setShadow(Qt::black, QPointF(2, 2));
    title->setReadAs(QAccessible::Heading);
}

void ListPage::initWithFrame(const QRect &frame)
{
    setGeometry(frame);
    viewDidLoad();
}

void ListPage::layoutForSize()
{
    if (!_baseView)
        return;
    _baseView->setGeometry(0, _insets.baseTop, width(), height() - _insets.baseTop - _insets.baseBottom);
    _panelBackground->setGeometry(_baseView->rect().marginsRemoved(_insets.background));
    layoutTableView();
}

QListView *ListPage::buildTableView(QAbstractItemModel *model, QAbstractItemDelegate *delegate)
{
    _tableView = new PageTableView(model, delegate, _baseView);
    _tableView->setAccessibleName(_title);
    layoutTableView();
    _tableView->show();
    return _tableView;
}

void ListPage::layoutTableView()
{
    if (_tableView)
        _tableView->setGeometry(_insets.tableSide, _tableTop, _baseView->width() - 2 * _insets.tableSide,
                                _baseView->height() - _tableTop - _insets.tableBottom);
}

QWidget *ListPage::panelBackground() const
{
    return _panelBackground;
}
