// One walk over the packets of a source, in the order of the file and past damage.
#pragma once

#include "common/fault_counter.h"
#include "common/run_monitor.h"
#include "xpf/file.h"
#include "xpf/layout.h"
#include "xpf/stream_walk.h"

#include <cstdint>
#include <filesystem>
#include <limits>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace Exportation {

using Compagnon::ELevel;
using Compagnon::ERunEnd;
using Compagnon::IRunMonitor;
using Outils_Texte::EText;

// A channel of the source that has a decoded packet type.
struct SPassChannel {
    std::uint16_t number; // in the file
    const Persistance_Xpf::SChannelLayout* row;
    const Persistance_Xpf::SPacketLayout* layout;
    bool selected = false;
};

// A packet of a selected channel. Valid until the pass moves on.
struct SPassPacket {
    const SPassChannel* channel = nullptr;
    const std::uint8_t* payload = nullptr; // of the layout's size
    std::int64_t date = 0;                 // ticks on the clock of the file
};

// Both ends belong to it. Ticks on the clock of the file.
struct SPeriod {
    std::int64_t from = std::numeric_limits<std::int64_t>::min();
    std::int64_t to = std::numeric_limits<std::int64_t>::max();
};

// Reads a packet file in memory that does not grow with it. One thread.
class CPacketPass {
  public:
    // Packets after the end of a period that end the walk when they follow each other: a clock may jump for
    // some of them.
    static constexpr int kTolerance = 4096;

    // `monitor` must outlive the pass.
    explicit CPacketPass(IRunMonitor& monitor) : m_monitor(monitor) {}

    // Opens a file of one of the kinds, the first that reads it. False after a report of what is wrong.
    bool Open(const std::filesystem::path& path, std::initializer_list<Persistance_Xpf::EFileKind> kinds);

    Persistance_Xpf::EFileKind GetKind() const { return m_kind; }
    const std::vector<SPassChannel>& GetChannels() const { return m_channels; }
    // Null when the file has no such channel. "NELIX_NAV" is in a result the name of its navigation, which is
    // stored as MORVEX_STD.
    const SPassChannel* FindChannel(std::string_view name) const;
    // The names of all channels, with commas between them.
    std::string ListChannels() const;

    // Begins a walk over these channels of the file; all of them for an empty list. The walk's part of the
    // progress goes from `first` to `last` percent.
    void Begin(const std::vector<const SPassChannel*>& channels, const SPeriod& period, double first = 0.0,
               double last = 100.0);
    // The next packet of the selected channels in the period; false at the end, and when the run is stopped.
    bool Next(SPassPacket& packet);
    // Whether the monitor stopped the walk.
    bool IsStopped() const { return m_stopped; }
    // One warning for each kind of damage that the walk passed.
    void ReportFaults() const;

  private:
    bool NextRun();
    bool GoOn();

    IRunMonitor& m_monitor;
    std::unique_ptr<Persistance_Xpf::CXpfFile> m_file;
    std::optional<Persistance_Xpf::CStreamWalk> m_walk;
    Persistance_Xpf::EFileKind m_kind{};
    std::vector<SPassChannel> m_channels;
    std::vector<std::int16_t> m_byNumber; // index of a selected channel, or -1
    SPeriod m_period;
    Persistance_Xpf::CStreamWalk::Run m_run;
    std::size_t m_next = 0;      // in the run
    std::int64_t m_position = 0; // of the packet `m_next` in the file
    std::int64_t m_size = 0;     // of the file when the walk began
    double m_firstPercent = 0.0, m_percentPerByte = 0.0;
    int m_beyond = 0; // packets after the period since the last one before its end
    unsigned m_runs = 0;
    bool m_stopped = false;
    Compagnon::CFaultCounter m_faults;
};

} // namespace Exportation
