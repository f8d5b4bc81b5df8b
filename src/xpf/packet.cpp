#include "xpf/packet.h"

#include "foundation/bytes.h"
#include "xpf/status_fields.h"

#include <algorithm>
#include <charconv>

namespace Persistance_Xpf {

using Outils::Load;

namespace {

// Calls `use` with the element as its own type; a date as its tick count.
template <class F>
auto WithValue(EFieldType type, const std::uint8_t* bytes, F use) {
    switch (type) {
    case EFieldType::u8: return use(Load<std::uint8_t>(bytes));
    case EFieldType::u16: return use(Load<std::uint16_t>(bytes));
    case EFieldType::u32: return use(Load<std::uint32_t>(bytes));
    case EFieldType::i8: return use(Load<std::int8_t>(bytes));
    case EFieldType::i16: return use(Load<std::int16_t>(bytes));
    case EFieldType::i32: return use(Load<std::int32_t>(bytes));
    case EFieldType::f32: return use(Load<float>(bytes));
    case EFieldType::f64: return use(Load<double>(bytes));
    case EFieldType::date: break;
    }
    return use(Load<std::int64_t>(bytes));
}

void AppendNumber(std::string& text, double value) {
    char digits[32];
    const auto end = std::to_chars(digits, std::end(digits), value, std::chars_format::general, 8).ptr;
    text.append(digits, end);
}
void AppendNumber(std::string& text, float value) { AppendNumber(text, static_cast<double>(value)); }
template <class T>
void AppendNumber(std::string& text, T value) {
    text += std::to_string(value); // also 8-bit values: numbers, never characters
}

} // namespace

std::string CXpfPacket::ToText(std::string_view separator) const {
    std::string text;
    const std::uint8_t* bytes = GetPayload();
    for (const SFieldLayout& row : m_layout.fields) {
        for (std::uint32_t element = 0; element < row.count; ++element, bytes += GetWidth(row.type)) {
            if (!text.empty()) text += separator;
            if (row.type == EFieldType::date)
                text += CDateTimeSpan(Load<std::int64_t>(bytes)).ToText();
            else
                WithValue(row.type, bytes, [&text](auto value) { AppendNumber(text, value); });
        }
    }
    return text;
}

std::string CXpfPacket::GetHeaderText(std::string_view separator) const {
    std::string text;
    for (const SFieldLayout& row : m_layout.fields) {
        for (std::uint32_t element = 0; element < row.count; ++element) {
            if (!text.empty()) text += separator;
            text += row.name;
        }
    }
    return text;
}

bool CXpfPacket::GetFieldInfo(std::uint32_t field, EFieldType& type, std::uint32_t& count,
                              std::uint8_t& nature) const {
    if (field >= GetFieldCount()) return false;
    const SFieldLayout& row = m_layout.fields[field];
    type = row.type;
    count = row.count;
    nature = row.nature;
    return true;
}

bool CXpfPacket::GetDouble(std::uint32_t field, double& value) const {
    if (field >= GetFieldCount() || m_layout.fields[field].count != 1) return false;
    value = WithValue(m_layout.fields[field].type, GetPayload() + m_layout.offsets[field],
                      [](auto stored) { return static_cast<double>(stored); });
    return true;
}

bool CXpfPacket::GetStatusValue(std::uint32_t statusField, std::uint32_t& value) const {
    const SStatusTable* table = FindStatusTable(m_layout.type);
    if (!table || statusField >= table->fields.size()) return false;
    const SStatusField& row = table->fields[statusField];
    const std::uint32_t field = table->firstField + row.field;
    const std::uint8_t* bytes = GetPayload() + m_layout.offsets[field];
    const std::uint32_t stored =
        m_layout.fields[field].type == EFieldType::u8 ? *bytes : Load<std::uint32_t>(bytes);
    const auto literal =
        std::ranges::find(row.literals, (stored >> row.shift) & row.mask, &SStatusLiteral::bits);
    if (literal == row.literals.end()) return false;
    value = static_cast<std::uint32_t>(literal - row.literals.begin());
    return true;
}

CDateTimeSpan CXpfDatedPacket::GetPacketDate() const {
    return CDateTimeSpan(Load<std::int64_t>(GetPayload()));
}

bool CXpfPacket::GetDate(std::uint32_t field, CDateTimeSpan& value) const {
    std::int64_t ticks = 0;
    if (!HasDate() || field != 0 || !GetScalar(field, ticks)) return false;
    value = CDateTimeSpan(ticks);
    return true;
}

bool CXpfPacket::SetDate(std::uint32_t field, CDateTimeSpan value) {
    return HasDate() && field == 0 && SetScalar(field, value.GetTicks());
}

} // namespace Persistance_Xpf
