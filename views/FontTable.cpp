#include "FontTable.h"

#include <QFontInfo>
#include <QGuiApplication>
#include <QtMath>

namespace {

struct FontEntry {
    const char *fontName;
    QStringList families;
    QFont::Weight weight;
    // Horizontal stretch (percent) for when the first family is missing and
    // the stand-in is wider than the face it replaces.
    int fallbackStretch;
};

const QList<FontEntry> &fontEntries()
{
    // The first family of each entry is the face the name stands for; the
    // next ones are installed stand-ins with the same metrics or look.
    static const QList<FontEntry> entries = {
        {"CourierNewPS-BoldMT",
         {QStringLiteral("Courier New"), QStringLiteral("Liberation Mono"), QStringLiteral("DejaVu Sans Mono")},
         QFont::Bold,
         100},
        {"Helvetica-Bold",
         {QStringLiteral("Helvetica"), QStringLiteral("Nimbus Sans"), QStringLiteral("Liberation Sans"),
          QStringLiteral("DejaVu Sans")},
         QFont::Bold,
         100},
        // DejaVu Sans Bold runs about an eighth wider than Trebuchet MS Bold;
        // unstretched, "Summary" would not fit its page-control cell.
        {"TrebuchetMS-Bold", {QStringLiteral("Trebuchet MS"), QStringLiteral("DejaVu Sans")}, QFont::Bold, 88},
    };
    return entries;
}

} // namespace

QStringList FontTable::families(const QString &fontName)
{
    for (const FontEntry &entry : fontEntries()) {
        if (fontName == QLatin1String(entry.fontName))
            return entry.families;
    }
    return {};
}

QFont FontTable::font(const QString &fontName, qreal pointSize)
{
    QFont font = QGuiApplication::font();
    // Pixel sizes are whole numbers; every size the screens use is one.
    font.setPixelSize(qMax(1, qRound(pointSize)));
    font.setHintingPreference(QFont::PreferNoHinting);
    for (const FontEntry &entry : fontEntries()) {
        if (fontName != QLatin1String(entry.fontName))
            continue;
        font.setFamilies(entry.families);
        font.setWeight(entry.weight);
        if (entry.fallbackStretch != 100) {
            const QString resolved = QFontInfo(font).family().section(QStringLiteral(" ["), 0, 0);
            if (resolved.compare(entry.families.first(), Qt::CaseInsensitive) != 0)
                font.setStretch(entry.fallbackStretch);
        }
        break;
    }
    return font;
}
