#include "NetworkPage.h"

#include "InfoTableModel.h"
#include "StatCore.h"

#include <QGuiApplication>

NetworkPage::NetworkPage(const Insets &insets, const InfoCellDelegate::Geometry &cells, QWidget *parent)
    : ListPage(QStringLiteral("Network Information"), insets, 40, parent)
    , _source([]() -> std::optional<InfoDictionary> { return StatCore::shared()->networkInfo(); })
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
    if (auto *application = qobject_cast<QGuiApplication *>(QCoreApplication::instance())) {
        connect(application, &QGuiApplication::applicationStateChanged, this,
                &NetworkPage::applicationStateChanged);
        // The window is shown, and so activated, before the pages are built here: an
        // application that is already active counts that activation as the first one.
        if (QGuiApplication::applicationState() == Qt::ApplicationActive)
            QMetaObject::invokeMethod(this, &NetworkPage::reloadNetworkData, Qt::QueuedConnection);
    }
}

void NetworkPage::setNetworkInfoSource(NetworkInfoSource source)
{
    _source = std::move(source);
}

const std::optional<InfoDictionary> &NetworkPage::tableData() const
{
    return _tableModel->tableData();
}

void NetworkPage::reloadNetworkData()
{
    _tableModel->setTableData(_source ? _source() : std::nullopt);
}

void NetworkPage::applicationStateChanged(Qt::ApplicationState state)
{
    if (state == Qt::ApplicationActive)
        reloadNetworkData();
}
