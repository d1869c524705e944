#pragma once

#include "ProcessRecord.h"

#include <QAbstractListModel>
#include <QList>

// The rows of the process table: one per process record, in the order given.
// Replacing the list reuses the rows that already exist (their texts change in place)
// and only inserts or removes the difference, so the view keeps its scroll position
// and does no layout work for rows that merely changed.
class ProcessTableModel : public QAbstractListModel {
    Q_OBJECT
public:
    enum Role {
        PidRole = Qt::UserRole + 1,
        ProcessNameRole,
        StartTimeRole,
        PriorityRole,
    };

    explicit ProcessTableModel(QObject *parent = nullptr);

    void setRecords(const QList<ProcessRecord> &records);
    const QList<ProcessRecord> &records() const { return _records; }

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

private:
    QList<ProcessRecord> _records;
};
