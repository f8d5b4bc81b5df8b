// The readers of the converters, one for each kind of source. What each format is, is in docs/formats.md.
#pragma once

#include "convert/conversion.h"
#include "convert/fields.h"

namespace Conversion {

bool ReadNmea(SConversion& conversion);
bool ReadBeacons(SConversion& conversion); // "$PTSAG" of an acoustic positioning system
bool ReadPostProcessed(SConversion& conversion);
bool ReadRawStream(SConversion& conversion);
bool ReadDopplerLog(SConversion& conversion); // PD6
bool ReadDecodedText(SConversion& conversion);
bool ReadEvents(SConversion& conversion);
// External data text; the heading of its first line says which.
bool ReadRanges(SConversion& conversion);
bool ReadExternalBeacons(SConversion& conversion);
bool ReadPlatform(SConversion& conversion);
bool ReadOdometer(SConversion& conversion);
bool ReadDepth(SConversion& conversion);

} // namespace Conversion
