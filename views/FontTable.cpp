#include "FontTable.h"

#include <QGuiApplication>
#include <QtMath>

namespace {

struct FontEntry
{
    const char *designName;
    QStringList families;
    QFont::Weight weight;
};

const QList<FontEntry> &fontEntries()
{
    // The first family of each entry is the face the name stands for; the
    // next ones are installed stand-ins with the same metrics or look.
    static const QList<FontEntry> entries = {
        { "CourierNewPS-BoldMT", { QStringLiteral("Courier New"), QStringLiteral("Liberation Mono"),
                                   QStringLiteral("DejaVu Sans Mono") }, QFont::Bold },
        { "Helvetica-Bold", { QStringLiteral("Helvetica"), QStringLiteral("Nimbus Sans"),
                              QStringLiteral("Liberation Sans"), QStringLiteral("DejaVu Sans") }, QFont::Bold },
        { "TrebuchetMS-Bold", { QStringLiteral("Trebuchet MS"), QStringLiteral("DejaVu Sans") }, QFont::Bold },
    };
    return entries;
}

} // namespace

QStringList FontTable::families(const QString &designName)
{
    for (const FontEntry &entry : fontEntries()) {
        if (designName == QLatin1String(entry.designName))
            return entry.families;
    }
    return {};
}

QFont FontTable::font(const QString &designName, qreal pointSize)
{
    QFont font = QGuiApplication::font();
    for (const FontEntry &entry : fontEntries()) {
        if (designName == QLatin1String(entry.designName)) {
            font.setFamilies(entry.families);
            font.setWeight(entry.weight);
            break;
        }
    }
    // Pixel sizes are whole numbers; every size the screens use is one.
    font.setPixelSize(qMax(1, qRound(pointSize)));
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}
