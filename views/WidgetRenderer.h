#pragma once

#include <QImage>

class QWidget;

// Renders a widget and its children into an image of the widget's size, with
// no window on screen (works with the offscreen platform). The image has the
// given device pixel ratio, so it is size × ratio pixels large.
class WidgetRenderer {
public:
    static QImage render(QWidget *widget, qreal devicePixelRatio = 1.0);
};
