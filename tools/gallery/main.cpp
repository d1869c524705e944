// Renders every chart widget with typical data into PNGs, at 1x and 2x, for
// looking at them:  kovar_gallery <output directory>
// Besides each widget alone (on black) it draws a phone-sized summary mock-up
// with the background, panels and glass images, to judge them together.

#include "FontTable.h"
#include "ImageView.h"
#include "OOHistogramView.h"
#include "OOPageControl.h"
#include "OOPieChartView.h"
#include "OORectView.h"
#include "OOStateBarView.h"
#include "ResourceImages.h"
#include "WidgetRenderer.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QTextStream>

#include <cmath>

namespace {

// Painted panel: black at 0.4 with rounded corners, as the screens use.
class Panel : public QWidget
{
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QPainterPath path;
        path.addRoundedRect(QRectF(rect()), 10.0, 10.0);
        painter.fillPath(path, QColor::fromRgbF(0.0, 0.0, 0.0, 0.4));
    }
};

void fillHistogram(OOHistogramView *view)
{
    for (int i = 0; i < 60; ++i) {
        const int user = 20 + int(18.0 * std::sin(i * 0.31) + 12.0 * std::sin(i * 0.9));
        const int system = 8 + int(6.0 * std::cos(i * 0.47));
        view->addItemData(HistogramItem::initWithUser(user, system, 100 - user - system));
    }
}

void fillPie(OOPieChartView *view)
{
    view->addItemData0(PieChartItem(300, 1.0f, 0.0f, 0.0f, 1.0f), PieChartItem(500, 1.0f, 1.0f, 0.0f, 1.0f),
                       PieChartItem(250, 0.0f, 1.0f, 1.0f, 1.0f), PieChartItem(950, 0.0f, 1.0f, 0.0f, 1.0f));
}

QLabel *label(const QString &text, const QRect &frame, QWidget *parent)
{
    auto *l = new QLabel(text, parent);
    l->setGeometry(frame);
    l->setFont(FontTable::font(QStringLiteral("CourierNewPS-BoldMT"), 13));
    l->setStyleSheet(QStringLiteral("color: white; background: transparent;"));
    return l;
}

bool save(QWidget *widget, const QDir &dir, const QString &name)
{
    bool ok = true;
    for (int ratio : { 1, 2 }) {
        const QImage image = WidgetRenderer::render(widget, ratio);
        const QString path = dir.filePath(QStringLiteral("%1@%2x.png").arg(name).arg(ratio));
        if (!image.save(path)) {
            QTextStream(stderr) << "cannot write " << path << '\n';
            ok = false;
        } else {
            QTextStream(stdout) << path << '\n';
        }
    }
    return ok;
}

