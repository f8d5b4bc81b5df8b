// What all exporters share: their common switches, the source with its clock and period, and the target.
#pragma once

#include "common/child_program.h"
#include "export/clock.h"
#include "export/export_file.h"
#include "export/packet_pass.h"
#include "foundation/texts.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>

namespace Exportation {

using Compagnon::CArguments;
using Compagnon::ESwitchValue;
using Compagnon::SSwitchRow;

inline constexpr SSwitchRow kFromSwitch{"/from", ESwitchValue::number, "SECONDS", EText::exportSwitchFrom};
inline constexpr SSwitchRow kToSwitch{"/to", ESwitchValue::number, "SECONDS", EText::exportSwitchTo};
inline constexpr SSwitchRow kDecimationSwitch{
    "/dec", ESwitchValue::integer, "N", EText::exportSwitchDecimation, 1, 1e9};
inline constexpr SSwitchRow kChannelSwitch{"/c", ESwitchValue::text, "CHANNEL", EText::exportSwitchChannel};
inline constexpr SSwitchRow kPointSwitch{"/lv", ESwitchValue::integer, "0|1|2|3", EText::exportSwitchPoint, 0,
                                         3};
inline constexpr SSwitchRow kOffsetSwitch{"/toffset", ESwitchValue::number, "SECONDS",
                                          EText::exportSwitchOffset};
inline constexpr SSwitchRow kUtcSwitch{"/utc", ESwitchValue::text, "DATE", EText::exportSwitchUtc};

// The places of the words "on|off".
inline constexpr std::size_t kOn = 0, kOff = 1;

// The packets of one export. One thread.
class CExportRun {
  public:
    // `arguments` with the files SOURCE and TARGET. Both must outlive the run.
    CExportRun(const CArguments& arguments, IRunMonitor& monitor);

    // Opens the source, which must be of one of these kinds, and finds its clock. False after a report.
    bool Open(std::initializer_list<Persistance_Xpf::EFileKind> kinds);

    const CArguments& GetArguments() const { return m_arguments; }
    IRunMonitor& GetMonitor() const { return m_monitor; }
    CPacketPass& GetPass() { return m_pass; }
    const CClock& GetClock() const { return m_clock; }
    // Of the switches, on the clock of the file.
    const SPeriod& GetPeriod() const { return m_period; }
    // Every so many packets are written; 1 without the switch.
    std::uint64_t GetDecimation() const;
    int GetPoint() const { return static_cast<int>(m_arguments.GetNumber(kPointSwitch.name, 0)); }
    const std::filesystem::path& GetSource() const { return m_source; }
    const std::filesystem::path& GetTarget() const { return m_target; }

    // The channel of the switch, of which NELIX_NAV is also the navigation of a result; without the switch
    // the first channel of the file that has positions. Null after a report.
    const SPassChannel* ChooseTrackChannel();
    // Null after a report when the source has no such channel.
    const SPassChannel* RequireChannel(std::string_view name);

    // Prepares an export file. False after a report.
    bool OpenFile(CExportFile& file, const std::filesystem::path& target) const;

    // Reports what the walk passed, gives the files their names and reports what was written. The end of the
    // run: stopped and failed leave no file.
    ERunEnd Finish(std::span<CExportFile* const> files, std::uint64_t packets);

    // Reports an error and returns failed.
    ERunEnd Fail(EText code, std::initializer_list<std::string_view> arguments) const;

  private:
    const CArguments& m_arguments;
    IRunMonitor& m_monitor;
    std::filesystem::path m_source, m_target;
    CPacketPass m_pass;
    CClock m_clock;
    SPeriod m_period;
};

} // namespace Exportation
