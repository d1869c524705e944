#pragma once

#include <QFont>
#include <QString>
#include <QStringList>

// Maps the font names the screens ask for ("CourierNewPS-BoldMT",
// "Helvetica-Bold", "TrebuchetMS-Bold") to fonts installed here. Sizes are in
// logical pixels, so a size-13 label is 13 pixels tall on a 1x screen and 26
// device pixels on a 2x one, whatever the screen's DPI setting says.
class FontTable {
public:
    static QFont font(const QString &fontName, qreal pointSize);

    // The families tried for a name, first choice first; empty for an unknown name.
    static QStringList families(const QString &fontName);
};
