#pragma once

#include "InfoCellDelegate.h"
#include "InfoDictionary.h"
#include "ListPage.h"

#include <optional>

class InfoTableModel;

// The "System" list: device, OS and CPU identification in three sections, read once
// when the page is built; the refresh timer never reaches it. The phone page and the
// tablet panel are this list in their own frames.
class SystemPage : public ListPage {
    Q_OBJECT
public:
    void viewDidLoad() override;
    // Ignores nullopt (the page keeps what it shows); otherwise shows the record.
    void setInfoData(const std::optional<InfoDictionary> &infoData);

    const std::optional<InfoDictionary> &tableData() const;
    InfoTableModel *tableModel() const { return _tableModel; }

protected:
    SystemPage(const Insets &insets, const InfoCellDelegate::Geometry &cells, QWidget *parent);

private:
    InfoTableModel *_tableModel = nullptr;
    InfoCellDelegate *_cellDelegate = nullptr;
};
