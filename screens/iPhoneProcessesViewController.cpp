#include "iPhoneProcessesViewController.h"

#include "FontTable.h"
#include "LabelView.h"
#include "PageTableView.h"
#include "PanelView.h"
#include "ProcessCellDelegate.h"
#include "ProcessTableModel.h"
#include "StatCore.h"

#include <QListView>

#include <cstdio>

namespace {
QColor blackWithAlpha(qreal alpha)
{
    QColor color(Qt::black);
    color.setAlphaF(float(alpha));
    return color;
}

// UIKit's orange: RGB 1.0, 0.5, 0.0.
const QColor Orange = QColor::fromRgbF(1.0f, 0.5f, 0.0f);
} // namespace

iPhoneProcessesViewController::iPhoneProcessesViewController(QWidget *parent)
    : QWidget(parent)
{
}

void iPhoneProcessesViewController::viewDidLoad()
{
    const int W = width();
    const int H = height();
    const QFont figureFont = FontTable::font(QStringLiteral("CourierNewPS-BoldMT"), 15);
    const QFont headerFont = FontTable::font(QStringLiteral("Helvetica-Bold"), 13);

    _baseView = new QWidget(this);
    _baseView->setGeometry(0, 20, W, H - 20);

    _panelBackground = new PanelView(QRect(5, 5, W - 10, _baseView->height() - 10), blackWithAlpha(0.4), 7,
                                     _baseView);
    _panelBackground->setProperty("tag", PanelBackgroundTag);

    auto *title = new LabelView(QRect(15, 10, 200, 20), QStringLiteral("Processes"),
                                FontTable::font(QStringLiteral("CourierNewPS-BoldMT"), 19), _baseView);
    title->setShadow(Qt::black, QPointF(2, 2));

    _total = new LabelView(QRect(15, 40, 135, 15), QStringLiteral("Total:  0"), figureFont, _baseView);
    _cpuUsage = new LabelView(QRect(150, 40, 155, 15), QStringLiteral("CPU Usage:  0.0%"), figureFont, _baseView);
    _cpuUsage->setTextColor(Orange);
    _cpuUsage->setAlignment(Qt::AlignRight);

    const struct {
        const char *text;
        QRect frame;
    } headers[] = {
        {" PID", QRect(15, 60, 55, 20)},
        {"Process Name / Uptime", QRect(70, 60, 185, 20)},
        {"Priority", QRect(255, 60, 50, 20)},
    };
    for (const auto &header : headers) {
        auto *label = new LabelView(header.frame, QString::fromLatin1(header.text), headerFont, _baseView);
        label->setBackgroundColor(Qt::black);
        label->setOpacity(0.4);
    }

    _tableModel = new ProcessTableModel(this);
    _cellDelegate = new ProcessCellDelegate(this);
    _tableView = new PageTableView(_tableModel, _cellDelegate, _baseView);
    _tableView->setGeometry(15, 80, _baseView->width() - 30, _baseView->height() - 95);
    _tableView->setUniformItemSizes(true);

    setProcData(StatCore::shared()->runningProcesses());
}

void iPhoneProcessesViewController::setProcData(const std::optional<QList<ProcessRecord>> &procData)
{
    if (!procData || !_tableModel)
        return;
    _tableModel->setRecords(*procData);
    char text[32];
    std::snprintf(text, sizeof text, "Total:%3d", int(procData->size()));
    _total->setText(QString::fromLatin1(text));
}

void iPhoneProcessesViewController::setCpuUsageData(const CpuUsageData &cpuUsageData)
{
    if (!_cpuUsage)
        return;
    char text[48];
    std::snprintf(text, sizeof text, "CPU Usage:%5.1f%%", cpuUsageData.usage);
    _cpuUsage->setText(QString::fromLatin1(text));
}

void iPhoneProcessesViewController::setFrameForAd()
{
    if (!_baseView)
        return;
    _baseView->setGeometry(0, 20, width(), height() - 20);
    _panelBackground->setGeometry(5, 5, width() - 10, _baseView->height() - 10);
    _tableView->setGeometry(15, 80, _baseView->width() - 30, _baseView->height() - 95);
}

const QList<ProcessRecord> &iPhoneProcessesViewController::tableData() const
{
    static const QList<ProcessRecord> none;
    return _tableModel ? _tableModel->records() : none;
}

QString iPhoneProcessesViewController::totalText() const
{
    return _total ? _total->text() : QString();
}

QString iPhoneProcessesViewController::cpuUsageText() const
{
    return _cpuUsage ? _cpuUsage->text() : QString();
}

QWidget *iPhoneProcessesViewController::panelBackground() const
{
    return _panelBackground;
}
