#pragma once

#include "CpuUsageData.h"
#include "ProcessRecord.h"

#include <QList>
#include <QWidget>

#include <optional>

class LabelView;
class PanelView;
class ProcessTableModel;
class ProcessCellDelegate;
class QListView;

// The "Processes" page: the process count, the overall CPU usage, and a table of
// every process with its pid, name, start time and priority.
class iPhoneProcessesViewController : public QWidget {
    Q_OBJECT
public:
    static constexpr int PanelBackgroundTag = 400001;

    explicit iPhoneProcessesViewController(QWidget *parent = nullptr);

    // Builds the page at the widget's current size and shows the first process list.
    void viewDidLoad();

    // A missing list (the process table could not be read) keeps what is shown.
    void setProcData(const std::optional<QList<ProcessRecord>> &procData);
    void setCpuUsageData(const CpuUsageData &cpuUsageData);
    void setFrameForAd();

    const QList<ProcessRecord> &tableData() const;
    QString totalText() const;
    QString cpuUsageText() const;
    QListView *tableView() const { return _tableView; }
    QWidget *baseView() const { return _baseView; }
    QWidget *panelBackground() const;

private:
    QWidget *_baseView = nullptr;
    PanelView *_panelBackground = nullptr;
    LabelView *_total = nullptr;
    LabelView *_cpuUsage = nullptr;
    QListView *_tableView = nullptr;
    ProcessTableModel *_tableModel = nullptr;
    ProcessCellDelegate *_cellDelegate = nullptr;
};
