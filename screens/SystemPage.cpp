#include "SystemPage.h"

#include "InfoTableModel.h"

SystemPage::SystemPage(const Insets &insets, const InfoCellDelegate::Geometry &cells, QWidget *parent)
    : ListPage(QStringLiteral("System Information"), insets, 40, parent)
{
    _tableModel = new InfoTableModel({{QStringLiteral("DeviceInfo"), QStringLiteral("Device")},
                                      {QStringLiteral("OSInfo"), QStringLiteral("Operating System")},
                                      {QStringLiteral("CPUInfo"), QStringLiteral("CPU")}},
                                     this);
    _cellDelegate = new InfoCellDelegate(cells, this);
}

void SystemPage::viewDidLoad()
{
    ListPage::viewDidLoad();
    buildTableView(_tableModel, _cellDelegate);
}

void SystemPage::setInfoData(const std::optional<InfoDictionary> &infoData)
{
    if (!infoData)
        return;
    _tableModel->setTableData(infoData);
}

const std::optional<InfoDictionary> &SystemPage::tableData() const
{
    return _tableModel->tableData();
}
