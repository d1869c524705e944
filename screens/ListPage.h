#pragma once

#include <QMargins>
#include <QRect>
#include <QWidget>

class LabelView;
class PanelView;
class QAbstractItemDelegate;
class QAbstractItemModel;
class QListView;

// The frame every list page shares: a base view, the dark rounded panel, the page
// title and, under it, the page's table. The phone and tablet place them differently
// (Insets); the pages add what lies between the title and the table.
class ListPage : public QWidget {
    Q_OBJECT
public:
    static constexpr int PanelBackgroundTag = 400001;

    // Where the parts stand, relative to the page's current size.
    struct Insets {
        int baseTop; // the base view: (0, baseTop, W, H - baseTop - baseBottom)
        int baseBottom;
        QMargins background; // the dark panel: the base view's rect less these
        QRect titleFrame;    // in the base view; a width of 0 spans it less the title's x on each side
        int titleSize;
        int tableSide;   // the table: (tableSide, top, base width - 2 x tableSide,
        int tableBottom; //            base height - top - tableBottom)
    };
    // The phone's pages: under the 20-point title band, the panel 5 points in all round.
    static constexpr Insets PhoneInsets{20, 0, QMargins(5, 5, 5, 5), QRect(15, 10, 0, 20), 19, 15, 15};
    // The tablet's right-hand panels: 8 points free at the foot, the panel 4 points in on
    // the left and 8 on the right, rows 344 points wide.
    static constexpr Insets TabletInsets{0, 8, QMargins(4, 8, 8, 0), QRect(20, 15, 344, 20), 20, 20, 5};

    // Builds the frame at the widget's current size.
    virtual void viewDidLoad();
    // Takes that frame in the parent and builds the page in it (the tablet's panels are
    // made this way; the phone's pager sizes its pages before it builds them).
    void initWithFrame(const QRect &frame);

    QWidget *baseView() const { return _baseView; }
    QWidget *panelBackground() const;
    QString title() const { return _title; }
    // The page's table, once built; null before.
    QListView *tableView() const { return _tableView; }

protected:
    // tableTop: the table's y in the base view.
    ListPage(const QString &title, const Insets &insets, int tableTop, QWidget *parent);

    // Adds the table under the title: no separators, no selection, clear background.
    QListView *buildTableView(QAbstractItemModel *model, QAbstractItemDelegate *delegate);
    // Lays the base view, the panel and the table out again for the page's current size;
    // the title and whatever lies between it and the table keep their frames.
    void layoutForSize();

private:
    void layoutTableView();

    QString _title;
    Insets _insets;
    int _tableTop;
    QWidget *_baseView = nullptr;
    PanelView *_panelBackground = nullptr;
    QListView *_tableView = nullptr;
};
