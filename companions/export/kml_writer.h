// Writes KML 2.2: a point for each position, and the track that joins them.
#pragma once

#include "export/clock.h"
#include "export/export_file.h"
#include "export/fields.h"

#include <optional>
#include <string>

namespace Exportation {

// A colour as settings hold it, 0xAARRGGBB.
using Argb = std::uint32_t;

struct SKmlOptions {
    std::string name; // of the document
    bool showTime = true;
    std::optional<Argb> track;  // no track without a colour
    std::optional<Argb> points; // without one the colour tells the quality of the position
    bool clampToGround = true;
    double altitudeScale = 1.0, altitudeOffset = 0.0; // m; only above the ground
};

// Memory: one part of kPointsPerPart positions. One thread.
class CKmlWriter {
  public:
    // Viewers slow down on more points than these. A longer file has several parts, each a folder with its
    // own piece of the track.
    static constexpr std::uint64_t kPointsPerPart = 10'000;

    // `file` and `clock` must outlive the writer. Begins the document.
    CKmlWriter(CExportFile& file, const CClock& clock, const STrackFields& fields,
               const SKmlOptions& options);

    // Adds the position of a packet; false for one that is none.
    bool Take(const std::uint8_t* payload, std::int64_t date);
    // Ends the document.
    void End();

    std::uint64_t GetPoints() const { return m_points; }
    std::uint64_t GetParts() const { return m_parts; }

  private:
    void BeginPart();
    void EndPart();
    void WriteHead();
    void WritePoint(const std::uint8_t* payload, std::string_view coordinates, std::string_view utc);
    void WriteTrack();
    std::size_t GetStyle(const std::uint8_t* payload) const;

    CExportFile& m_file;
    const CClock& m_clock;
    STrackFields m_fields;
    SKmlOptions m_options;
    CIsoFormatter m_iso{3};
    bool m_withTime;
    std::string m_when, m_coordinates; // of the track of this part
    std::string m_lastWhen, m_lastCoordinates;
    std::uint64_t m_inPart = 0, m_points = 0, m_parts = 0;
};

} // namespace Exportation
