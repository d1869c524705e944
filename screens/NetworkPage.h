#pragma once

#include "InfoCellDelegate.h"
#include "InfoDictionary.h"
#include "ListPage.h"

#include <functional>
#include <optional>

class InfoTableModel;

// The "Network" list: general facts without a header, then Wi-Fi and cellular
// sections; YES/NO facts get a green or red lamp. Filled anew each time the
// application becomes active, and at no other time. The phone page and the tablet
// panel are this list in their own frames.
class NetworkPage : public ListPage {
    Q_OBJECT
public:
    using NetworkInfoSource = std::function<std::optional<InfoDictionary>()>;

    // Builds the page without data and starts listening for activation.
    void viewDidLoad() override;
    // Where reloadNetworkData gets its record; the shared StatCore unless replaced.
    void setNetworkInfoSource(NetworkInfoSource source);

    const std::optional<InfoDictionary> &tableData() const;
    InfoTableModel *tableModel() const { return _tableModel; }

public Q_SLOTS:
    // Reads the network record and shows it; nullopt empties the list.
    void reloadNetworkData();

protected:
    NetworkPage(const Insets &insets, const InfoCellDelegate::Geometry &cells, QWidget *parent);

private:
    void applicationStateChanged(Qt::ApplicationState state);

    InfoTableModel *_tableModel = nullptr;
    InfoCellDelegate *_cellDelegate = nullptr;
    NetworkInfoSource _source;
};
