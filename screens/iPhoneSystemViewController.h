#pragma once

#include "InfoDictionary.h"
#include "InfoPage.h"

#include <optional>

class InfoCellDelegate;
class InfoTableModel;

// The "System" page: device, OS and CPU identification in three sections, read
// once when the page is built; the refresh timer never reaches it.
class iPhoneSystemViewController : public InfoPage {
    Q_OBJECT
public:
    explicit iPhoneSystemViewController(QWidget *parent = nullptr);

    void viewDidLoad() override;
    // Ignores nullopt (the page keeps what it shows); otherwise shows the record.
    void setInfoData(const std::optional<InfoDictionary> &infoData);

    const std::optional<InfoDictionary> &tableData() const;
    InfoTableModel *tableModel() const { return _tableModel; }

private:
    InfoTableModel *_tableModel = nullptr;
    InfoCellDelegate *_cellDelegate = nullptr;
};
