#pragma once

#include <QPixmap>
#include <QWidget>

// An image stretched over the view's frame: the backgrounds and the glass highlights
// that lie over the charts. It takes no input, so what lies under it still does. When the
// window is zoomed, the image is taken again at the density it is then kept at.
class ImageView : public QWidget {
    Q_OBJECT
public:
    ImageView(const QRect &frame, const QString &imageName, QWidget *parent);

    const QPixmap &image() const { return _image; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString _imageName;
    QPixmap _image;
};
