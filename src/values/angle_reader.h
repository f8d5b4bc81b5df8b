// Reads the digits of a typed latitude or longitude.
#pragma once

#include "values/latitude_longitude_adaptor.h"

#include <optional>

namespace Outils_Valeurs {

// The degrees that `text` says, without sign, hemisphere or blanks around it: in the adaptor's own notation
// and separators, in NMEA form with its comma, or as one to three numbers parted by any of the usual signs.
// Empty for anything else, and for minutes or seconds of 60 or more.
std::optional<double> ReadAngle(std::string_view text, const CLatitudeLongitudeAdaptor& adaptor);

} // namespace Outils_Valeurs
