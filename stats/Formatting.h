#pragma once

#include <QString>

// Every figure's text: the size and frequency formatters and the printf of the
// fixed formats ("%5.1f%%", "Total:%3d", "%.2f"). The texts are English and their
// formats fixed, so they come out the same in every locale: "." before the decimals
// and "," between thousands, whatever LC_NUMERIC says.
namespace Formatting {

// printf into a QString, in the C locale. The C library rounds exact halves to even
// (2.5 with "%.0f" is "2"), as the figures always have; Qt's own number printing rounds
// them away from zero.
QString print(const char *format, ...) __attribute__((format(printf, 1, 2)));

// Bytes in the largest of GB, MB and KB (powers of 1024) that gives at least one whole
// unit, with decmal decimals (0 to 3; anything else is 0) and thousands commas; below
// 1 KB whole "Byte". unitSpace puts a space before the unit.
QString byteToKiloMegaGigaWithByte(double byte, int decmal, bool unitSpace);
// Hertz in GHz from 1 GHz, else in MHz for any positive figure, with decmal decimals.
QString hzToKiloMegaGigaWithHz(double hz, int decmal, bool unitSpace);

} // namespace Formatting
