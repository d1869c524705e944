// The floor for the footprint comparison: a Qt Widgets window of the phone's size with
// one label that a two-second timer updates. What any such program costs here before
// it reads a single /proc file.
#include <QApplication>
#include <QLabel>
#include <QTimer>

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QLabel label(QStringLiteral("0"));
    label.resize(320, 480);
    label.show();
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &label, [&] { label.setText(QString::number(++ticks)); });
    timer.start(2000);
    return app.exec();
}
