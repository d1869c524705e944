#include "NetworkPage.h"

#include "InfoTableModel.h"

NetworkPage::NetworkPage(const Insets &insets, const InfoCellDelegate::Geometry &cells, QWidget *parent)
    : ListPage(QStringLiteral("Network Information"), insets, 40, parent)
{
    _tableModel = new InfoTableModel({{QStringLiteral("CommonInfo"), QString()},
                                      {QStringLiteral("WifiInfo"), QStringLiteral("WiFi Information")},
                                      {QStringLiteral("CellInfo"), QStringLiteral("Cellular Information")}},
                                     this);
    _cellDelegate = new InfoCellDelegate(cells, this);
}

void NetworkPage::viewDidLoad()
{
    ListPage::viewDidLoad();
    buildTableView(_tableModel, _cellDelegate);
}

void NetworkPage::setInfoData(const std::optional<InfoDictionary> &infoData)
{
    _tableModel->setTableData(infoData);
}

const std::optional<InfoDictionary> &NetworkPage::tableData() const
{
    return _tableModel->tableData();
}
