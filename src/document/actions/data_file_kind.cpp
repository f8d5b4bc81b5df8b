#include "document/actions/data_file_kind.h"

#include "dataaccess/format_detection.h"
#include "xpf/file.h"

namespace Application_Tarvel {

using namespace Persistance_Xpf;

namespace {

struct SConverter {
    EFileFormat detected;
    ERawFormat converter;
};

constexpr SConverter kConverters[] = {
    {formatNmeaGps, ERawFormat::nmea},
    {formatUsbl, ERawFormat::kolt},
    {formatPostProcessedGps, ERawFormat::novatel},
    {formatRawIns, ERawFormat::rawIns},
    {formatRdiPd6, ERawFormat::pd6},
    {formatInsText, ERawFormat::decodedIns},
    {formatEvents, ERawFormat::synchro},
    {formatRange, ERawFormat::range},
    {formatConvertedUsbl, ERawFormat::usbl},
    {formatMountOrientation, ERawFormat::platform},
    {formatOdometer, ERawFormat::odometer},
    {formatDepth, ERawFormat::depth},
};

} // namespace

SDataFileKind ClassifyDataFile(const std::filesystem::path& path,
                               const Outils_Valeurs::CDateTimeAdaptor& dates) {
    int code = formatUnknown;
    if (!DetectFileFormat(path, code, dates)) return {EDataFileKind::unreadable};
    if (code == formatXpf) {
        const bool outdated = OpenXpfFile(path, EFileKind::tarin).how == EOpening::outdated;
        // One that is damaged otherwise is left to who opens it.
        return {outdated ? EDataFileKind::outdatedPackets : EDataFileKind::packets};
    }
    for (const SConverter& row : kConverters)
        if (row.detected == code) return {EDataFileKind::raw, row.converter};
    return {EDataFileKind::unknown};
}

} // namespace Application_Tarvel
