#include "ProcessTableModel.h"

ProcessTableModel::ProcessTableModel(QObject *parent)
    : QAbstractListModel(parent)
{
}

void ProcessTableModel::setRecords(const QList<ProcessRecord> &records)
{
    const qsizetype oldCount = _records.size();
    const qsizetype newCount = records.size();
    if (newCount < oldCount) {
        beginRemoveRows({}, int(newCount), int(oldCount - 1));
        _records = records;
        endRemoveRows();
    } else if (newCount > oldCount) {
        beginInsertRows({}, int(oldCount), int(newCount - 1));
        _records = records;
        endInsertRows();
    } else {
        _records = records;
    }
    const qsizetype kept = std::min(oldCount, newCount);
    if (kept > 0)
        Q_EMIT dataChanged(index(0), index(int(kept - 1)));
}

int ProcessTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(_records.size());
}

QVariant ProcessTableModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= _records.size())
        return {};
    const ProcessRecord &record = _records.at(index.row());
    switch (role) {
    case PidRole:
        return record.pid;
    case Qt::DisplayRole:
    case ProcessNameRole:
        return record.processName;
    case StartTimeRole:
        return record.startTime;
    case PriorityRole:
        return record.priority;
    case Qt::AccessibleTextRole:
        // One phrase per row, under the column headers' names, for a reader going by rows.
        return QStringLiteral("PID %1, Process Name %2, Started %3, Priority %4")
            .arg(record.pid, record.processName, record.startTime, record.priority);
    default:
        return {};
    }
}
