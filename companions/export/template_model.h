// A template as it was read: which packets, and what a line is made of. docs/templates.md describes the
// files.
#pragma once

#include "export/fields.h"
#include "export/packet_pass.h"

#include <optional>
#include <string>
#include <vector>

namespace Exportation {

// A channel whose values a line takes. The first input of a template is the primary one: a line a packet.
struct STemplateInput {
    std::string name;
    const SPassChannel* channel = nullptr;
    int point = 0;        // of a result
    bool nearest = false; // the nearest packet; else between the two around the date
    double maxGap = 10.0; // s between two packets, or to the nearest one: beyond, there is no value
};

// What a field of a line shows.
enum class EFieldSource : unsigned char {
    packet, // a field of the packet
    date,   // seconds on the clock of the file
    utc,    // date and time by a pattern
    local,  // the same with an offset
    number, // of the line, from 1
    zone,   // of the universal transverse Mercator projection
    easting,
    northing,
    geocentricX,
    geocentricY,
    geocentricZ,
};

struct STemplateField {
    EFieldSource source = EFieldSource::packet;
    std::size_t input = 0;
    SFieldRef field;                           // of a packet
    double numerator = 1.0, denominator = 1.0; // the unit: numerator * value / denominator
    std::size_t width = 0;                     // characters at least
    std::optional<int> precision;              // decimals; without it the shortest text of the value
    bool left = false, plus = false;
    char fill = ' ';
    char decimalSign = '.';
    std::string pattern;          // of a date
    std::int64_t offset = 0;      // ticks, of the local time
    int zone = 0;                 // 1 to 60; 0 by the longitude
    std::optional<bool> northern; // by the latitude without it
    std::string empty;            // where there is no value
};

// A literal, or a field.
struct STemplateItem {
    std::string text; // in the encoding of the output
    std::optional<STemplateField> field;
};

struct SExportTemplate {
    std::vector<STemplateInput> inputs;        // the primary one first
    std::vector<std::string> headers, footers; // lines, in the encoding of the output
    std::vector<STemplateItem> line;
    std::string lineEnd = "\r\n";
};

} // namespace Exportation
