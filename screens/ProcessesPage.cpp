#include "ProcessesPage.h"

#include "FontTable.h"
#include "Formatting.h"
#include "LabelView.h"
#include "ProcessTableModel.h"

#include <QListView>

ProcessesPage::ProcessesPage(const Layout &layout, const ProcessCellDelegate::Geometry &cells, QWidget *parent)
    : ListPage(QStringLiteral("Processes"), layout.insets, 80, parent)
    , _layout(layout)
{
    _tableModel = new ProcessTableModel(this);
    _cellDelegate = new ProcessCellDelegate(cells, this);
}

void ProcessesPage::viewDidLoad()
{
    ListPage::viewDidLoad();
    _total = new LabelView(_layout.total, QStringLiteral("Total:  0"),
                           FontTable::font(QStringLiteral("CourierNewPS-BoldMT"), 15), baseView());

    // A translucent band over the panel: text and fill fade together.
    const QFont headerFont = FontTable::font(QStringLiteral("Helvetica-Bold"), 13);
    const char *headers[] = {" PID", "Process Name / Uptime", "Priority"};
    for (int i = 0; i < 3; ++i) {
        auto *label = new LabelView(_layout.headers[i], QString::fromLatin1(headers[i]), headerFont, baseView());
        label->setBackgroundColor(Qt::black);
        label->setOpacity(0.4);
        label->setReadAs(QAccessible::ColumnHeader);
        if (i == 2)
            label->setAlignment(_layout.priorityHeaderAlignment);
    }

    buildTableView(_tableModel, _cellDelegate)->setUniformItemSizes(true);
}

void ProcessesPage::setProcData(const std::optional<QList<ProcessRecord>> &procData)
{
    if (!procData || !_total)
        return;
    _tableModel->setRecords(*procData);
    _total->setText(Formatting::print("Total:%3d", int(procData->size())));
}

const QList<ProcessRecord> &ProcessesPage::tableData() const
{
    return _tableModel->records();
}

QString ProcessesPage::totalText() const
{
    return _total ? _total->text() : QString();
}
