#pragma once

#include "InfoCellDelegate.h"
#include "InfoDictionary.h"
#include "ListPage.h"

#include <optional>

class InfoTableModel;

// The "Network" list: general facts without a header, then Wi-Fi and cellular
// sections; YES/NO facts get a green or red lamp. The root screen fills it anew each
// time the application becomes active. The phone page and the tablet panel are this
// list in their own frames.
class NetworkPage : public ListPage {
    Q_OBJECT
public:
    // Builds the page without data.
    void viewDidLoad() override;
    // Shows the network record; nullopt empties the list.
    void setInfoData(const std::optional<InfoDictionary> &infoData);

    const std::optional<InfoDictionary> &tableData() const;
    InfoTableModel *tableModel() const { return _tableModel; }

protected:
    NetworkPage(const Insets &insets, const InfoCellDelegate::Geometry &cells, QWidget *parent);

private:
    InfoTableModel *_tableModel = nullptr;
    InfoCellDelegate *_cellDelegate = nullptr;
};
