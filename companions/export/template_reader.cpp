#include "export/template_reader.h"

#include "export/clock.h"
#include "export/output_encoding.h"
#include "foundation/files.h"
#include "foundation/numbers.h"
#include "foundation/paths.h"
#include "foundation/text.h"
#include "foundation/texts.h"

#include <pugixml.hpp>

#include <algorithm>
#include <array>

namespace Exportation {

using namespace Persistance_Xpf;
using Outils_Texte::EqualsNoCase;
using Outils_Texte::FormatText;

namespace {

constexpr std::uint64_t kLargestTemplate = 1 << 20; // bytes
constexpr std::size_t kWidestField = 200;           // characters, less than kWidestValue
constexpr int kMostDecimals = 30;

// The elements, where they stand and what attributes they have; words end with "|".
struct SElement {
    std::string_view parent, name, attributes;
};
constexpr SElement kElements[] = {
    {"", "exportTemplate", ""},
    {"exportTemplate", "recommendedExtension", ""},
    {"exportTemplate", "output", "encoding|lineEnd|"},
    {"exportTemplate", "primaryInput", "primaryChannel|name|point|"},
    {"exportTemplate", "input", "channel|name|point|interpolation|maxGap|"},
    {"exportTemplate", "header", ""},
    {"exportTemplate", "footer", ""},
    {"exportTemplate", "line", ""},
    {"line", "text", ""},
    {"line", "field",
     "name|input|unit|width|precision|align|sign|fill|decimalSign|pattern|offset|zone|hemisphere|empty|"},
};

struct SComputed {
    std::string_view name;
    EFieldSource source;
};
constexpr SComputed kComputed[] = {
    {"date", EFieldSource::date},
    {"utc", EFieldSource::utc},
    {"localTime", EFieldSource::local},
    {"lineNumber", EFieldSource::number},
    {"utmZone", EFieldSource::zone},
    {"utmEasting", EFieldSource::easting},
    {"utmNorthing", EFieldSource::northing},
    {"geocentricX", EFieldSource::geocentricX},
    {"geocentricY", EFieldSource::geocentricY},
    {"geocentricZ", EFieldSource::geocentricZ},
};

bool NeedsPosition(EFieldSource source) { return source >= EFieldSource::zone; }
bool IsLength(EFieldSource source) { return source >= EFieldSource::easting; }

std::vector<std::string_view> SplitWords(std::string_view words) {
    std::vector<std::string_view> parts;
    while (!words.empty()) {
        const std::size_t end = std::min(words.find('|'), words.size());
        parts.push_back(words.substr(0, end));
        words.remove_prefix(std::min(end + 1, words.size()));
    }
    return parts;
}

template <class TRange, class TName>
std::string List(const TRange& range, TName name) {
    std::string text;
    for (const auto& element : range) text += (text.empty() ? "" : ", ") + std::string(name(element));
    return text;
}
std::string List(const std::vector<std::string_view>& words) {
    return List(words, [](std::string_view word) { return word; });
}

// What ends the reading: a place and what is wrong there.
struct SFault {
    std::ptrdiff_t offset; // bytes, in the parsed text
    std::string text;
};

class CReader {
  public:
    explicit CReader(const CPacketPass& pass) : m_pass(pass) {}

    // Throws SFault.
    SExportTemplate Read(const pugi::xml_document& document) {
        const pugi::xml_node root = document.document_element();
        if (std::string_view(root.name()) != "exportTemplate")
            Refuse(root, EText::templateNoRoot, {root.name()});
        Check(root);
        ReadOutput(root.child("output"));
        ReadInputs(root);
        for (const pugi::xml_node node : root.children("header")) m_made.headers.push_back(Literal(node));
        for (const pugi::xml_node node : root.children("footer")) m_made.footers.push_back(Literal(node));
        const pugi::xml_node line = Require(root, "line");
        for (const pugi::xml_node node : line.children()) {
            if (node.type() != pugi::node_element) continue;
            STemplateItem item;
            if (std::string_view(node.name()) == "text")
                item.text = Literal(node);
            else
                item.field = ReadField(node);
            m_made.line.push_back(std::move(item));
        }
        return std::move(m_made);
    }

