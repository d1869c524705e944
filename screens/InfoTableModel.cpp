#include "InfoTableModel.h"

InfoTableModel::InfoTableModel(QList<Section> sections, QObject *parent)
    : QAbstractListModel(parent)
    , _sections(std::move(sections))
{
    rebuild();
}

void InfoTableModel::setTableData(const std::optional<InfoDictionary> &tableData)
{
    beginResetModel();
    _tableData = tableData;
    rebuild();
    endResetModel();
}

void InfoTableModel::rebuild()
{
    _rows.clear();
    _flat.clear();
    for (int section = 0; section < _sections.size(); ++section) {
        const InfoSection rows = _tableData ? _tableData->section(_sections[section].key) : InfoSection();
        _rows.append(rows);
        _flat.append({HeaderRow, section, -1});
        for (int row = 0; row < rows.size(); ++row)
            _flat.append({DataRow, section, row});
        _flat.append({FooterRow, section, -1});
    }
}

int InfoTableModel::numberOfRowsInSection(int section) const
{
    if (section < 0 || section >= _rows.size())
        return 0;
    return int(_rows[section].size());
}

int InfoTableModel::heightForHeaderInSection(int section) const
{
    if (section < 0 || section >= _sections.size())
        return 0;
    return _sections[section].title.isEmpty() ? 0 : HeaderHeight;
}

int InfoTableModel::heightForFooterInSection(int section) const
{
    if (section < 0 || section >= _sections.size())
        return 0;
    return section == _sections.size() - 1 ? 0 : FooterHeight;
}

int InfoTableModel::headerRow(int section) const
{
    for (int i = 0; i < _flat.size(); ++i) {
        if (_flat[i].kind == HeaderRow && _flat[i].section == section)
            return i;
    }
    return -1;
}

int InfoTableModel::dataRow(int section, int rowInSection) const
{
    for (int i = 0; i < _flat.size(); ++i) {
        if (_flat[i].kind == DataRow && _flat[i].section == section && _flat[i].rowInSection == rowInSection)
            return i;
    }
    return -1;
}

int InfoTableModel::footerRow(int section) const
{
    for (int i = 0; i < _flat.size(); ++i) {
        if (_flat[i].kind == FooterRow && _flat[i].section == section)
            return i;
    }
    return -1;
}

int InfoTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(_flat.size());
}

QVariant InfoTableModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= _flat.size())
        return {};
    const FlatRow &row = _flat[index.row()];
    switch (role) {
    case RowKindRole:
        return int(row.kind);
    case SectionRole:
        return row.section;
    case RowInSectionRole:
        return row.rowInSection;
    case KeyRole:
        return row.kind == DataRow ? _rows[row.section][row.rowInSection].key : QString();
    case ValueRole:
        return row.kind == DataRow ? _rows[row.section][row.rowInSection].value : QString();
    case TitleRole:
        return row.kind == HeaderRow ? _sections[row.section].title : QString();
    case Qt::AccessibleTextRole:
        // Key and value as one phrase; a lamp row's value is already its YES or NO.
        if (row.kind == DataRow) {
            const InfoRow &data = _rows[row.section][row.rowInSection];
            return data.value.isEmpty() ? data.key : data.key + QLatin1Char(' ') + data.value;
        }
        return row.kind == HeaderRow ? _sections[row.section].title : QString();
    case Qt::AccessibleDescriptionRole:
        return row.kind == HeaderRow && !_sections[row.section].title.isEmpty() ? QStringLiteral("section heading")
                                                                                : QString();
    case HeightRole:
        switch (row.kind) {
        case HeaderRow:
            return heightForHeaderInSection(row.section);
        case DataRow:
            return RowHeight;
        case FooterRow:
            return heightForFooterInSection(row.section);
        }
        return 0;
    default:
        return {};
    }
}
