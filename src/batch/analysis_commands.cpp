// The commands that report what files hold: the dictionary of a project, a scan of one packet file, the
// format of a recording.
#include "batch/commands.h"
#include "batch/file_access.h"
#include "batch/session.h"
#include "batch/table.h"
#include "dataaccess/file_scan.h"
#include "dataaccess/format_detection.h"
#include "foundation/paths.h"
#include "foundation/texts.h"

#include <algorithm>
#include <cmath>
#include <ostream>

namespace Batch {

using namespace Application_Tarvel;
using namespace Persistance_Xpf;
using Metier_Tarvel_DataModel::CTrvDataLayer;
using Outils_Fichiers::FromText;
using Outils_Fichiers::ToText;
using Outils_Texte::GetText;

namespace {

constexpr EText kNatureLabels = EText::natureUnknown; // of nature 0; the others follow

// Where the cells begin that only some rows of the analysis have, as its header text has them.
enum EAnalysisColumn : std::size_t {
    columnFirst = 4,
    columnFirstUtc = 6,
    columnLatitude = 12,
    columnByte = 15
};
constexpr std::size_t kDictionaryDescription = 7;

// Rounded to where a rate and a float of metres still mean something.
double ToThousandths(double value) { return std::round(value * 1000) / 1000; }

void AddChannel(CTable& table, std::uint16_t number, const SOpenFile& open, const SChannelScan& seen,
                const Outils_Temps::CDateTime& origin) {
    const CXpfChannel* channel = open.file->FindChannelByNumber(number);
    const bool dated = seen.dates > 0;
    const auto first = dated ? seen.first : CDateTimeSpan::Invalid();
    const auto last = dated ? seen.last : CDateTimeSpan::Invalid();
    table.Row(EText::rowChannel, number, channel ? channel->GetName() : std::string(), seen.packets, first,
              last, origin + first, origin + last, ToThousandths(seen.GetRate()), seen.numberJumps,
              seen.timeJumps, seen.badLinks);
}

void AddFirstData(CTable& table, const SFirstData& data) {
    if (data.hasUtc) {
        table.Add(EText::rowUtcOrigin).SkipTo(columnFirst).Add(CDateTimeSpan());
        table.SkipTo(columnFirstUtc).Row(data.utcOrigin);
    }
    if (data.hasPosition) {
        table.Add(EText::rowFirstPosition).SkipTo(columnLatitude);
        table.Row(data.position.latitude, data.position.longitude, ToThousandths(data.position.altitude));
    }
}

void AddDamage(CTable& table, const CFileScan& scan) {
    for (const SDamage& damage : scan.GetDamage()) {
        table.Add(damage.torn ? EText::rowTorn : EText::rowDamaged).SkipTo(columnByte);
        table.Row(damage.position, damage.size, 1);
    }
    if (scan.GetMorePlaces() == 0) return;
    table.Add(EText::rowMoreDamaged).SkipTo(columnByte).AddEmpty();
    table.Row(scan.GetMoreBytes(), scan.GetMorePlaces());
}

void AddLayer(CTable& table, const CTrvDataLayer& layer) {
    const std::string file = ToText(layer.m_dataFile->path.filename());
    const auto begin = [&](EText kind) -> CTable& { return table.Add(file).Add(layer.m_name).Add(kind); };
    begin(EText::rowLayer).SkipTo(kDictionaryDescription);
    table.Row(layer.m_description, layer.m_hasData ? EText::hasData : EText::noData);
    for (const auto& measure : layer.m_measures) {
        const std::uint32_t nature = measure->m_nature < natureCount ? measure->m_nature : +natureUnknown;
        begin(EText::rowMeasure).Add(measure->m_index).AddEmpty();
        table.Row(measure->m_name, kNatureLabels + static_cast<int>(nature), measure->m_description);
    }
    for (const auto& enumeration : layer.m_enums) {
        begin(EText::rowEnumeration).Add(enumeration->m_index).AddEmpty().Add(enumeration->m_name);
        table.SkipTo(kDictionaryDescription).Row(enumeration->m_description);
        std::size_t index = 0;
        for (const auto& literal : enumeration->m_literals) {
            begin(EText::rowLiteral).Add(enumeration->m_index).Add(index++).Add(literal->m_name);
            table.SkipTo(kDictionaryDescription).Row(literal->m_description);
        }
    }
}

} // namespace

int AnalyseCommand(const COptions& options, SStreams streams) {
    const std::string& path = options.GetArguments()[0];
    SOpenFile open = OpenFile(path, streams);
    if (!open.file) return exitFailure;
    const auto resultOrigin = FindUtcOriginOf(open, FromText(path));
    CFileScan scan(*open.file, open.kind, FromText(path));
    scan.Run([&](int percent) {
        streams.error << Outils_Texte::FormatText(EText::progressLine, {std::to_string(percent)})
                      << std::endl;
    });
    const SFirstData first = scan.GetFirstData();
    const auto origin = first.hasUtc ? first.utcOrigin : resultOrigin;

    CTable table(streams.out, options.GetForm(), EText::analysisColumns);
    for (std::uint32_t number = 0; number <= UINT16_MAX; ++number)
        if (const SChannelScan* seen = scan.GetChannel(static_cast<std::uint16_t>(number)))
            AddChannel(table, static_cast<std::uint16_t>(number), open, *seen, origin);
    AddFirstData(table, first);
    AddDamage(table, scan);
    const bool isDamaged = !std::ranges::all_of(scan.GetDamage(), &SDamage::torn);
    // A torn end is how a recording looks whose writer is at work, or was stopped.
    return isDamaged ? Fail(path, EText::fileIsDamaged, streams) : exitSuccess;
}

int DetectCommand(const COptions& options, SStreams streams) {
    const std::string& path = options.GetArguments()[0];
    if (!CheckFile(path, FindFileFault, streams)) return exitFailure;
    Outils_Valeurs::CTrvAdaptors adaptors;
    ConfigureAdaptors(adaptors);
    int code = formatUnknown;
    if (!DetectFileFormat(FromText(path), code, adaptors.GetDateTime()))
        return Fail(path, EText::noFile, streams);
    CTable(streams.out, options.GetForm(), EText::formatColumns).Row(code, GetFormatText(code));
    return exitSuccess;
}

int DictionaryCommand(const COptions& options, SStreams streams) {
    CSession session(streams);
    if (!session.Open(options.GetArguments()[0])) return exitFailure;
    auto& project = *session.GetDocument().GetProject();
    if (options.Has("--expert")) project.RebuildDataModel(true);
    session.WaitForAnalysis();
    CTable table(streams.out, options.GetForm(), EText::dictionaryColumns);
    for (const auto& layer : project.dataModel->m_layers) AddLayer(table, *layer);
    // The document reports a file that cannot be read. The result need not be there.
    const auto files = project.simulationParameters->GetDataFiles();
    const bool whole = std::ranges::all_of(files, [&](const auto* file) {
        return file == project.simulationParameters->outputFile.get() || project.dataModel->HasLayers(file);
    });
    return whole ? exitSuccess : exitFailure;
}

} // namespace Batch
