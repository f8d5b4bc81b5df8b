#include "export/template_lines.h"

#include "foundation/text.h"

#include <GeographicLib/Geocentric.hpp>
#include <GeographicLib/UTMUPS.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace Exportation {
namespace {

constexpr double kSouthernShift = 1e7; // m, of northings south of the equator

std::string FormatNumber(const STemplateField& field, double value) {
    char out[kWidestValue];
    char* end = field.precision ? FormatFixed(value, *field.precision, out)
                                : std::to_chars(out, out + kWidestValue, value).ptr;
    std::string text(static_cast<char*>(out), end);
    // A heading that rounds to 360 is 0.
    const bool isHeading = field.field && field.denominator == 1.0 && field.field.row->name == "Heading";
    if (isHeading && text.starts_with("360") && text.find_first_of("123456789", 3) == text.npos)
        text.erase(0, 2);
    // A zero has no sign.
    if (text[0] == '-' && text.find_first_of("123456789") == text.npos) text.erase(0, 1);
    if (field.plus && text[0] != '-') text.insert(0, 1, '+');
    std::ranges::replace(text, '.', field.decimalSign);
    return text;
}

} // namespace

CTemplateLines::CTemplateLines(CExportRun& run, const SExportTemplate& made, CExportFile& file)
    : m_template(made), m_clock(run.GetClock()), m_file(file) {
    for (std::size_t i = 1; i < made.inputs.size(); ++i)
        m_tracks.push_back(std::make_unique<CInputTrack>(run.GetSource(), run.GetPass().GetKind(),
                                                         made.inputs[i], run.GetMonitor()));
    for (const STemplateInput& input : made.inputs)
        m_positions.push_back(FindTrackFields(*input.channel->layout, input.point));
}

void CTemplateLines::Write(const std::vector<std::string>& lines) {
    for (const std::string& line : lines) m_file.Write(line + m_template.lineEnd);
}

void CTemplateLines::Take(const SPassPacket& packet) {
    m_packet = packet;
    ++m_lines;
    for (const auto& track : m_tracks) track->MoveTo(packet.date);
    for (const STemplateItem& item : m_template.line) {
        if (item.field)
            WriteField(*item.field);
        else
            m_file.Write(item.text);
    }
    m_file.Write(m_template.lineEnd);
}

void CTemplateLines::WriteField(const STemplateField& field) {
    std::string text = MakeText(field);
    const bool hasValue = !text.empty();
    if (!hasValue) {
        ++m_empty;
        text = field.empty;
    }
    if (text.size() < field.width) {
        const std::size_t missing = field.width - text.size();
        const bool isSigned = hasValue && (text[0] == '-' || text[0] == '+');
        if (field.left)
            text.append(missing, ' ');
        else
            text.insert(field.fill == '0' && isSigned ? 1 : 0, missing, hasValue ? field.fill : ' ');
    }
    m_file.Write(text);
}

std::string CTemplateLines::MakeText(const STemplateField& field) const {
    const CDateTime utc = m_clock.GetUtc(m_packet.date);
    switch (field.source) {
    case EFieldSource::utc: return FormatPattern(utc, field.pattern);
    case EFieldSource::local: return FormatPattern(utc + CDateTimeSpan(field.offset), field.pattern);
    case EFieldSource::packet:
        if (field.field.row->count > 1) return MakePacketText(field);
        break;
    default: break;
    }
    const auto value = GetNumber(field);
    return value && std::isfinite(*value) ? FormatNumber(field, *value) : std::string();
}

// Texts are taken of the primary packet only.
std::string CTemplateLines::MakePacketText(const STemplateField& field) const {
    if (field.input != 0) return {};
    const auto* bytes = reinterpret_cast<const char*>(m_packet.payload + field.field.offset);
    return std::string(Outils_Texte::TrimAtZero({bytes, field.field.row->count}));
}

std::optional<double> CTemplateLines::GetNumber(const STemplateField& field) const {
    std::optional<double> value;
    switch (field.source) {
    case EFieldSource::date: return static_cast<double>(m_clock.Shift(m_packet.date)) * 1e-7;
    case EFieldSource::number: return static_cast<double>(m_lines);
    case EFieldSource::packet: value = GetInput(field.input, field.field); break;
    default: value = Project(field);
    }
    return value ? std::optional(field.numerator * *value / field.denominator) : std::nullopt;
}

std::optional<double> CTemplateLines::GetInput(std::size_t input, SFieldRef field) const {
    return input == 0 ? GetValue(m_packet.payload, field) : m_tracks[input - 1]->Get(field);
}

std::optional<CTemplateLines::SPosition> CTemplateLines::GetPosition(std::size_t input) const {
    const STrackFields& fields = m_positions[input];
    const auto latitude = GetInput(input, fields.latitude), longitude = GetInput(input, fields.longitude),
               altitude = GetInput(input, fields.altitude);
    if (!latitude || !longitude || !altitude || !IsPosition(*latitude, *longitude)) return std::nullopt;
    return SPosition{*latitude, std::remainder(*longitude, 360.0), *altitude};
}

std::optional<double> CTemplateLines::Project(const STemplateField& field) const {
    const auto position = GetPosition(field.input);
    if (!position) return std::nullopt;
    if (field.source >= EFieldSource::geocentricX) {
        double xyz[3];
        GeographicLib::Geocentric::WGS84().Forward(position->latitude, position->longitude,
                                                   position->altitude, xyz[0], xyz[1], xyz[2]);
        return xyz[static_cast<int>(field.source) - static_cast<int>(EFieldSource::geocentricX)];
    }
    const SProjection* projected = ProjectOnce(field, *position);
    if (!projected) return std::nullopt;
    if (field.source == EFieldSource::zone) return projected->zone;
    if (field.source == EFieldSource::easting) return projected->x;
    const bool asGiven = !field.northern || *field.northern == projected->northern;
    return projected->y + (asGiven ? 0.0 : projected->northern ? kSouthernShift : -kSouthernShift);
}

const CTemplateLines::SProjection* CTemplateLines::ProjectOnce(const STemplateField& field,
                                                               const SPosition& position) const {
    if (m_projected.line == m_lines && m_projected.input == field.input && m_projected.asked == field.zone)
        return &m_projected;
    SProjection made;
    try {
        GeographicLib::UTMUPS::Forward(position.latitude, position.longitude, made.zone, made.northern,
                                       made.x, made.y,
                                       field.zone > 0 ? field.zone : GeographicLib::UTMUPS::UTM);
    } catch (const GeographicLib::GeographicErr&) {
        return nullptr;
    }
    made.line = m_lines;
    made.input = field.input;
    made.asked = field.zone;
    m_projected = made;
    return &m_projected;
}

} // namespace Exportation
