#include "export/text_row.h"

#include "foundation/text.h"
#include "foundation/texts.h"

namespace Exportation {

using namespace Persistance_Xpf;
using Outils_Texte::EText;
using Outils_Texte::GetText;

namespace {

// A text field up to its first zero; quoted when it needs to be, line ends as blanks.
char* FormatTextCell(std::string_view bytes, char* out) {
    const std::string_view text = Outils_Texte::TrimAtZero(bytes);
    const bool quoted = text.find_first_of(";\"\r\n") != text.npos;
    if (quoted) *out++ = '"';
    for (const char c : text) {
        if (c == '"') *out++ = '"';
        *out++ = static_cast<unsigned char>(c) < ' ' ? ' ' : c;
    }
    if (quoted) *out++ = '"';
    return out;
}

} // namespace

std::string QuoteCell(std::string_view text) {
    if (text.find_first_of(";\"\r\n") == text.npos) return std::string(text);
    std::string quoted = "\"";
    for (const char c : text) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + '"';
}

CTextRow::CTextRow(const SPacketLayout& layout, const std::function<bool(std::string_view)>& takes) {
    for (std::size_t i = 1; i < layout.fields.size(); ++i) {
        const SFieldLayout& field = layout.fields[i];
        if (takes && !takes(field.name)) continue;
        const std::string heading = MakeHeading(field);
        if (field.count > 1 && field.type == EFieldType::i8) {
            m_cells.push_back({{&field, layout.offsets[i]}, QuoteCell(heading), field.count});
            m_textSize += field.count + 2;
            continue;
        }
        for (std::uint32_t k = 0; k < field.count; ++k) {
            const std::string index = field.count > 1 ? '[' + std::to_string(k) + ']' : std::string();
            const std::uint32_t offset = layout.offsets[i] + k * Persistance_Xpf::GetWidth(field.type);
            m_cells.push_back({{&field, offset}, QuoteCell(heading + index), 0});
        }
    }
}

std::string CTextRow::GetHeadings() const {
    std::string text;
    for (const SCell& cell : m_cells) text += kColumnSeparator + cell.heading;
    return text;
}

char* CTextRow::Format(const std::uint8_t* payload, char* out) const {
    for (const SCell& cell : m_cells) {
        *out++ = kColumnSeparator;
        if (cell.textSize > 0)
            out = FormatTextCell({reinterpret_cast<const char*>(payload + cell.field.offset), cell.textSize},
                                 out);
        else
            out = FormatValue(payload, cell.field, out);
    }
    return out;
}

char* CTextRow::FormatEmpty(char* out) const {
    std::memset(out, kColumnSeparator, m_cells.size());
    return out + m_cells.size();
}

std::string GetDateHeadings(const CClock& clock) {
    std::string text(GetText(EText::exportColumnDate));
    if (clock.KnowsUtc()) text += kColumnSeparator + std::string(GetText(EText::exportColumnUtc));
    return text;
}

char* FormatDates(const CClock& clock, std::int64_t date, CIsoFormatter& iso, char* out) {
    out = FormatSeconds(clock.Shift(date), out);
    if (!clock.KnowsUtc()) return out;
    *out++ = kColumnSeparator;
    return iso.Format(clock.GetUtc(date), out);
}

} // namespace Exportation
