#pragma once

#include <QWidget>

class LabelView;
class PanelView;
class QAbstractItemDelegate;
class QAbstractItemModel;
class QListView;

// The frame shared by the System and Network pages: a container under the 20-point
// title bar, the dark rounded panel and the page title. The pages add their tables.
class InfoPage : public QWidget {
    Q_OBJECT
public:
    static constexpr int PanelBackgroundTag = 400001;

    InfoPage(const QString &title, QWidget *parent);

    // Builds the frame at the widget's current size.
    virtual void viewDidLoad();
    // Lays the frame out again after the page has been made shorter for a banner.
    virtual void setFrameForAd();

    QWidget *baseView() const { return _baseView; }
    QWidget *panelBackground() const;
    QString title() const { return _title; }
    // The page's table, once built; null before.
    QListView *tableView() const { return _tableView; }

protected:
    // Adds the table under the title: no separators, no selection, clear background.
    QListView *buildTableView(QAbstractItemModel *model, QAbstractItemDelegate *delegate);

private:
    void layoutTableView();

    QString _title;
    QWidget *_baseView = nullptr;
    PanelView *_panelBackground = nullptr;
    QListView *_tableView = nullptr;
};
