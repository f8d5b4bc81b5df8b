// Values of fields that are enumerations.
#pragma once

namespace Conversion {

inline constexpr double kAuto = 3;     // rejection: the processing decides
inline constexpr double kOff = 2;      // rejection: never processed
inline constexpr double kAbsolute = 1; // mode of a beacon's position

} // namespace Conversion
