#pragma once

#include <QColor>
#include <QStringList>
#include <QWidget>

// The plain page indicator: one small dot per page, centred in a row, the current
// page's dot white and the others faint. It only shows the page set from outside
// and takes no mouse input, so what lies under it still does. A screen reader reads it
// as a tab list of the pages' titles and may ask for a page through pageRequested.
class DotPageControl : public QWidget {
    Q_OBJECT

public:
    static constexpr qreal DotDiameter = 7.0;
    static constexpr qreal DotSpacing = 9.0; // between two dots' edges
    static const QColor CurrentDotColor;
    static const QColor OtherDotColor;

    DotPageControl(const QRect &frame, int numberOfPages, QWidget *parent = nullptr);

    int numberOfPages() const { return _numberOfPages; }
    int currentPage() const { return _currentPage; }
    // A page out of range is ignored.
    void setCurrentPage(int page);

    QRectF dotRect(int page) const;

    // The pages' names, in page order, for those who cannot see the dots.
    QStringList titles() const { return _titles; }
    void setTitles(const QStringList &titles) { _titles = titles; }

    // Asks for that page; out of range asks for nothing.
    void requestPage(int page);

Q_SIGNALS:
    void pageRequested(int page);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    int _numberOfPages;
    int _currentPage = 0;
    QStringList _titles;
};
