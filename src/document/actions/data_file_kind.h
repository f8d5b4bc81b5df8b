// What a file that the user has chosen is, by its content.
#pragma once

#include <filesystem>

namespace Outils_Valeurs {
class CDateTimeAdaptor;
}

namespace Application_Tarvel {

enum class EDataFileKind {
    unreadable,      // could not be looked into
    packets,         // a packet file of the current layout
    outdatedPackets, // one of an older layout, which can be brought up to date
    raw,             // a recording of a format that a converter reads
    unknown
};

// The formats of the converters, in the order in which the importer lists them.
enum class ERawFormat {
    nmea,
    kolt,
    novatel,
    rawIns,
    pd6,
    decodedIns,
    synchro,
    range,
    usbl,
    platform,
    odometer,
    depth
};

struct SDataFileKind {
    EDataFileKind kind = EDataFileKind::unreadable;
    ERawFormat format = ERawFormat::rawIns; // of a raw file
};

// Reads the head of the file. `dates` tells the form of the dates in event texts.
SDataFileKind ClassifyDataFile(const std::filesystem::path& path,
                               const Outils_Valeurs::CDateTimeAdaptor& dates);

} // namespace Application_Tarvel
