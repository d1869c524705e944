#pragma once

#include "ListPage.h"
#include "ProcessCellDelegate.h"
#include "ProcessRecord.h"

#include <QList>
#include <QPointer>

#include <array>
#include <optional>

class LabelView;
class ProcessDetailsSheet;
class ProcessTableModel;
class QKeyEvent;
class QLineEdit;

// The "Processes" list: the process count, the column headers and a table of every
// process with its pid, name, start time and priority. The phone page and the tablet
// panel are this list in their own frames. Typing finds a process by name or pid (the
// search field takes the header band; Escape clears it); a click, or Enter on the
// selected row, opens its details sheet. On touch, pulling the list down past its top opens
// the search field.
class ProcessesPage : public ListPage {
    Q_OBJECT
public:
    // How far past its top the list is pulled to open the search field, in points.
    static constexpr qreal PullToFind = 40.0;

    // Builds the page at the widget's current size and shows the first process list.
    void viewDidLoad() override;

    // A missing list (the process table could not be read) keeps what is shown.
    void setProcData(const std::optional<QList<ProcessRecord>> &procData);

    const QList<ProcessRecord> &tableData() const;
    QString totalText() const;

    // Keys the screen around passes on while the list is shown: text finds, Enter opens,
    // and the sheet's keys while it is open. False for a key left to others.
    bool handleKey(QKeyEvent *event);
    QString findText() const;
    // The process the list's selection is on, if any.
    std::optional<ProcessRecord> selectedRecord() const;
    void openDetails(const ProcessRecord &record);
    ProcessDetailsSheet *detailsSheet() const { return _sheet; }

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

    struct Layout {
        Insets insets;
        QRect total;
        std::array<QRect, 3> headers; // " PID", "Process Name / Uptime", "Priority"
        Qt::Alignment priorityHeaderAlignment;
    };

    ProcessesPage(const Layout &layout, const ProcessCellDelegate::Geometry &cells, QWidget *parent);

private:
    // newFind: the find's text changed, so the selection starts on its first match.
    void showRecords(bool newFind = false);
    void setFindText(const QString &text);
    void openFind();
    void moveSelection(int step);
    void sheetWentBack();

    Layout _layout;
    QList<ProcessRecord> _allRecords;
    QLineEdit *_findField = nullptr;
    ProcessDetailsSheet *_sheet = nullptr;
    QPointer<QWidget> _focusBeforeSheet;
    QPointer<QWidget> _focusBeforeFind;
    QList<QPointer<QWidget>> _hiddenForSheet; // the list's parts, while the sheet stands for them
    LabelView *_total = nullptr;
    ProcessTableModel *_tableModel = nullptr;
    ProcessCellDelegate *_cellDelegate = nullptr;
};
