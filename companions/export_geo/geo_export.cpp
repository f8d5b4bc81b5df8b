#include "export_geo/geo_export.h"

#include "export_geo/geo_writer.h"
#include "foundation/paths.h"
#include "foundation/text.h"

#include <algorithm>
#include <vector>

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

namespace Exportation {

using namespace Persistance_Xpf;
using Compagnon::EDialect;
using Compagnon::SProgram;
using Outils_Fichiers::ToText;
namespace fs = std::filesystem;

namespace {

constexpr SSwitchRow kFormatSwitch{"/f", ESwitchValue::word,
                                   "ESRI Shapefile|KML|GML|DXF|Geoconcept|GMT|MapInfo File|DGN",
                                   EText::exportSwitchFormat};
constexpr SSwitchRow k25dSwitch{"/25d", ESwitchValue::word, "yes|no", EText::exportSwitch25d};
constexpr SSwitchRow kMotionSwitch{"/motion", ESwitchValue::word, "yes|no", EText::exportSwitchMotion};
constexpr SSwitchRow kSpeedSwitch{"/speed", ESwitchValue::word, "yes|no", EText::exportSwitchSpeed};
constexpr SSwitchRow kOrientationSwitch{"/orientation", ESwitchValue::word, "yes|no",
                                        EText::exportSwitchOrientation};
constexpr std::size_t kYes = 0, kNo = 1;

// A folder for the files of a format until they are whole, which are several under names of their own. Goes
// with the object.
class CBesideFolder {
  public:
    ~CBesideFolder() {
        std::error_code error;
        if (!m_path.empty()) fs::remove_all(m_path, error);
    }
    bool Make(const fs::path& target) {
        std::string name = (target.parent_path() / ".export-XXXXXX").string();
        if (!::mkdtemp(name.data())) return false;
        m_path = name;
        return true;
    }
    const fs::path& Get() const { return m_path; }