  private:
    [[noreturn]] static void Refuse(pugi::xml_node node, EText text,
                                    std::initializer_list<std::string_view> arguments) {
        throw SFault{node.offset_debug(), FormatText(text, arguments)};
    }
    // Elements and attributes that are not known: a misspelt one would be left out in silence.
    static void Check(pugi::xml_node node) {
        const auto row = std::ranges::find(kElements, std::string_view(node.name()), &SElement::name);
        const auto attributes = SplitWords(row->attributes);
        for (const pugi::xml_attribute attribute : node.attributes())
            if (std::ranges::find(attributes, std::string_view(attribute.name())) == attributes.end())
                Refuse(node, EText::templateUnknownAttribute, {attribute.name(), List(attributes)});
        std::vector<std::string_view> children;
        for (const SElement& element : kElements)
            if (element.parent == row->name) children.push_back(element.name);
        for (const pugi::xml_node child : node.children()) {
            if (child.type() != pugi::node_element) continue;
            if (std::ranges::find(children, std::string_view(child.name())) == children.end())
                Refuse(child, EText::templateUnknownElement, {child.name(), List(children)});
            Check(child);
        }
    }
    static pugi::xml_node Require(pugi::xml_node parent, const char* name) {
        const pugi::xml_node node = parent.child(name);
        if (!node) Refuse(parent, EText::templateNoElement, {name, parent.name()});
        return node;
    }
    static std::string_view Attribute(pugi::xml_node node, const char* name) {
        return node.attribute(name).value();
    }
    static std::string_view RequireAttribute(pugi::xml_node node, const char* name) {
        const std::string_view value = Attribute(node, name);
        if (value.empty()) Refuse(node, EText::templateNoAttribute, {name});
        return value;
    }
    // The place of the attribute's word among the words; `otherwise` without the attribute.
    static std::size_t Word(pugi::xml_node node, const char* name, std::string_view words,
                            std::size_t otherwise = 0) {
        const pugi::xml_attribute attribute = node.attribute(name);
        if (!attribute) return otherwise;
        const auto parts = SplitWords(words);
        const auto found = std::ranges::find_if(
            parts, [&](std::string_view part) { return EqualsNoCase(part, attribute.value()); });
        if (found == parts.end())
            Refuse(node, EText::templateBadValue, {name, attribute.value(), List(parts)});
        return static_cast<std::size_t>(found - parts.begin());
    }
    static int Integer(pugi::xml_node node, const char* name, int least, int most) {
        const auto number = Outils_Texte::ParseInt(Attribute(node, name));
        if (!number || *number < least || *number > most)
            Refuse(node, EText::templateBadValue,
                   {name, Attribute(node, name), std::to_string(least) + " ... " + std::to_string(most)});
        return *number;
    }

    std::string Literal(pugi::xml_node node) const { return Encoded(node, node.text().get()); }
    std::string Encoded(pugi::xml_node node, std::string_view text) const {
        auto encoded = Encode(text, m_encoding);
        if (!encoded)
            Refuse(node, EText::templateWrongEncoding,
                   {text, SplitWords(kEncodingWords)[static_cast<std::size_t>(m_encoding)]});
        return std::move(*encoded);
    }

    void ReadOutput(pugi::xml_node node) {
        m_encoding = static_cast<EEncoding>(Word(node, "encoding", kEncodingWords));
        m_made.lineEnd = Word(node, "lineEnd", "crlf|lf") == 0 ? "\r\n" : "\n";
    }

