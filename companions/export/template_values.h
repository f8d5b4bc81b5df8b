// The values of a template's inputs at a date.
#pragma once

#include "export/packet_pass.h"
#include "export/template_model.h"
#include "foundation/date_time.h"

#include <optional>
#include <vector>

namespace Exportation {

// Follows one channel of a source along growing dates. Holds two packets. One thread.
class CInputTrack {
  public:
    // All must outlive the track.
    CInputTrack(const std::filesystem::path& source, Persistance_Xpf::EFileKind kind,
                const STemplateInput& input, IRunMonitor& monitor);

    // Moves to a date, ticks. Earlier dates than before keep the place.
    void MoveTo(std::int64_t date);
    // The value of a field there; empty where the channel has none.
    std::optional<double> Get(SFieldRef field) const;

  private:
    // Passes the questions on, and keeps the progress of the primary input.
    class CQuietMonitor final : public IRunMonitor {
      public:
        explicit CQuietMonitor(IRunMonitor& monitor) : m_monitor(monitor) {}
        void Progress(double) override {}
        void Message(ELevel level, EText code, std::string_view text) override {
            m_monitor.Message(level, code, text);
        }
        bool GoOn() override { return m_monitor.GoOn(); }

      private:
        IRunMonitor& m_monitor;
    };
    struct SPacket {
        std::int64_t date = 0;
        std::vector<std::uint8_t> payload; // empty: no packet
    };
    void Advance();

    const STemplateInput& m_input;
    CQuietMonitor m_monitor;
    CPacketPass m_pass;
    SPacket m_before, m_after; // at or before the date, and after it
    std::int64_t m_date = 0;
};

// Between two values, `share` 0 to 1 of the way. Angles in degrees go the short way round: a heading stays
// within 0 to 360, other angles within ±180.
double Interpolate(const Persistance_Xpf::SFieldLayout& field, double before, double after, double share);

// The instant by a pattern: yyyy, yy, MM, dd, DDD (day of the year), HH, mm, ss and one to seven f for the
// fraction of the second, to which the instant is rounded; all other characters as they are. Empty for an
// invalid instant.
std::string FormatPattern(Outils_Temps::CDateTime instant, std::string_view pattern);

} // namespace Exportation
