#include "ProcessesPage.h"

#include "FontTable.h"
#include "Formatting.h"
#include "LabelView.h"
#include "ProcessDetailsSheet.h"
#include "ProcessTableModel.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QScrollEvent>

#include <algorithm>
#include <utility>

ProcessesPage::ProcessesPage(const Layout &layout, const ProcessCellDelegate::Geometry &cells, QWidget *parent)
    : ListPage(QStringLiteral("Processes"), layout.insets, 80, parent)
    , _layout(layout)
{
    _tableModel = new ProcessTableModel(this);
    _cellDelegate = new ProcessCellDelegate(cells, this);
}

void ProcessesPage::viewDidLoad()
{
    ListPage::viewDidLoad();
    _total = new LabelView(_layout.total, QStringLiteral("Total:  0"),
                           FontTable::font(QStringLiteral("CourierNewPS-BoldMT"), 15), baseView());

    // A translucent band over the panel: text and fill fade together.
    const QFont headerFont = FontTable::font(QStringLiteral("Helvetica-Bold"), 13);
    const char *headers[] = {" PID", "Process Name / Uptime", "Priority"};
    for (int i = 0; i < 3; ++i) {
        auto *label = new LabelView(_layout.headers[i], QString::fromLatin1(headers[i]), headerFont, baseView());
        label->setBackgroundColor(Qt::black);
        label->setOpacity(0.4);
        label->setReadAs(QAccessible::ColumnHeader);
        if (i == 2)
            label->setAlignment(_layout.priorityHeaderAlignment);
    }

    QListView *table = buildTableView(_tableModel, _cellDelegate);
    table->setUniformItemSizes(true);
    // One row can be picked: by a click, or by Up and Down while finding.
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    connect(table, &QListView::clicked, this, [this](const QModelIndex &index) {
        if (index.row() < _tableModel->records().size())
            openDetails(_tableModel->records().at(index.row()));
    });

    // The field takes the header band while a find is on, in the headers' own look.
    QRect band = _layout.headers[0];
    for (const QRect &header : _layout.headers)
        band = band.united(header);
    _findField = new QLineEdit(baseView());
    _findField->setGeometry(band);
    _findField->setFont(headerFont);
    _findField->setPlaceholderText(QStringLiteral("Find a name or pid"));
    _findField->setStyleSheet(QStringLiteral("QLineEdit { color: white; background: black; border: 1px "
                                             "solid rgba(255, 255, 255, 50%); border-radius: 4px; }"));
    _findField->hide();
    _findField->installEventFilter(this);
    connect(_findField, &QLineEdit::textChanged, this, &ProcessesPage::setFindText);
    // On touch there are no keys to type into the list: pulling it down past its top opens the field.
    table->viewport()->installEventFilter(this);

    _sheet = new ProcessDetailsSheet(baseView());
    connect(_sheet, &ProcessDetailsSheet::wentBack, this, &ProcessesPage::sheetWentBack);
}

void ProcessesPage::setProcData(const std::optional<QList<ProcessRecord>> &procData)
{
    if (!procData || !_total)
        return;
    _allRecords = *procData;
    showRecords();
    if (_sheet && _sheet->isOpen()) {
        // The same process: its pid, and the start that tells a reused pid apart.
        const ProcessRecord &shown = _sheet->record();
        std::optional<ProcessRecord> now;
        for (const ProcessRecord &record : _allRecords)
            if (record.pid == shown.pid && record.usage.startTicks == shown.usage.startTicks)
                now = record;
        _sheet->refresh(now);
    }
}

void ProcessesPage::showRecords(bool newFind)
{
    const QString find = findText();
    const std::optional<ProcessRecord> selected = newFind ? std::nullopt : selectedRecord();
    if (find.isEmpty()) {
        _tableModel->setRecords(_allRecords);
        _total->setText(Formatting::print("Total:%3d", int(_allRecords.size())));
    } else {
        QList<ProcessRecord> matches;
        for (const ProcessRecord &record : _allRecords)
            if (record.processName.contains(find, Qt::CaseInsensitive) || record.pid.startsWith(find))
                matches.append(record);
        _tableModel->setRecords(matches);
        // Matches of all: "Total:3/240".
        _total->setText(Formatting::print("Total:%d/%d", int(matches.size()), int(_allRecords.size())));
    }
    // The selection stays on its process while the rows move; a find starts on its first match.
    QListView *table = tableView();
    int row = find.isEmpty() ? -1 : 0;
    if (selected)
        for (int i = 0; i < _tableModel->records().size(); ++i)
            if (_tableModel->records().at(i).pid == selected->pid)
                row = i;
    if (row >= 0 && row < _tableModel->rowCount())
        table->setCurrentIndex(_tableModel->index(row));
    else
        table->clearSelection();
}

QString ProcessesPage::findText() const
{
    return _findField ? _findField->text() : QString();
}

