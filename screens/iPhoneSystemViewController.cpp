#include "iPhoneSystemViewController.h"

#include "InfoCellDelegate.h"
#include "InfoTableModel.h"
#include "StatCore.h"

iPhoneSystemViewController::iPhoneSystemViewController(QWidget *parent)
    : InfoPage(QStringLiteral("System Information"), parent)
{
    _tableModel = new InfoTableModel({{QStringLiteral("DeviceInfo"), QStringLiteral("Device")},
                                      {QStringLiteral("OSInfo"), QStringLiteral("Operating System")},
                                      {QStringLiteral("CPUInfo"), QStringLiteral("CPU")}},
                                     this);
    _cellDelegate = new InfoCellDelegate(InfoCellDelegate::SystemValueFrame, false, this);
}

void iPhoneSystemViewController::viewDidLoad()
{
    InfoPage::viewDidLoad();
    buildTableView(_tableModel, _cellDelegate);
    setInfoData(StatCore::shared()->systemInfo());
}

void iPhoneSystemViewController::setInfoData(const std::optional<InfoDictionary> &infoData)
{
    if (!infoData)
        return;
    _tableModel->setTableData(infoData);
}

const std::optional<InfoDictionary> &iPhoneSystemViewController::tableData() const
{
    return _tableModel->tableData();
}
