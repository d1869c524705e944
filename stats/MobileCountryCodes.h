#pragma once

#include <QString>

namespace MobileCountryCodes {

// ISO 3166 alpha-2 code, lower case, of a three-digit mobile country code;
// "" when the code is unknown or malformed.
QString isoCountryCode(const QString &mcc);

} // namespace MobileCountryCodes
