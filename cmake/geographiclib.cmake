# Debian keeps the find module of GeographicLib outside the path of CMake and gives no target: this one serves.
find_path(GEOGRAPHICLIB_INCLUDE GeographicLib/Geocentric.hpp REQUIRED)
find_library(GEOGRAPHICLIB_LIBRARY NAMES GeographicLib Geographic REQUIRED)
add_library(GeographicLib::GeographicLib UNKNOWN IMPORTED)
set_target_properties(GeographicLib::GeographicLib PROPERTIES
  IMPORTED_LOCATION ${GEOGRAPHICLIB_LIBRARY} INTERFACE_INCLUDE_DIRECTORIES ${GEOGRAPHICLIB_INCLUDE})
