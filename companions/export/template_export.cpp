#include "export/template_export.h"

#include "export/fields.h"
#include "export/template_reader.h"
#include "export/template_values.h"
#include "foundation/paths.h"
#include "foundation/text.h"

#include <GeographicLib/Geocentric.hpp>
#include <GeographicLib/UTMUPS.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <memory>

namespace Exportation {

using namespace Persistance_Xpf;
using Compagnon::EDialect;
using Compagnon::SProgram;
using Outils_Fichiers::FromText;

namespace {

constexpr SSwitchRow kTemplateSwitch{"/t", ESwitchValue::text, "TEMPLATE", EText::exportSwitchTemplate};

constexpr double kSouthernShift = 1e7; // m, of northings south of the equator

struct SPosition {
    double latitude, longitude, altitude; // degrees, m
};

// Writes the lines of a template.
class CLineWriter {
  public:
    CLineWriter(CExportRun& run, const SExportTemplate& made, CExportFile& file)
        : m_template(made), m_clock(run.GetClock()), m_file(file) {
        for (std::size_t i = 1; i < made.inputs.size(); ++i)
            m_tracks.push_back(std::make_unique<CInputTrack>(run.GetSource(), run.GetPass().GetKind(),
                                                             made.inputs[i], run.GetMonitor()));
        for (const STemplateInput& input : made.inputs)
            m_positions.push_back(FindTrackFields(*input.channel->layout, input.point));
    }

