#pragma once

#include "ListPage.h"
#include "ProcessCellDelegate.h"
#include "ProcessRecord.h"

#include <QList>

#include <array>
#include <optional>

class LabelView;
class ProcessTableModel;

// The "Processes" list: the process count, the column headers and a table of every
// process with its pid, name, start time and priority. The phone page and the tablet
// panel are this list in their own frames.
class ProcessesPage : public ListPage {
    Q_OBJECT
public:
    // Builds the page at the widget's current size and shows the first process list.
    void viewDidLoad() override;

    // A missing list (the process table could not be read) keeps what is shown.
    void setProcData(const std::optional<QList<ProcessRecord>> &procData);

    const QList<ProcessRecord> &tableData() const;
    QString totalText() const;

protected:
    struct Layout {
        Insets insets;
        QRect total;
        std::array<QRect, 3> headers; // " PID", "Process Name / Uptime", "Priority"
        Qt::Alignment priorityHeaderAlignment;
    };

    ProcessesPage(const Layout &layout, const ProcessCellDelegate::Geometry &cells, QWidget *parent);

private:
    Layout _layout;
    LabelView *_total = nullptr;
    ProcessTableModel *_tableModel = nullptr;
    ProcessCellDelegate *_cellDelegate = nullptr;
};
