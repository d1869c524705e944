#pragma once

#include "InfoDictionary.h"

#include <QAbstractListModel>
#include <QList>
#include <QString>

#include <optional>

// The rows of a sectioned information table, flattened for a list view: each
// section is a header tab, its data rows and a footer spacer, each row kind
// with its own height. A section without a title has a zero-height header;
// the last section's footer is zero high, so nothing trails the list.
class InfoTableModel : public QAbstractListModel {
    Q_OBJECT
public:
    enum RowKind { HeaderRow, DataRow, FooterRow };
    enum Role {
        RowKindRole = Qt::UserRole + 1,
        SectionRole,
        RowInSectionRole, // data rows: index within the section, from 0
        KeyRole,
        ValueRole,
        TitleRole, // header rows: the section's title ("" for none)
        HeightRole,
    };

    static constexpr int RowHeight = 40;
    static constexpr int HeaderHeight = 25;
    static constexpr int FooterHeight = 15;

    struct Section {
        QString key;   // name of the section in the information record
        QString title; // header text; empty: no header at all
    };

    explicit InfoTableModel(QList<Section> sections, QObject *parent = nullptr);

    // nullopt empties every section (the sections themselves stay).
    void setTableData(const std::optional<InfoDictionary> &tableData);
    const std::optional<InfoDictionary> &tableData() const { return _tableData; }

    int numberOfSections() const { return int(_sections.size()); }
    int numberOfRowsInSection(int section) const;
    int heightForHeaderInSection(int section) const;
    int heightForFooterInSection(int section) const;

    // The flat row of a section's header, of one of its data rows, or of its footer; -1 if none.
    int headerRow(int section) const;
    int dataRow(int section, int rowInSection) const;
    int footerRow(int section) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

private:
    struct FlatRow {
        RowKind kind;
        int section;
        int rowInSection;
    };
    void rebuild();

    QList<Section> _sections;
    std::optional<InfoDictionary> _tableData;
    QList<InfoSection> _rows; // per section, as shown
    QList<FlatRow> _flat;
};
