// Which kind of recording a file is, by its content, so that the right converter can be offered.
#pragma once

#include "values/date_time_adaptor.h"

#include "foundation/text_id.h"

#include <filesystem>
#include <string_view>

namespace Application_Tarvel {

// The codes are known to the code that offers converters: they never change.
enum EFileFormat : int {
    formatUnknown = 0,
    formatXpf = 1,
    formatNmeaGps = 2,
    formatUsbl = 3,
    formatPostProcessedGps = 4,
    formatRawIns = 5,
    formatRdiPd6 = 6,
    formatInsText = 7,
    formatEvents = 8,
    formatRange = 9,
    formatConvertedUsbl = 10,
    formatMountOrientation = 11,
    formatOdometer = 12,
    formatDepth = 13,
};

// Sets `code` to the EFileFormat of a file, or to formatUnknown. False when it cannot be read or is not a
// regular file; a pipe or a device stalls nobody. Reads at most 101 KiB of it. `dates` tells the form of the
// dates in event texts. Any thread.
bool DetectFileFormat(const std::filesystem::path& path, int& code,
                      const Outils_Valeurs::CDateTimeAdaptor& dates);

// Whether the file begins as a packet file of any age does. Any thread.
bool IsXpfFile(const std::filesystem::path& path);

// The format by the first bytes of a file that are in memory already.
EFileFormat DetectFormat(std::string_view head, const Outils_Valeurs::CDateTimeAdaptor& dates);

// The number of the text that names a format; the text of "unknown" for any other code.
Outils_Texte::EText GetFormatText(int code);

} // namespace Application_Tarvel
