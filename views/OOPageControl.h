#pragma once

#include <QColor>
#include <QFont>
#include <QList>
#include <QRectF>
#include <QString>
#include <QVariantList>
#include <QWidget>

class OOPageCellButton;
class OOPageControlDelegate;

// The titled page indicator: a row of equal cells, one per page, each a
// white rounded outline around its title; the current page gets a dark pill
// and orange text. It only shows the page set from outside: taps on the
// cells do nothing. From the keyboard (Left/Right, Home/End) and from a screen
// reader's tab list it asks for a page through pageRequested; the cell of the
// page shown then wears a focus ring while the focus came by keyboard.
class OOPageControl : public QWidget {
    Q_OBJECT

public:
    OOPageControl(const QRect &frame, int numberOfPages, QWidget *parent = nullptr);
    ~OOPageControl() override;

    // Marks that page and unmarks every other one; a page out of range
    // unmarks all. The page is not remembered beyond the colours.
    void setCurrentPage(int page);
    // The marked page, -1 for none.
    int currentPage() const { return _currentPage; }

    // Titles in page order. Entries that are not strings are skipped without
    // using up a cell; surplus strings are ignored.
    void setTitles(const QVariantList &titles);

    OOPageControlDelegate *delegate() const { return _delegate; }
    void setDelegate(OOPageControlDelegate *delegate) { _delegate = delegate; }

    int numberOfPages() const { return _numberOfPages; }
    QRectF cellRect(int index) const;
    QString title(int index) const;
    QColor pillColor(int index) const;
    QColor titleColor(int index) const;
    QFont titleFont() const { return _titleFont; }
    qreal cellCornerRadius() const;
    QList<OOPageCellButton *> cellButtons() const { return _buttons; }
    bool showsFocusRing() const { return _keyboardFocus && hasFocus(); }

    // Asks for that page as a tap on a tab would; out of range asks for nothing.
    void requestPage(int page);

Q_SIGNALS:
    void pageRequested(int page);

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    void buttonWasTouchUpInside();

    struct Cell {
        QRectF rect;
        QColor pillColor;
        QColor titleColor;
        QString title;
    };

    OOPageControlDelegate *_delegate = nullptr;
    QList<Cell> _cells;
    QList<OOPageCellButton *> _buttons;
    QFont _titleFont;
    int _numberOfPages = 0;
    int _currentPage = -1;
    bool _keyboardFocus = false;
};
