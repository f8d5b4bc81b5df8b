// The result file: navigation at the dates that are wanted, and the engine's messages.
#pragma once

#include "foundation/date_time.h"
#include "morvex/ins_filter.h"
#include "morvex/run_plan.h"
#include "morvex/smoother.h"
#include "recording/recording_writer.h"
#include "xpf/packets.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <span>
#include <string_view>

namespace Morvex {

// What goes into one packet besides the filter's state.
struct SResultContext {
    double geoidHeight = 0.0;         // m, taken off the altitudes when they are wanted above the geoid
    Vector3d rate = Vector3d::Zero(); // of the vessel against inertial space, vessel axes, rad/s
    Quaterniond vehicleToUnit = Quaterniond::Identity(); // of a stabilised mount
    std::array<double, 4> heave{};                       // of the written points, m, positive up
    std::uint32_t status1 = 0, status2 = 0;
    std::string_view sensor = ""; // the channel whose date this is; empty for the output rate
    std::uint32_t sensorData = 0; // number of its packet
};

class CResultWriter {
  public:
    // `plan` must outlive the writer. False when the file cannot be made.
    bool Open(const SRunPlan& plan);
    // The UTC of Date zero; invalid leaves the UTC fields at zero.
    void SetUtcOrigin(Outils_Temps::CDateTime origin) { m_utcOrigin = origin; }

    // The navigation at its time, with the covariance of a moment at most one sample away. Position 0 and the
    // speeds are those of the primary lever arm's point, positions 1 to 3 those of the secondary ones; the
    // attitude is that of the user's axes. False when the disk does not take it.
    bool Write(const SNavigation& navigation, const NavigationCovariance& covariance,
               const SResultContext& context);
    // Packets of the estimates and of the internal states (see state_packets.h).
    bool WriteEstimates(std::span<const std::uint8_t> payload) {
        return m_writer.WriteRaw(m_estimates, payload);
    }
    bool WriteStates(std::span<const std::uint8_t> payload) { return m_writer.WriteRaw(m_states, payload); }
    // A text longer than the packet's field is cut at a whole character.
    bool WriteMessage(double time, int level, std::string_view text);
    // Hands over to readers what waits since half a second or more.
    bool FlushIfDue();
    bool Close() { return m_writer.Close(); }

    std::uint32_t GetCount() const { return m_count; }

  private:
    void SetUtc(Outils_Temps::CDateTimeSpan date);

    const SRunPlan* m_plan = nullptr;
    Enregistrement::CRecordingWriter m_writer;
    Enregistrement::ChannelHandle m_standard = 0, m_message = 0, m_estimates = 0, m_states = 0;
    Persistance_Xpf::CXpfTaroutMorvexStdPacketV2 m_packet;
    Outils_Temps::CDateTime m_utcOrigin = Outils_Temps::CDateTime::Invalid();
    std::chrono::steady_clock::time_point m_lastFlush;
    std::uint32_t m_count = 0;
};

} // namespace Morvex