    void Write(const std::vector<std::string>& lines) {
        for (const std::string& line : lines) m_file.Write(line + m_template.lineEnd);
    }
    void Take(const SPassPacket& packet) {
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
    std::uint64_t GetLines() const { return m_lines; }
    std::uint64_t GetEmptyValues() const { return m_empty; }

  private:
    void WriteField(const STemplateField& field) {
        std::string text = MakeText(field);
        const bool hasValue = !text.empty();
        if (!hasValue) {
            ++m_empty;
            text = field.empty;
        }
        if (text.size() < field.width) {
            const std::size_t missing = field.width - text.size();
            const bool signedText = hasValue && (text[0] == '-' || text[0] == '+');
            if (field.left)
                text.append(missing, ' ');
            else
                text.insert(field.fill == '0' && signedText ? 1 : 0, missing, hasValue ? field.fill : ' ');
        }
        m_file.Write(text);
    }
    std::string MakeText(const STemplateField& field) const {
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
    std::string MakePacketText(const STemplateField& field) const {
        if (field.input != 0) return {};
        const auto* bytes = reinterpret_cast<const char*>(m_packet.payload + field.field.offset);
        return std::string(Outils_Texte::TrimAtZero({bytes, field.field.row->count}));
    }
    std::optional<double> GetNumber(const STemplateField& field) const {
        switch (field.source) {
        case EFieldSource::packet: {
            const auto value = GetInput(field.input, field.field);
            return value ? std::optional(field.numerator * *value / field.denominator) : std::nullopt;
        }
        case EFieldSource::date: return static_cast<double>(m_clock.Shift(m_packet.date)) * 1e-7;
        case EFieldSource::number: return static_cast<double>(m_lines);
        default: break;
        }
        const auto value = Project(field);
        return value ? std::optional(field.numerator * *value / field.denominator) : std::nullopt;
    }
    std::optional<double> GetInput(std::size_t input, SFieldRef field) const {
        return input == 0 ? GetValue(m_packet.payload, field) : m_tracks[input - 1]->Get(field);
    }
    std::optional<SPosition> GetPosition(std::size_t input) const {
        const STrackFields& fields = m_positions[input];
        const auto latitude = GetInput(input, fields.latitude), longitude = GetInput(input, fields.longitude),
                   altitude = GetInput(input, fields.altitude);
        if (!latitude || !longitude || !altitude || !IsPosition(*latitude, *longitude)) return std::nullopt;
        return SPosition{*latitude, std::remainder(*longitude, 360.0), *altitude};
    }
    std::optional<double> Project(const STemplateField& field) const {
        const auto position = GetPosition(field.input);
        if (!position) return std::nullopt;
        if (field.source >= EFieldSource::geocentricX) {
            double xyz[3];
            GeographicLib::Geocentric::WGS84().Forward(position->latitude, position->longitude,
                                                       position->altitude, xyz[0], xyz[1], xyz[2]);
            return xyz[static_cast<int>(field.source) - static_cast<int>(EFieldSource::geocentricX)];
        }
        try {
            int zone = 0;
            bool northern = false;
            double x = 0, y = 0;
            GeographicLib::UTMUPS::Forward(position->latitude, position->longitude, zone, northern, x, y,
                                           field.zone > 0 ? field.zone : GeographicLib::UTMUPS::UTM);
            if (field.source == EFieldSource::zone) return zone;
            if (field.source == EFieldSource::easting) return x;
            if (field.northern && *field.northern != northern)
                y += northern ? kSouthernShift : -kSouthernShift;
            return y;
        } catch (const GeographicLib::GeographicErr&) {
            return std::nullopt; // too far from the zone
        }
    }
    static std::string FormatNumber(const STemplateField& field, double value) {
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

    const SExportTemplate& m_template;
    const CClock& m_clock;
    CExportFile& m_file;
    std::vector<std::unique_ptr<CInputTrack>> m_tracks; // of the inputs after the first
    std::vector<STrackFields> m_positions;              // of all inputs
    SPassPacket m_packet;
    std::uint64_t m_lines = 0, m_empty = 0;
};

bool ShowsUtc(const SExportTemplate& made) {
    return std::ranges::any_of(made.line, [](const STemplateItem& item) {
        return item.field &&
               (item.field->source == EFieldSource::utc || item.field->source == EFieldSource::local);
    });
}

ERunEnd ExportTemplate(const CArguments& arguments, IRunMonitor& monitor) {
    CExportRun run(arguments, monitor);
    if (!arguments.Has(kTemplateSwitch.name)) return run.Fail(EText::exportNoTemplate, {});
    if (!run.Open({EFileKind::tarin, EFileKind::tarout})) return ERunEnd::failed;
    const auto made = ReadTemplate(FromText(arguments.GetText(kTemplateSwitch.name)), run.GetPass(), monitor);
    CExportFile file;
    if (!made || !run.OpenFile(file, run.GetTarget())) return ERunEnd::failed;
    if (ShowsUtc(*made) && !run.GetClock().KnowsUtc()) monitor.Report(ELevel::warning, EText::templateNoUtc);

    CLineWriter writer(run, *made, file);
    writer.Write(made->headers);
    const std::uint64_t decimation = run.GetDecimation();
    std::uint64_t seen = 0;
    run.GetPass().Begin({made->inputs.front().channel}, run.GetPeriod());
    for (SPassPacket packet; file.IsGood() && run.GetPass().Next(packet);)
        if (seen++ % decimation == 0) writer.Take(packet);
    writer.Write(made->footers);
    if (writer.GetEmptyValues() > 0)
        monitor.Report(ELevel::warning, EText::templateEmptyValues,
                       {std::to_string(writer.GetEmptyValues())});
    CExportFile* const files[] = {&file};
    return run.Finish(files, writer.GetLines());
}

constexpr SSwitchRow kTemplateSwitches[] = {kTemplateSwitch, kFromSwitch, kToSwitch,
                                            kOffsetSwitch,   kUtcSwitch,  kDecimationSwitch};

} // namespace

const SProgram kTemplateExporter{"udtExporter.exe",
                                 EText::exportTemplatePurpose,
                                 "SOURCE TARGET",
                                 2,
                                 2,
                                 kTemplateSwitches,
                                 EDialect::tool,
                                 true,
                                 ExportTemplate};

} // namespace Exportation
