#include "export/kml_export.h"

#include "export/kml_writer.h"
#include "foundation/numbers.h"
#include "foundation/paths.h"

#include <algorithm>

namespace Exportation {

using namespace Persistance_Xpf;
using Compagnon::EDialect;
using Compagnon::SProgram;

namespace {

constexpr SSwitchRow kTimeSwitch{"/showTime", ESwitchValue::word, "on|off", EText::exportSwitchTime};
constexpr SSwitchRow kTrackSwitch{"/track", ESwitchValue::word, "on|off", EText::exportSwitchTrack};
constexpr SSwitchRow kTrackColorSwitch{"/trackColor", ESwitchValue::text, "AARRGGBB",
                                       EText::exportSwitchTrackColor};
constexpr SSwitchRow kPointColorSwitch{"/pointColor", ESwitchValue::text, "AARRGGBB",
                                       EText::exportSwitchPointColor};
constexpr SSwitchRow kClampSwitch{"/clampToGround", ESwitchValue::word, "on|off", EText::exportSwitchClamp};
constexpr SSwitchRow kScaleSwitch{"/asf", ESwitchValue::number, "FACTOR", EText::exportSwitchScale};
constexpr SSwitchRow kHeightSwitch{"/ao", ESwitchValue::number, "METERS", EText::exportSwitchHeight};
constexpr Argb kWhite = 0xFFFFFFFF;

// False after a report of a text that is no colour.
bool ReadColor(const CExportRun& run, const SSwitchRow& row, std::optional<Argb>& color) {
    const auto* given = run.GetArguments().Find(row.name);
    if (!given) return true;
    color = Outils_Texte::ParseUInt(given->text, 16);
    if (color && given->text.size() <= 8) return true;
    run.Fail(EText::exportWrongColor, {given->text});
    return false;
}

bool ReadOptions(const CExportRun& run, SKmlOptions& options) {
    const CArguments& arguments = run.GetArguments();
    options.name = Outils_Fichiers::ToText(run.GetTarget().stem());
    options.showTime = arguments.GetWord(kTimeSwitch.name, kOn) == kOn;
    options.clampToGround = arguments.GetWord(kClampSwitch.name, kOn) == kOn;
    if (!options.clampToGround) {
        options.altitudeScale = arguments.GetNumber(kScaleSwitch.name, 1.0);
        options.altitudeOffset = arguments.GetNumber(kHeightSwitch.name, 0.0);
    }
    if (arguments.GetWord(kTrackSwitch.name, kOff) == kOn) options.track = kWhite;
    std::optional<Argb> track = options.track;
    if (!ReadColor(run, kTrackColorSwitch, track) || !ReadColor(run, kPointColorSwitch, options.points))
        return false;
    if (options.track) options.track = track;
    return true;
}

// The packets of the channel in the period.
std::uint64_t CountPackets(CExportRun& run, const SPassChannel& channel) {
    std::uint64_t count = 0;
    run.GetPass().Begin({&channel}, run.GetPeriod(), 0.0, 20.0);
    for (SPassPacket packet; run.GetPass().Next(packet);) ++count;
    return count;
}

ERunEnd ExportKml(const CArguments& arguments, IRunMonitor& monitor, EFileKind kind) {
    CExportRun run(arguments, monitor);
    SKmlOptions options;
    if (!ReadOptions(run, options) || !run.Open({kind})) return ERunEnd::failed;
    const SPassChannel* channel = run.ChooseTrackChannel();
    CExportFile file;
    if (!channel || !run.OpenFile(file, run.GetTarget())) return ERunEnd::failed;
    if (options.showTime && !run.GetClock().KnowsUtc())
        monitor.Report(ELevel::warning, EText::exportNoUtcTimes);

    std::uint64_t decimation = run.GetDecimation();
    if (!arguments.Has(kDecimationSwitch.name)) {
        const std::uint64_t count = CountPackets(run, *channel);
        decimation =
            std::max<std::uint64_t>(1, (count + CKmlWriter::kPointsPerPart - 1) / CKmlWriter::kPointsPerPart);
        if (decimation > 1)
            monitor.Report(ELevel::information, EText::exportDecimated,
                           {std::to_string(decimation), std::to_string(count)});
    }
    CKmlWriter writer(file, run.GetClock(), FindTrackFields(*channel->layout, run.GetPoint()), options);
    std::uint64_t seen = 0, refused = 0;
    const bool goesOn = !run.GetPass().IsStopped();
    if (goesOn) run.GetPass().Begin({channel}, run.GetPeriod(), 20.0, 100.0);
    for (SPassPacket packet; goesOn && file.IsGood() && run.GetPass().Next(packet);)
        if (seen++ % decimation == 0) refused += !writer.Take(packet.payload, packet.date);
    writer.End();
    if (refused > 0) monitor.Report(ELevel::warning, EText::exportBadPositions, {std::to_string(refused)});
    if (writer.GetParts() > 1)
        monitor.Report(ELevel::information, EText::exportKmlParts,
                       {std::to_string(writer.GetPoints()), std::to_string(writer.GetParts())});
    CExportFile* const files[] = {&file};
    return run.Finish(files, writer.GetPoints());
}

constexpr SSwitchRow kKmlSwitches[] = {kChannelSwitch, kPointSwitch,     kTimeSwitch,       kOffsetSwitch,
                                       kUtcSwitch,     kTrackSwitch,     kTrackColorSwitch, kPointColorSwitch,
                                       kClampSwitch,   kScaleSwitch,     kHeightSwitch,     kFromSwitch,
                                       kToSwitch,      kDecimationSwitch};

ERunEnd ExportInputKml(const CArguments& arguments, IRunMonitor& monitor) {
    return ExportKml(arguments, monitor, EFileKind::tarin);
}
ERunEnd ExportResultKml(const CArguments& arguments, IRunMonitor& monitor) {
    return ExportKml(arguments, monitor, EFileKind::tarout);
}

} // namespace

const SProgram kInputToKml{
    "Tarin2Kml.exe", EText::exportKmlPurpose, "SOURCE TARGET", 2, 2, kKmlSwitches, EDialect::tool, true,
    ExportInputKml};
const SProgram kResultToKml{
    "Tarout2Kml.exe", EText::exportKmlPurpose, "SOURCE TARGET", 2, 2, kKmlSwitches, EDialect::tool, true,
    ExportResultKml};

} // namespace Exportation
