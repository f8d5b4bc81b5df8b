// The commands that tell what is in files: the dictionary of a project, a scan of one packet file, the format
// of a recording.
#include "batch/batch_host.h"
#include "batch/commands.h"
#include "batch/packet_access.h"
#include "batch/session.h"
#include "dataaccess/file_scan.h"
#include "dataaccess/format_detection.h"
#include "foundation/numbers.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "values/adaptors.h"

#include <algorithm>
#include <ostream>

namespace Batch {

using namespace Application_Tarvel;
using namespace Persistance_Xpf;
using Outils_Fichiers::FromText;
using Outils_Texte::EText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;
using Outils_Valeurs::CTrvAdaptors;

namespace {

constexpr EText kNatureLabels = EText::natureUnknown; // number of the label of nature 0

void PrintFirstData(const SFirstData& data, const CTrvAdaptors& adaptors, std::ostream& out) {
    if (data.hasUtc) {
        std::string origin;
        adaptors.GetDateTime().ValueToText(data.utcOrigin, origin);
        out << FormatText(EText::utcOrigin, {origin}) << '\n';
    }
    if (!data.hasPosition) return;
    const auto& position = adaptors.GetGeographicPosition();
    std::string latitude, longitude, altitude;
    position.latitude.ValueToText(data.position.latitude, latitude);
    position.longitude.ValueToText(data.position.longitude, longitude);
    position.altitude.ValueToText(data.position.altitude, altitude);
    out << FormatText(EText::firstPosition, {latitude, longitude, altitude}) << '\n';
}

} // namespace

int AnalyseCommand(const COptions& options, SStreams streams) {
    const std::string& path = options.GetArguments()[0];
    const SOpenFile open = OpenFile(path, streams);
    if (!open.file) return exitFailure;
    CFileScan scan(*open.file, open.kind, FromText(path));
    scan.Run([&](int percent) { streams.error << "progress " << percent << std::endl; });

    streams.out << GetText(EText::analysisColumns) << '\n';
    for (std::uint32_t number = 0; number <= UINT16_MAX; ++number) {
        const SChannelScan* seen = scan.GetChannel(static_cast<std::uint16_t>(number));
        if (!seen) continue;
        const CXpfChannel* channel = open.file->FindChannelByNumber(static_cast<std::uint16_t>(number));
        const bool dated = seen->dates > 0;
        streams.out << number << ';' << (channel ? channel->GetName() : std::string()) << ';' << seen->packets
                    << ';' << (dated ? seen->first.ToText() : "") << ';' << (dated ? seen->last.ToText() : "")
                    << ';' << Outils_Texte::FormatFixed(seen->GetRate(), 3) << ';' << seen->numberJumps << ';'
                    << seen->timeJumps << ';' << seen->badLinks << '\n';
    }
    CTrvAdaptors adaptors;
    ConfigureAdaptors(adaptors);
    PrintFirstData(scan.GetFirstData(), adaptors, streams.out);
    for (const SDamage& damage : scan.GetDamage())
        streams.out << FormatText(damage.torn ? EText::tornAt : EText::damagedAt,
                                  {std::to_string(damage.position), std::to_string(damage.size)})
                    << '\n';
    if (scan.GetMorePlaces() > 0)
        streams.out << FormatText(EText::moreDamage,
                                  {std::to_string(scan.GetMorePlaces()), std::to_string(scan.GetMoreBytes())})
                    << '\n';
    return exitSuccess;
}

int DetectCommand(const COptions& options, SStreams streams) {
    const std::string& path = options.GetArguments()[0];
    CTrvAdaptors adaptors;
    ConfigureAdaptors(adaptors);
    int code = formatUnknown;
    std::error_code error;
    if (!DetectFileFormat(FromText(path), code, adaptors.GetDateTime()))
        return Fail(path, std::filesystem::exists(FromText(path), error) ? EText::noFile : EText::noSuchFile,
                    streams);
    streams.out << code << ';' << GetText(GetFormatText(code)) << '\n';
    return exitSuccess;
}

int DictionaryCommand(const COptions& options, SStreams streams) {
    CSession session(streams);
    if (!session.Open(options.GetArguments()[0])) return exitFailure;
    auto& project = *session.GetDocument().GetProject();
    if (options.Has("--expert")) project.RebuildDataModel(true);
    session.WaitForAnalysis();
    for (const auto& layer : project.dataModel->m_layers) {
        streams.out << Outils_Fichiers::ToText(layer->m_dataFile->path.filename()) << ';' << layer->m_name
                    << ';' << ToCell(layer->m_description) << ';'
                    << GetText(layer->m_hasData ? EText::hasData : EText::noData) << '\n';
        for (const auto& measure : layer->m_measures) {
            const std::uint32_t nature = measure->m_nature < natureCount ? measure->m_nature : +natureUnknown;
            streams.out << "  " << GetText(EText::measure) << ';' << measure->m_index << ';'
                        << ToCell(measure->m_name) << ';' << GetText(kNatureLabels + static_cast<int>(nature))
                        << '\n';
        }
        for (const auto& enumeration : layer->m_enums) {
            streams.out << "  " << GetText(EText::natureEnumeration) << ';' << enumeration->m_index << ';'
                        << enumeration->m_name;
            for (const auto& literal : enumeration->m_literals) streams.out << ';' << literal->m_name;
            streams.out << '\n';
        }
    }
    // A file that could not be read has been told of; the result need not be there.
    const auto files = project.simulationParameters->GetDataFiles();
    const bool whole = std::all_of(files.begin(), files.end(), [&](const auto* file) {
        return file == project.simulationParameters->outputFile.get() || project.dataModel->HasLayers(file);
    });
    return whole ? exitSuccess : exitFailure;
}

} // namespace Batch