void ProcessesPage::setFindText(const QString &text)
{
    if (!_findField)
        return;
    _findField->setVisible(!text.isEmpty() || _findField->hasFocus());
    showRecords(true);
}

std::optional<ProcessRecord> ProcessesPage::selectedRecord() const
{
    const QListView *table = tableView();
    if (!table || !table->selectionModel())
        return std::nullopt;
    const QModelIndexList rows = table->selectionModel()->selectedIndexes();
    if (rows.isEmpty() || rows.first().row() >= _tableModel->records().size())
        return std::nullopt;
    return _tableModel->records().at(rows.first().row());
}

void ProcessesPage::moveSelection(int step)
{
    const int count = _tableModel->rowCount();
    if (count == 0)
        return;
    const QModelIndex current = tableView()->currentIndex();
    const int row = std::clamp(current.isValid() ? current.row() + step : 0, 0, count - 1);
    tableView()->setCurrentIndex(_tableModel->index(row));
    tableView()->scrollTo(_tableModel->index(row));
}

void ProcessesPage::openDetails(const ProcessRecord &record)
{
    if (!_sheet)
        return;
    if (!_sheet->isOpen())
        _focusBeforeSheet = window()->focusWidget();
    _sheet->setRestGeometry(panelBackground()->geometry());
    // The sheet is the panel while it is shown: nothing of the list shows through it.
    if (!_sheet->isOpen()) {
        _hiddenForSheet.clear();
        for (QWidget *child : baseView()->findChildren<QWidget *>(Qt::FindDirectChildrenOnly))
            if (child != _sheet && child->isVisibleTo(baseView())) {
                _hiddenForSheet.append(child);
                child->hide();
            }
    }
    _sheet->open(record);
}

void ProcessesPage::sheetWentBack()
{
    for (QWidget *child : std::as_const(_hiddenForSheet))
        if (child)
            child->show();
    _hiddenForSheet.clear();
    if (_focusBeforeSheet)
        _focusBeforeSheet->setFocus(Qt::OtherFocusReason);
    _focusBeforeSheet = nullptr;
}

bool ProcessesPage::handleKey(QKeyEvent *event)
{
    if (!_findField)
        return false;
    if (_sheet->isOpen())
        return _sheet->handleKey(event);
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (const std::optional<ProcessRecord> record = selectedRecord()) {
            openDetails(*record);
            return true;
        }
        return false;
    case Qt::Key_Escape:
        if (_findField->text().isEmpty() && _findField->isHidden())
            return false;
        _findField->clear();
        _findField->hide();
        if (_focusBeforeFind)
            _focusBeforeFind->setFocus(Qt::OtherFocusReason);
        _focusBeforeFind = nullptr;
        return true;
    case Qt::Key_Up:
    case Qt::Key_Down:
        if (_findField->text().isEmpty())
            return false;
        moveSelection(event->key() == Qt::Key_Down ? 1 : -1);
        return true;
    case Qt::Key_Backspace:
        if (_findField->text().isEmpty())
            return false;
        _findField->backspace();
        return true;
    default:
        break;
    }
    const QString text = event->text();
    if (text.isEmpty() || !text.at(0).isPrint() || (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier)))
        return false;
    // The rest of the typing goes straight to the field.
    openFind();
    _findField->insert(text);
    return true;
}

void ProcessesPage::keyPressEvent(QKeyEvent *event)
{
    if (!handleKey(event))
        ListPage::keyPressEvent(event);
}

void ProcessesPage::resizeEvent(QResizeEvent *event)
{
    ListPage::resizeEvent(event);
    if (_sheet && panelBackground())
        _sheet->setRestGeometry(panelBackground()->geometry());
}

void ProcessesPage::openFind()
{
    if (!_findField || !_findField->isHidden())
        return;
    _focusBeforeFind = window()->focusWidget();
    _findField->show();
    // An on-screen keyboard comes up for a field with the focus.
    if (isVisible())
        _findField->setFocus(Qt::OtherFocusReason);
}

bool ProcessesPage::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Scroll && tableView() && watched == tableView()->viewport()) {
        const auto *scroll = static_cast<QScrollEvent *>(event);
        if (scroll->overshootDistance().y() <= -PullToFind && !_sheet->isOpen())
            openFind();
    }
    // In the field, the keys that are not text still act on the list.
    if (watched == _findField && event->type() == QEvent::KeyPress) {
        auto *key = static_cast<QKeyEvent *>(event);
        switch (key->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_Escape:
        case Qt::Key_Up:
        case Qt::Key_Down:
            return handleKey(key);
        default:
            break;
        }
    }
    return ListPage::eventFilter(watched, event);
}

const QList<ProcessRecord> &ProcessesPage::tableData() const
{
    return _tableModel->records();
}

QString ProcessesPage::totalText() const
{
    return _total ? _total->text() : QString();
}