    void ReadInputs(pugi::xml_node root) {
        const pugi::xml_node primary = Require(root, "primaryInput");
        AddInput(primary, RequireAttribute(primary, "primaryChannel"));
        for (const pugi::xml_node node : root.children("input")) {
            AddInput(node, RequireAttribute(node, "channel"));
            STemplateInput& input = m_made.inputs.back();
            input.nearest = Word(node, "interpolation", "linear|nearest") == 1;
            if (!node.attribute("maxGap")) continue;
            const auto gap = Outils_Texte::ParseDouble(Attribute(node, "maxGap"));
            if (!gap || !(*gap > 0.0))
                Refuse(node, EText::templateBadValue, {"maxGap", Attribute(node, "maxGap"), "> 0"});
            input.maxGap = *gap;
        }
    }
    void AddInput(pugi::xml_node node, std::string_view channel) {
        STemplateInput input;
        input.name = node.attribute("name") ? Attribute(node, "name") : channel;
        if (node.attribute("point")) input.point = Integer(node, "point", 0, 3);
        input.channel = m_pass.FindChannel(channel);
        if (!input.channel) Refuse(node, EText::templateNoChannel, {channel, m_pass.ListChannels()});
        m_made.inputs.push_back(std::move(input));
    }

    STemplateField ReadField(pugi::xml_node node) const {
        STemplateField field;
        const std::string_view name = RequireAttribute(node, "name");
        if (node.attribute("input")) field.input = FindInput(node);
        const auto computed = std::ranges::find(kComputed, name, &SComputed::name);
        if (computed != std::end(kComputed))
            field.source = computed->source;
        else
            field.field = FindPacketField(node, m_made.inputs[field.input], name);
        const SPassChannel& channel = *m_made.inputs[field.input].channel;
        if (NeedsPosition(field.source) && !FindTrackFields(*channel.layout, 0).HasPosition())
            Refuse(node, EText::templateNoPosition, {name, channel.row->name});
        ReadUnit(node, name, field);
        ReadForm(node, field);
        if (field.source == EFieldSource::utc || field.source == EFieldSource::local)
            field.pattern = Encoded(node, RequireAttribute(node, "pattern"));
        if (field.source == EFieldSource::local) field.offset = ReadOffset(node);
        if (node.attribute("zone") && Attribute(node, "zone") != "auto")
            field.zone = Integer(node, "zone", 1, 60);
        const std::size_t hemisphere = Word(node, "hemisphere", "auto|north|south");
        if (hemisphere > 0) field.northern = hemisphere == 1;
        return field;
    }
    std::size_t FindInput(pugi::xml_node node) const {
        const auto found = std::ranges::find(m_made.inputs, Attribute(node, "input"), &STemplateInput::name);
        if (found == m_made.inputs.end())
            Refuse(node, EText::templateNoInput,
                   {Attribute(node, "input"),
                    List(m_made.inputs, [](const STemplateInput& input) { return input.name; })});
        return static_cast<std::size_t>(found - m_made.inputs.begin());
    }
    static SFieldRef FindPacketField(pugi::xml_node node, const STemplateInput& input,
                                     std::string_view name) {
        const SPacketLayout& layout = *input.channel->layout;
        if (const SFieldRef field = FindPointField(layout, name, input.point)) return field;
        // A text.
        for (std::size_t i = 0; i < layout.fields.size(); ++i)
            if (layout.fields[i].name == name && layout.fields[i].type == EFieldType::i8)
                return {&layout.fields[i], layout.offsets[i]};
        Refuse(node, EText::templateNoField,
               {input.channel->row->name, name,
                List(layout.fields, [](const SFieldLayout& field) { return field.name; }) + "; " +
                    List(kComputed, [](const SComputed& row) { return row.name; })});
    }
    static void ReadUnit(pugi::xml_node node, std::string_view name, STemplateField& field) {
        if (!node.attribute("unit")) return;
        const std::string_view unit = Attribute(node, "unit");
        std::span<const Outils_Valeurs::SUnitRow> units;
        if (field.field) units = GetUnits(field.field.row->nature);
        if (IsLength(field.source)) units = Outils_Valeurs::Units::kDistance;
        const auto found = std::ranges::find_if(
            units, [unit](const auto& row) { return row.symbol == unit || EqualsNoCase(row.name, unit); });
        if (found == units.end())
            Refuse(node, EText::templateNoUnit,
                   {name, unit, List(units, [](const auto& row) { return row.symbol; })});
        field.numerator = found->B;
        field.denominator = found->A;
    }
    void ReadForm(pugi::xml_node node, STemplateField& field) const {
        if (node.attribute("width"))
            field.width = static_cast<std::size_t>(Integer(node, "width", 0, kWidestField));
        if (node.attribute("precision")) field.precision = Integer(node, "precision", 0, kMostDecimals);
        field.left = Word(node, "align", "right|left") == 1;
        field.plus = Word(node, "sign", "negative|always") == 1;
        field.fill = Word(node, "fill", "blank|zero") == 1 ? '0' : ' ';
        field.decimalSign = Word(node, "decimalSign", ".|,") == 1 ? ',' : '.';
        field.empty = Encoded(node, Attribute(node, "empty"));
    }
    // "+02:00"
    static std::int64_t ReadOffset(pugi::xml_node node) {
        const std::string_view text = RequireAttribute(node, "offset");
        const auto hours = text.size() == 6 ? Outils_Texte::ParseInt(text.substr(0, 3)) : std::nullopt;
        const auto minutes = text.size() == 6 ? Outils_Texte::ParseInt(text.substr(4)) : std::nullopt;
        if (!hours || !minutes || text[3] != ':' || *hours < -14 || *hours > 14 || *minutes < 0 ||
            *minutes > 59)
            Refuse(node, EText::templateBadValue, {"offset", text, "-14:00 ... +14:00"});
        const std::int64_t size =
            std::abs(*hours) * Outils_Temps::kTicksPerHour + *minutes * Outils_Temps::kTicksPerMinute;
        return text[0] == '-' ? -size : size;
    }

