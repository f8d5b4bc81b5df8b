// Writes the lines that a template describes.
#pragma once

#include "export/export_run.h"
#include "export/template_model.h"
#include "export/template_values.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Exportation {

// One thread.
class CTemplateLines {
  public:
    // All must outlive the object. Opens the source once more for each input after the first.
    CTemplateLines(CExportRun& run, const SExportTemplate& made, CExportFile& file);

    // Lines as they are: headers and footers.
    void Write(const std::vector<std::string>& lines);
    // The line of a packet of the primary input.
    void Take(const SPassPacket& packet);

    std::uint64_t GetLines() const { return m_lines; }
    // Fields that had no value.
    std::uint64_t GetEmptyValues() const { return m_empty; }

  private:
    struct SPosition {
        double latitude, longitude, altitude; // degrees, m
    };
    struct SProjection {
        int zone = 0;
        bool northern = true;
        double x = 0.0, y = 0.0; // m
        std::uint64_t line = 0;  // for which it was made, of which input and with which zone asked for
        std::size_t input = 0;
        int asked = 0;
    };

    void WriteField(const STemplateField& field);
    // Empty without a value.
    std::string MakeText(const STemplateField& field) const;
    std::string MakePacketText(const STemplateField& field) const;
    std::optional<double> GetNumber(const STemplateField& field) const;
    std::optional<double> GetInput(std::size_t input, SFieldRef field) const;
    std::optional<SPosition> GetPosition(std::size_t input) const;
    std::optional<double> Project(const STemplateField& field) const;
    // Zone, easting and northing of a line are of one projection. Null too far from the zone.
    const SProjection* ProjectOnce(const STemplateField& field, const SPosition& position) const;

    const SExportTemplate& m_template;
    const CClock& m_clock;
    CExportFile& m_file;
    std::vector<std::unique_ptr<CInputTrack>> m_tracks; // of the inputs after the first
    std::vector<STrackFields> m_positions;              // of all inputs
    SPassPacket m_packet;
    std::uint64_t m_lines = 0, m_empty = 0;
    mutable SProjection m_projected; // the last one
};

} // namespace Exportation
