#include "iPhoneNetworkViewController.h"

#include "InfoCellDelegate.h"
#include "InfoTableModel.h"
#include "StatCore.h"

#include <QGuiApplication>

iPhoneNetworkViewController::iPhoneNetworkViewController(QWidget *parent)
    : InfoPage(QStringLiteral("Network Information"), parent)
    , _source([]() -> std::optional<InfoDictionary> { return StatCore::shared()->networkInfo(); })
{
    _tableModel = new InfoTableModel({{QStringLiteral("CommonInfo"), QString()},
                                      {QStringLiteral("WifiInfo"), QStringLiteral("WiFi Information")},
                                      {QStringLiteral("CellInfo"), QStringLiteral("Cellular Information")}},
                                     this);
    _cellDelegate = new InfoCellDelegate(InfoCellDelegate::NetworkValueFrame, true, this);
}

void iPhoneNetworkViewController::viewDidLoad()
{
    InfoPage::viewDidLoad();
    buildTableView(_tableModel, _cellDelegate);
    if (auto *application = qobject_cast<QGuiApplication *>(QCoreApplication::instance())) {
        connect(application, &QGuiApplication::applicationStateChanged, this,
                &iPhoneNetworkViewController::applicationStateChanged);
        // The window is shown, and so activated, before the pages are built here: an
        // application that is already active counts that activation as the first one.
        if (QGuiApplication::applicationState() == Qt::ApplicationActive)
            QMetaObject::invokeMethod(this, &iPhoneNetworkViewController::reloadNetworkData, Qt::QueuedConnection);
    }
}

void iPhoneNetworkViewController::setNetworkInfoSource(NetworkInfoSource source)
{
    _source = std::move(source);
}

const std::optional<InfoDictionary> &iPhoneNetworkViewController::tableData() const
{
    return _tableModel->tableData();
}

void iPhoneNetworkViewController::reloadNetworkData()
{
    _tableModel->setTableData(_source ? _source() : std::nullopt);
}

void iPhoneNetworkViewController::applicationStateChanged(Qt::ApplicationState state)
{
    if (state == Qt::ApplicationActive)
        reloadNetworkData();
}
