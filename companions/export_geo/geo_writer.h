// Writes positions as points of a format of geographic information systems, by GDAL.
#pragma once

#include "export/clock.h"
#include "export/fields.h"

#include <array>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

class GDALDataset;
class OGRLayer;

namespace Exportation {

// A format of the switch. The order is that of the switch's words.
struct SGeoFormat {
    std::string_view word;           // of the switch
    const char* driver;              // of GDAL
    std::string_view extension;      // of the main file, with its point
    bool hasAttributes, hasAltitude; // in the geometry
    std::string_view layer = {};     // the layer's name where it is not the target's
    std::string_view tail = {};      // with which a whole file ends, of formats that take long to read
    // Of the file, and the same for geometry with altitude.
    std::array<std::string_view, 4> creation{}, creation25d{};
    const char* layerOption = nullptr;    // null without one
    std::string_view otherExtension = {}; // which the driver takes as well
};
std::span<const SGeoFormat> GetGeoFormats();

struct SGeoOptions {
    const SGeoFormat* format = nullptr;
    bool is25d = false;
    bool motion = false, speed = false, orientation = false; // attributes
};

// One thread. GDAL's own messages are kept for GetFault.
class CGeoWriter {
  public:
    CGeoWriter();
    ~CGeoWriter();
    CGeoWriter(const CGeoWriter&) = delete;
    CGeoWriter& operator=(const CGeoWriter&) = delete;

    // Makes the file `main` in an existing folder. `clock` must outlive the writer. False on failure, as
    // below.
    bool Open(const std::filesystem::path& main, const SGeoOptions& options, const STrackFields& fields,
              const CClock& clock);
    // Adds a point; false on failure.
    // REQUIRES: the position is one.
    bool Add(const std::uint8_t* payload, std::int64_t date);
    // Closes the file and looks whether all points are in it: GDAL reports not every failed write. False when
    // some are not.
    bool Close();

    // Lets go of the file as it is, for a process that ends: closing takes some formats longer than a stop
    // may.
    void Abandon();

    // What GDAL says; empty when it reports nothing.
    const std::string& GetFault() const { return m_fault; }

  private:
    bool AddAttribute(const char* name, SFieldRef field, bool isText = false);
    bool IsWhole() const;
    bool Fail();

    // A column of the layer: a field of the packet, or the date and the UTC without one.
    struct SAttribute {
        int index;
        SFieldRef field;
        bool isText;
    };
    SGeoOptions m_options;
    STrackFields m_fields;
    const CClock* m_clock = nullptr;
    CIsoFormatter m_iso{7};
    std::filesystem::path m_main;
    std::int64_t m_count = 0;      // of points
    GDALDataset* m_file = nullptr; // owned
    OGRLayer* m_layer = nullptr;   // of the file
    std::vector<SAttribute> m_attributes;
    std::string m_fault;
};

} // namespace Exportation
