#include "export/kml_writer.h"

#include "foundation/texts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>

namespace Exportation {

using Outils_Texte::EText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

namespace {

// The quality of a position, the best first, and its colour.
struct SQuality {
    std::string_view style;
    double deviation; // horizontal, m: less than this
    std::uint8_t modes[3];
    Argb color;
};
constexpr SQuality kQualities[] = {
    {"q0", 0.1, {4, 4, 4}, 0xFF33A02C},      {"q1", 1.0, {5, 9, 9}, 0xFF1F78B4},
    {"q2", 5.0, {2, 2, 2}, 0xFFFFB300},      {"q3", 20.0, {1, 3, 3}, 0xFFFF7F00},
    {"q4", HUGE_VAL, {0, 6, 8}, 0xFFE31A1C},
};
constexpr std::string_view kPointStyle = "point", kTrackStyle = "track";

// KML has alpha, blue, green and red.
std::string MakeColor(Argb color) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    for (const int shift : {24, 0, 8, 16})
        for (const int half : {4, 0}) text += kDigits[color >> (shift + half) & 0xF];
    return text;
}

std::string Escape(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        switch (c) {
        case '&': escaped += "&amp;"; break;
        case '<': escaped += "&lt;"; break;
        case '>': escaped += "&gt;"; break;
        default: escaped += static_cast<unsigned char>(c) < ' ' ? ' ' : c;
        }
    }
    return escaped;
}

std::string MakePointStyle(std::string_view id, Argb color) {
    return "<Style id=\"" + std::string(id) + "\"><IconStyle><color>" + MakeColor(color) +
           "</color><scale>0.4</scale></IconStyle><LabelStyle><scale>0</scale></LabelStyle></Style>\n";
}

std::string MakeTrackStyle(Argb color) {
    return "<Style id=\"" + std::string(kTrackStyle) + "\"><LineStyle><color>" + MakeColor(color) +
           "</color><width>2</width></LineStyle></Style>\n";
}

constexpr int kDegreeDecimals = 10, kHeightDecimals = 4;

} // namespace

CKmlWriter::CKmlWriter(CExportFile& file, const CClock& clock, const STrackFields& fields,
                       const SKmlOptions& options)
    : m_file(file), m_clock(clock), m_fields(fields), m_options(options), m_withTime(clock.KnowsUtc()) {
    WriteHead();
}

void CKmlWriter::WriteHead() {
    m_file.Write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                 "<kml xmlns=\"http://www.opengis.net/kml/2.2\" "
                 "xmlns:gx=\"http://www.google.com/kml/ext/2.2\">\n<Document>\n<name>" +
                 Escape(m_options.name) + "</name>\n");
    if (m_options.points)
        m_file.Write(MakePointStyle(kPointStyle, *m_options.points));
    else
        for (const SQuality& quality : kQualities) m_file.Write(MakePointStyle(quality.style, quality.color));
    if (m_options.track) m_file.Write(MakeTrackStyle(*m_options.track));
}

bool CKmlWriter::Take(const std::uint8_t* payload, std::int64_t date) {
    const double latitude = GetValue(payload, m_fields.latitude),
                 longitude = GetValue(payload, m_fields.longitude);
    char utc[kWidestValue];
    char* const utcEnd = m_iso.Format(m_clock.GetUtc(date), utc);
    if (!IsPosition(latitude, longitude) || (m_withTime && utcEnd == utc)) return false;
    if (m_inPart == kPointsPerPart) EndPart();
    if (m_inPart == 0) BeginPart();
    char coordinates[3 * kWidestValue];
    char* end = FormatFixed(std::remainder(longitude, 360.0), kDegreeDecimals, coordinates);
    *end++ = ',';
    end = FormatFixed(latitude, kDegreeDecimals, end);
    *end++ = ',';
    const double altitude =
        GetValue(payload, m_fields.altitude) * m_options.altitudeScale + m_options.altitudeOffset;
    end = FormatFixed(std::isfinite(altitude) ? altitude : 0.0, kHeightDecimals, end);
    m_lastCoordinates.assign(static_cast<char*>(coordinates), end);
    m_lastWhen.assign(static_cast<char*>(utc), utcEnd);
    WritePoint(payload, m_lastCoordinates, m_lastWhen);
    if (m_options.track) {
        m_when += "<when>" + m_lastWhen + "</when>\n";
        m_coordinates += m_lastCoordinates + '\n';
    }
    ++m_inPart;
    ++m_points;
    return true;
}