// Each widget alone, on a black ground so the white outlines and shadows show.
QWidget *blackStage(const QSize &size)
{
    auto *stage = new QWidget;
    stage->resize(size);
    stage->setAutoFillBackground(true);
    QPalette palette = stage->palette();
    palette.setColor(QPalette::Window, QColor(24, 28, 36));
    stage->setPalette(palette);
    return stage;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    // The mock-ups are rendered at 2x too, whatever the screen here.
    ResourceImages::setKeptScale(ResourceImages::PixelRatio);
    const QStringList args = app.arguments();
    if (args.size() != 2) {
        QTextStream(stderr) << "usage: kovar_gallery <output directory>\n";
        return 2;
    }
    QDir dir(args.at(1));
    if (!dir.mkpath(QStringLiteral(".")))
        return 1;
    bool ok = true;

    {
        QWidget *stage = blackStage(QSize(170, 95));
        auto *histogram = new OOHistogramView(QRect(10, 10, 150, 75), stage);
        histogram->setItemRectWidth(2);
        histogram->setItemRectHeight(2);
        histogram->setAutoFillBackground(true);
        QPalette palette = histogram->palette();
        palette.setColor(QPalette::Window, Qt::black);
        histogram->setPalette(palette);
        fillHistogram(histogram);
        ok = save(stage, dir, QStringLiteral("histogram")) && ok;
        delete stage;
    }
    {
        QWidget *stage = blackStage(QSize(140, 140));
        auto *pie = new OOPieChartView(QRect(10, 10, 120, 120), stage);
        fillPie(pie);
        ok = save(stage, dir, QStringLiteral("piechart")) && ok;
        delete stage;
    }
    {
        QWidget *stage = blackStage(QSize(315, 47));
        auto *bar = new OOStateBarView(QRect(10, 10, 295, 27), stage);
        bar->addItemData0(StateBarItem(62.0, 0.0f, 1.0f, 0.0f, 1.0f), StateBarItem(38.0, 0.0f, 0.5f, 1.0f, 1.0f));
        ok = save(stage, dir, QStringLiteral("statebar")) && ok;
        delete stage;
    }
    {
        QWidget *stage = blackStage(QSize(80, 35));
        auto *square = new OORectView(QRect(10, 10, 15, 15), stage);
        square->setRectColor(QColor::fromRgbF(0.0, 1.0, 1.0));
        auto *round = new OORectView(QRect(40, 10, 15, 15), stage);
        round->setType(1);
        round->setRectColor(QColor::fromRgbF(1.0, 0.0, 0.0));
        ok = save(stage, dir, QStringLiteral("rectview")) && ok;
        delete stage;
    }
    {
        QWidget *stage = blackStage(QSize(290, 40));
        auto *pages = new OOPageControl(QRect(10, 10, 270, 20), 4, stage);
        pages->setTitles({ QStringLiteral("Summary"), QStringLiteral("Processes"), QStringLiteral("System"),
                           QStringLiteral("Network") });
        pages->setCurrentPage(1);
        ok = save(stage, dir, QStringLiteral("pagecontrol")) && ok;
        delete stage;
    }
    {
        // A phone summary mock-up: 320 x 460 under the status bar.
        ImageView phone(QRect(0, 0, 320, 460), QStringLiteral("bg.png"), nullptr);
        auto *pages = new OOPageControl(QRect(25, 0, 270, 20), 4, &phone);
        pages->setTitles({ QStringLiteral("Summary"), QStringLiteral("Processes"), QStringLiteral("System"),
                           QStringLiteral("Network") });
        pages->setCurrentPage(0);

        auto *cpuPanel = new Panel(&phone);
        cpuPanel->setGeometry(5, 25, 310, 120);
        label(QStringLiteral("CPU Usage"), QRect(15, 5, 200, 25), cpuPanel);
        auto *histogram = new OOHistogramView(QRect(15, 35, 150, 75), cpuPanel);
        histogram->setItemRectWidth(2);
        histogram->setItemRectHeight(2);
        histogram->setAutoFillBackground(true);
        QPalette palette = histogram->palette();
        palette.setColor(QPalette::Window, Qt::black);
        histogram->setPalette(palette);
        fillHistogram(histogram);
        new ImageView(QRect(15, 35, 150, 75), QStringLiteral("histogram_glass_effect.png"), cpuPanel);
        auto *user = new OORectView(QRect(180, 40, 15, 15), cpuPanel);
        user->setRectColor(QColor::fromRgbF(0.0, 1.0, 1.0));
        label(QStringLiteral("User"), QRect(200, 35, 100, 25), cpuPanel);
        auto *system = new OORectView(QRect(180, 65, 15, 15), cpuPanel);
        system->setRectColor(QColor::fromRgbF(1.0, 0.0, 0.0));
        label(QStringLiteral("System"), QRect(200, 60, 100, 25), cpuPanel);

        auto *memPanel = new Panel(&phone);
        memPanel->setGeometry(5, 150, 310, 150);
        label(QStringLiteral("Memory Usage"), QRect(15, 5, 200, 25), memPanel);
        auto *pie = new OOPieChartView(QRect(10, 30, 120, 120), memPanel);
        fillPie(pie);

        auto *diskPanel = new Panel(&phone);
        diskPanel->setGeometry(5, 305, 310, 90);
        label(QStringLiteral("Disk Usage"), QRect(15, 5, 200, 25), diskPanel);
        auto *bar = new OOStateBarView(QRect(15, 35, 285, 27), diskPanel);
        bar->addItemData0(StateBarItem(62.0, 1.0f, 0.5f, 0.0f, 1.0f), StateBarItem(38.0, 0.0f, 1.0f, 0.0f, 1.0f));
        new ImageView(QRect(15, 35, 285, 27), QStringLiteral("statebar_glass_effect.png"), diskPanel);
        auto *battery = new OORectView(QRect(210, 65, 15, 15), diskPanel);
        battery->setType(1);
        battery->setRectColor(QColor::fromRgbF(0.0, 1.0, 0.0));

        ok = save(&phone, dir, QStringLiteral("summary-mockup")) && ok;
    }
    {
        ImageView tablet(QRect(0, 0, 768, 1004), QStringLiteral("ipad_bg2.png"), nullptr);
        ok = save(&tablet, dir, QStringLiteral("tablet-background")) && ok;
    }
    return ok ? 0 : 1;
}
