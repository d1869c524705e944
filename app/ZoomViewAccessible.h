#pragma once

#include <QAccessibleWidget>

// The zooming window as a screen reader sees it: its one child is the device screen it
// draws, which Qt would otherwise leave out (a widget shown through a graphics scene is a
// window of its own that is never on screen), so that the pages and their figures are read.
class ZoomViewAccessible : public QAccessibleWidget {
public:
    explicit ZoomViewAccessible(QWidget *zoomView);

    int childCount() const override;
    QAccessibleInterface *child(int index) const override;
    int indexOfChild(const QAccessibleInterface *child) const override;
    QAccessibleInterface *childAt(int x, int y) const override;

    // Installed at start, beside the screens' own.
    static QAccessibleInterface *factory(const QString &className, QObject *object);

private:
    QAccessibleInterface *deviceScreen() const;
};