void CKmlWriter::BeginPart() {
    ++m_parts;
    m_file.Write("<Folder>\n<name>" + Escape(FormatText(EText::exportKmlPart, {std::to_string(m_parts)})) +
                 "</name>\n");
    m_when.clear();
    m_coordinates.clear();
    if (!m_options.track || m_lastCoordinates.empty()) return;
    // The track goes on where the part before it ended.
    m_when = "<when>" + m_lastWhen + "</when>\n";
    m_coordinates = m_lastCoordinates + '\n';
}

void CKmlWriter::EndPart() {
    if (m_options.track) WriteTrack();
    m_file.Write("</Folder>\n");
    m_inPart = 0;
}

std::size_t CKmlWriter::GetStyle(const std::uint8_t* payload) const {
    const auto find = [](auto&& is) {
        return static_cast<std::size_t>(std::ranges::find_if(kQualities, is) - kQualities);
    };
    std::size_t style = std::size(kQualities);
    if (m_fields.mode) {
        const double mode = GetValue(payload, m_fields.mode);
        style = find([mode](const SQuality& row) {
            return std::ranges::any_of(row.modes, [mode](std::uint8_t of) { return mode == of; });
        });
    } else if (m_fields.deviationNorth && m_fields.deviationEast) {
        const double deviation =
            std::hypot(GetValue(payload, m_fields.deviationNorth), GetValue(payload, m_fields.deviationEast));
        style = find([deviation](const SQuality& row) { return deviation < row.deviation; });
    }
    return std::min(style, std::size(kQualities) - 1);
}

void CKmlWriter::WritePoint(const std::uint8_t* payload, std::string_view coordinates, std::string_view utc) {
    m_file.Write("<Placemark>");
    if (m_withTime && m_options.showTime) {
        m_file.Write("<TimeStamp><when>");
        m_file.Write(utc);
        m_file.Write("</when></TimeStamp>");
    }
    m_file.Write("<styleUrl>#");
    m_file.Write(m_options.points ? kPointStyle : kQualities[GetStyle(payload)].style);
    m_file.Write("</styleUrl><ExtendedData>");
    const SFieldRef values[] = {
        m_fields.altitude,      m_fields.heading,           m_fields.roll,    m_fields.pitch,
        m_fields.speedNorth,    m_fields.speedEast,         m_fields.speedUp, m_fields.deviationNorth,
        m_fields.deviationEast, m_fields.deviationAltitude, m_fields.mode};
    if (m_withTime) {
        m_file.Write("<Data name=\"UTC\"><value>");
        m_file.Write(utc);
        m_file.Write("</value></Data>");
    }
    for (const SFieldRef& field : values) {
        if (!field) continue;
        m_file.Write("<Data name=\"");
        m_file.Write(field.row->name);
        m_file.Write("\"><value>");
        m_file.End(FormatValue(payload, field, m_file.Begin(kWidestValue)));
        m_file.Write("</value></Data>");
    }
    m_file.Write("</ExtendedData><Point><altitudeMode>");
    m_file.Write(m_options.clampToGround ? "clampToGround" : "absolute");
    m_file.Write("</altitudeMode><coordinates>");
    m_file.Write(coordinates);
    m_file.Write("</coordinates></Point></Placemark>\n");
}

// With times a gx:Track, which viewers play; else a line.
void CKmlWriter::WriteTrack() {
    const std::string mode = m_options.clampToGround ? "clampToGround" : "absolute";
    m_file.Write("<Placemark><name>" + std::string(GetText(EText::exportKmlTrack)) + "</name><styleUrl>#" +
                 std::string(kTrackStyle) + "</styleUrl>");
    if (m_withTime && m_options.showTime) {
        m_file.Write("<gx:Track><altitudeMode>" + mode + "</altitudeMode>\n");
        m_file.Write(m_when);
        std::string_view rest = m_coordinates;
        while (!rest.empty()) {
            const std::size_t end = rest.find('\n');
            std::string line(rest.substr(0, end));
            std::ranges::replace(line, ',', ' ');
            m_file.Write("<gx:coord>" + line + "</gx:coord>\n");
            rest.remove_prefix(end + 1);
        }
        m_file.Write("</gx:Track></Placemark>\n");
    } else {
        m_file.Write("<LineString><tessellate>1</tessellate><altitudeMode>" + mode +
                     "</altitudeMode><coordinates>\n");
        m_file.Write(m_coordinates);
        m_file.Write("</coordinates></LineString></Placemark>\n");
    }
}

void CKmlWriter::End() {
    if (m_inPart > 0) EndPart();
    m_file.Write("</Document>\n</kml>\n");
}

} // namespace Exportation
