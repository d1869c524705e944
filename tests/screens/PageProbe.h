#pragma once

#include "InfoDictionary.h"
#include "LabelView.h"
#include "ListPage.h"
#include "ProcessRecord.h"
#include "RenderProbe.h"
#include "SummaryColors.h"

#include <QtWidgets>

// What the page tests build their pages from and read back from them.
namespace PageProbe {

inline QColor colour(const QString &name) // of the Summary page's palette
{
    using namespace SummaryColors;
    return QMap<QString, Rgb>{
        {"low", low}, {"warning", warning}, {"critical", critical}, {"good", good}, {"unknown", unknown}}
        .value(name)
        .color();
}

inline QList<ProcessRecord> records(int count, const QString &name = QStringLiteral("proc"))
{
    QList<ProcessRecord> list;
    for (int i = 0; i < count; ++i)
        list.append({QString::number(1000 + i),
                     name + QString::number(i),
                     QString::number(20 - i),
                     QStringLiteral("7:0%1").arg(i),
                     {},
                     {}});
    return list;
}

inline QString text(const QRect &r)
{
    return QStringLiteral("%1 %2 %3 %4").arg(r.x()).arg(r.y()).arg(r.width()).arg(r.height());
}

LabelView *label(const ListPage &page, const QString &text)
{
    for (LabelView *label : page.baseView()->findChildren<LabelView *>())
        if (label->text() == text)
            return label;
    return nullptr;
}

// Sections of the given names with that many rows each.
inline InfoDictionary record(const QStringList &names, const QList<int> &counts)
{
    InfoDictionary info;
    for (int i = 0; i < names.size(); ++i) {
        InfoSection section;
        for (int row = 0; row < counts[i]; ++row)
            section.append({QStringLiteral("row%1").arg(row), QStringLiteral("value %1").arg(row)});
        info.addSection(names[i], section);
    }
    return info;
}

// The colour of the page, over grey, at a point of a row of its table, in the row's own coordinates.
inline QColor at(ListPage &page, int row, QPointF inRow)
{
    QListView *view = page.tableView();
    QImage image(page.size(), QImage::Format_ARGB32);
    image.fill(QColor(128, 128, 128));
    page.render(&image);
    const QPointF p = view->mapTo(&page,
                                  view->viewport()->pos() + view->visualRect(view->model()->index(row, 0)).topLeft())
        + inRow;
    return RenderProbe::at(image, p.x(), p.y());
}

// Builds each page at the phone's size, as the root screen does.
template<typename... Pages>
void buildOnPhone(Pages &...pages)
{
    ((pages.resize(320, 460), pages.viewDidLoad()), ...);
}

} // namespace PageProbe
