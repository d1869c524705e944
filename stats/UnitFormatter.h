#pragma once

#include <QString>

// Byte and frequency texts shared by every screen, and the digit grouping they
// use. A null QString plays the part of "no string" where the callers care.
class UnitFormatter {
public:
    // Binary multiples up to GB, grouped thousands ("1,024 KB"); below one KB the
    // raw count with the singular "Byte". decmal outside 0..3 means 0.
    static QString byteToKiloMegaGigaWithByte(double bytes, int decmal, bool unitSpace);
    // Decimal multiples; everything positive below 1 GHz is shown in MHz. No grouping.
    static QString hzToKiloMegaGigaWithHz(double hz, int decmal, bool unitSpace);

    static QString stringByCommifyWithString(const QString &string);
    static QString stringByCommifyWithString(const QString &string, const QString &unit);
    // Strips leading and trailing spaces and tabs only.
    static QString stringByTrimmingSpaceWithString(const QString &string);
};