    const CPacketPass& m_pass;
    SExportTemplate m_made;
    EEncoding m_encoding = EEncoding::utf8;
};

// As UTF-8, so that places in the parsed text are places in the file.
std::string LoadText(const std::vector<std::uint8_t>& bytes) {
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const std::string_view declaration = text.starts_with("<?xml") ? text.substr(0, text.find("?>")) : "";
    const bool isNarrow =
        std::ranges::any_of(std::array{"iso-8859-1", "ISO-8859-1", "windows-1252", "Windows-1252"},
                            [&](const char* name) { return declaration.find(name) != declaration.npos; });
    return isNarrow ? Outils_Texte::Windows1252ToUtf8(text) : std::string(text);
}

} // namespace

std::optional<SExportTemplate> ReadTemplate(const std::filesystem::path& path, const CPacketPass& pass,
                                            IRunMonitor& monitor) {
    const auto bytes = Outils_Fichiers::ReadWholeFile(path, kLargestTemplate);
    if (!bytes) {
        monitor.Report(ELevel::error, EText::templateUnreadable, {Outils_Fichiers::ToText(path)});
        return std::nullopt;
    }
    const std::string text = LoadText(*bytes);
    try {
        pugi::xml_document document;
        const auto result =
            document.load_buffer(text.data(), text.size(), pugi::parse_default | pugi::parse_ws_pcdata_single,
                                 pugi::encoding_utf8);
        if (!result) throw SFault{result.offset, FormatText(EText::templateNotXml, {result.description()})};
        return CReader(pass).Read(document);
    } catch (const SFault& fault) {
        const auto end =
            std::clamp<std::ptrdiff_t>(fault.offset, 0, static_cast<std::ptrdiff_t>(text.size()));
        const auto line = std::count(text.begin(), text.begin() + end, '\n') + 1;
        monitor.Report(ELevel::error, EText::templateFault, {std::to_string(line), fault.text});
        return std::nullopt;
    }
}

} // namespace Exportation
