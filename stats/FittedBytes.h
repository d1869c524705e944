#pragma once

#include <QString>

// Byte figures for the fixed-width fields of the Summary figures, without ever
// cutting one: the handheld's "%5.5s" and "%9.9s" fields were wide enough for its
// own sizes, not for a 1,003 MB memory class or a 2 TB disk.
namespace FittedBytes {

// The byte formatter's text without a unit space, padded on the left to width as
// "%W.Ws" pads it. A longer text steps up to the next unit where that fits
// (1,003 MB is "1GB"); otherwise it is returned whole, longer than width.
QString text(double bytes, int decmal, int width);

} // namespace FittedBytes
