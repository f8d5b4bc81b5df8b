#include "export/export_run.h"

#include "export/fields.h"
#include "foundation/paths.h"

#include <algorithm>

namespace Exportation {

using namespace Persistance_Xpf;
using Outils_Fichiers::ToText;

CExportRun::CExportRun(const CArguments& arguments, IRunMonitor& monitor)
    : m_arguments(arguments),
      m_monitor(monitor),
      m_source(Outils_Fichiers::ToAbsolute(Outils_Fichiers::FromText(arguments.GetFiles()[0]))),
      m_target(Outils_Fichiers::ToAbsolute(Outils_Fichiers::FromText(arguments.GetFiles()[1]))),
      m_pass(monitor) {}

bool CExportRun::Open(std::initializer_list<EFileKind> kinds) {
    std::optional<CDateTime> zero;
    if (const auto* utc = m_arguments.Find(kUtcSwitch.name)) {
        zero = ParseIsoDate(utc->text);
        if (!zero->IsValid()) {
            m_monitor.Report(ELevel::error, EText::exportWrongDate, {utc->text});
            return false;
        }
    }
    const CDateTimeSpan offset = CDateTimeSpan::FromSeconds(m_arguments.GetNumber(kOffsetSwitch.name, 0.0));
    if (!m_pass.Open(m_source, kinds)) return false;
    m_clock = CClock::Find(m_pass, offset.IsValid() ? offset.GetTicks() : 0, zero);
    const auto bound = [this](const SSwitchRow& row, std::int64_t& ticks) {
        if (!m_arguments.Has(row.name)) return;
        const CDateTimeSpan given = CDateTimeSpan::FromSeconds(m_arguments.GetNumber(row.name, 0.0));
        if (given.IsValid()) ticks = m_clock.Unshift(given.GetTicks());
    };
    bound(kFromSwitch, m_period.from);
    bound(kToSwitch, m_period.to);
    return true;
}

std::uint64_t CExportRun::GetDecimation() const {
    return static_cast<std::uint64_t>(m_arguments.GetNumber(kDecimationSwitch.name, 1));
}

const SPassChannel* CExportRun::RequireChannel(std::string_view name) {
    const SPassChannel* channel = m_pass.FindChannel(name);
    if (!channel)
        m_monitor.Report(ELevel::error, EText::exportNoChannel,
                         {name, ToText(m_source), m_pass.ListChannels()});
    return channel;
}

const SPassChannel* CExportRun::ChooseTrackChannel() {
    const auto hasPosition = [](const SPassChannel& channel) {
        return FindTrackFields(*channel.layout, 0).HasPosition() && channel.layout->type != typeMorvexExt;
    };
    const SPassChannel* channel = nullptr;
    const std::string name = m_arguments.GetText(kChannelSwitch.name);
    if (name.empty()) {
        const auto found = std::ranges::find_if(m_pass.GetChannels(), hasPosition);
        if (found != m_pass.GetChannels().end()) channel = &*found;
    } else {
        channel = RequireChannel(name);
        if (!channel) return nullptr;
    }
    if (channel && hasPosition(*channel)) return channel;
    m_monitor.Report(ELevel::error, EText::exportNoPositions, {name.empty() ? ToText(m_source) : name});
    return nullptr;
}

bool CExportRun::OpenFile(CExportFile& file, const std::filesystem::path& target) const {
    const std::filesystem::path sources[] = {m_source};
    const EText fault = file.Open(target, sources);
    if (fault == EText::none) return true;
    m_monitor.Report(ELevel::error, fault, {ToText(target)});
    return false;
}

ERunEnd CExportRun::Finish(std::span<CExportFile* const> files, std::uint64_t packets) {
    if (m_pass.IsStopped() || !m_monitor.GoOn()) {
        m_monitor.Report(ELevel::warning, EText::exportStopped);
        return ERunEnd::stopped;
    }
    m_pass.ReportFaults();
    if (packets == 0) return Fail(EText::exportNothing, {ToText(m_source)});
    // Several files appear all or none, as far as writes decide it.
    for (CExportFile* file : files)
        if (!file->Complete()) return Fail(EText::exportWriteFailed, {ToText(file->GetTarget())});
    for (CExportFile* file : files)
        if (!file->Commit()) return Fail(EText::exportWriteFailed, {ToText(file->GetTarget())});
    m_monitor.Progress(100.0);
    m_monitor.Report(ELevel::information, EText::exportDone, {std::to_string(packets), ToText(m_target)});
    return ERunEnd::finished;
}

ERunEnd CExportRun::Fail(EText code, std::initializer_list<std::string_view> arguments) const {
    m_monitor.Report(ELevel::error, code, arguments);
    return ERunEnd::failed;
}

} // namespace Exportation