    // Gives the files their names beside the folder, the main one last. Empty on failure.
    std::vector<fs::path> Commit(const fs::path& main) const {
        std::vector<fs::path> files;
        for (const auto& entry : fs::directory_iterator(m_path)) files.push_back(entry.path());
        std::ranges::sort(files, {}, [&](const fs::path& file) {
            return std::pair(file.filename() == main.filename(), file.string());
        });
        for (fs::path& file : files) {
            const Outils_Fichiers::CDescriptor bytes(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
            if (!bytes.IsOpen() || ::fsync(bytes.Get()) != 0) return {};
        }
        for (fs::path& file : files) {
            const fs::path named = m_path.parent_path() / file.filename();
            if (::rename(file.c_str(), named.c_str()) != 0) return {};
            file = named;
        }
        return files;
    }

  private:
    fs::path m_path;
};

SGeoOptions ReadOptions(const CArguments& arguments) {
    const auto isYes = [&](const SSwitchRow& row) { return arguments.GetWord(row.name, kNo) == kYes; };
    return {&GetGeoFormats()[arguments.GetWord(kFormatSwitch.name, 0)], isYes(k25dSwitch),
            isYes(kMotionSwitch), isYes(kSpeedSwitch), isYes(kOrientationSwitch)};
}

// Whether a file of the target's name can be made there, also as the format names it.
bool CheckTarget(const CExportRun& run, const fs::path& main) {
    const fs::path sources[] = {run.GetSource()};
    for (const fs::path& target : {run.GetTarget(), run.GetTarget().parent_path() / main.filename()}) {
        const EText fault = Compagnon::CTargetFile().Open(target, sources);
        if (fault == EText::none) continue;
        run.Fail(fault, {ToText(target)});
        return false;
    }
    return true;
}

// The file that the format makes of the target: with its own extension, unless the target has one of its.
fs::path NameMain(const fs::path& target, const SGeoFormat& format) {
    using Outils_Texte::EqualsNoCase;
    const auto extension = target.extension().string();
    const bool isOwn = EqualsNoCase(extension, format.extension) ||
                       (!extension.empty() && EqualsNoCase(extension, format.otherExtension));
    return target.stem().concat(isOwn ? extension : std::string(format.extension));
}

// Says what the format cannot hold, and leaves it out.
void KeepToFormat(SGeoOptions& options, IRunMonitor& monitor) {
    if (!options.format->hasAttributes)
        monitor.Report(ELevel::warning, EText::exportGeoNoAttributes, {options.format->word});
    if (!options.is25d || options.format->hasAltitude) return;
    monitor.Report(ELevel::warning, EText::exportGeoFlat, {options.format->word});
    options.is25d = false;
}

struct SPoints {
    std::uint64_t written = 0, refused = 0;
    bool good = true;
};

SPoints WritePoints(CExportRun& run, const SPassChannel& channel, const STrackFields& fields,
                    CGeoWriter& writer) {
    SPoints points;
    const std::uint64_t decimation = run.GetDecimation();
    std::uint64_t seen = 0;
    run.GetPass().Begin({&channel}, run.GetPeriod());
    for (SPassPacket packet; points.good && run.GetPass().Next(packet);) {
        if (seen++ % decimation != 0) continue;
        if (IsPosition(GetValue(packet.payload, fields.latitude),
                       GetValue(packet.payload, fields.longitude))) {
            points.good = writer.Add(packet.payload, packet.date);
            ++points.written;
        } else {
            ++points.refused;
        }
    }
    return points;
}

ERunEnd ExportGeo(const CArguments& arguments, IRunMonitor& monitor, EFileKind kind) {
    CExportRun run(arguments, monitor);
    SGeoOptions options = ReadOptions(arguments);
    if (!run.Open({kind})) return ERunEnd::failed;
    const SPassChannel* channel = run.ChooseTrackChannel();
    const fs::path name = NameMain(run.GetTarget(), *options.format);
    CBesideFolder beside;
    if (!channel || !CheckTarget(run, name)) return ERunEnd::failed;
    if (!beside.Make(run.GetTarget())) return run.Fail(EText::targetNotWritable, {ToText(run.GetTarget())});
    KeepToFormat(options, monitor);

    CGeoWriter writer;
    const auto fail = [&] {
        return writer.GetFault().empty()
                   ? run.Fail(EText::exportWriteFailed, {ToText(run.GetTarget())})
                   : run.Fail(EText::exportGeoFailed, {options.format->word, writer.GetFault()});
    };
    const STrackFields fields = FindTrackFields(*channel->layout, run.GetPoint());
    if (!writer.Open(beside.Get() / name, options, fields, run.GetClock())) return fail();
    const auto [written, refused, good] = WritePoints(run, *channel, fields, writer);
    if (run.GetPass().IsStopped()) {
        writer.Abandon();
        return run.Finish({}, written);
    }
    if (!good || !writer.Close()) return fail();
    if (refused > 0) monitor.Report(ELevel::warning, EText::exportBadPositions, {std::to_string(refused)});
    if (written == 0) return run.Finish({}, written);
    const std::vector<fs::path> files = beside.Commit(beside.Get() / name);
    if (files.empty()) return run.Fail(EText::exportWriteFailed, {ToText(run.GetTarget())});
    std::string list;
    for (const fs::path& file : files) list += (list.empty() ? "" : ", ") + ToText(file.filename());
    monitor.Report(ELevel::information, EText::exportGeoFiles, {list});
    return run.Finish({}, written);
}

constexpr SSwitchRow kGeoSwitches[] = {kChannelSwitch,     kPointSwitch, kFormatSwitch, kOffsetSwitch,
                                       kUtcSwitch,         k25dSwitch,   kMotionSwitch, kSpeedSwitch,
                                       kOrientationSwitch, kFromSwitch,  kToSwitch,     kDecimationSwitch};

ERunEnd ExportInputGeo(const CArguments& arguments, IRunMonitor& monitor) {
    return ExportGeo(arguments, monitor, EFileKind::tarin);
}
ERunEnd ExportResultGeo(const CArguments& arguments, IRunMonitor& monitor) {
    return ExportGeo(arguments, monitor, EFileKind::tarout);
}

} // namespace

const SProgram kInputToGeo{
    "Tarin2Geo.exe", EText::exportGeoPurpose, "SOURCE TARGET", 2, 2, kGeoSwitches, EDialect::tool, true,
    ExportInputGeo};
const SProgram kResultToGeo{
    "Tarout2Geo.exe", EText::exportGeoPurpose, "SOURCE TARGET", 2, 2, kGeoSwitches, EDialect::tool, true,
    ExportResultGeo};

} // namespace Exportation
