#pragma once

#include <QPixmap>
#include <QWidget>

// An image stretched over the view's frame: the backgrounds and the glass highlights
// that lie over the charts. It takes no input, so what lies under it still does.
class ImageView : public QWidget {
    Q_OBJECT
public:
    ImageView(const QRect &frame, const QString &imageName, QWidget *parent);

    const QPixmap &image() const { return _image; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QPixmap _image;
};
