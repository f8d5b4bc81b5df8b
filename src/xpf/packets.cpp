#include "xpf/packets.h"

#include "xpf/packet_classes.h"
#include "xpf/status_fields.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace Persistance_Xpf {

namespace {

// One element of a field where it lies in the payload, without alignment.
template <class T>
T Load(const std::uint8_t* bytes) {
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

// Whether a field holds exactly this type, in one element or, for `several`, in more.
bool IsField(const SPacketLayout& layout, std::uint32_t field, EFieldType type, bool several) {
    return field < layout.fields.size() && layout.fields[field].type == type &&
           (layout.fields[field].count > 1) == several;
}

template <class T>
bool GetScalar(const CXpfTablePacket& packet, std::uint32_t field, T& value) {
    if (!IsField(packet.GetLayout(), field, GetFieldType<T>(), false)) return false;
    value = Load<T>(packet.GetPayload() + packet.GetLayout().offsets[field]);
    return true;
}

template <class T>
bool SetScalar(CXpfTablePacket& packet, std::uint32_t field, T value) {
    if (!IsField(packet.GetLayout(), field, GetFieldType<T>(), false)) return false;
    std::memcpy(packet.GetPayload() + packet.GetLayout().offsets[field], &value, sizeof value);
    return true;
}

template <class T>
bool GetElement(const CXpfTablePacket& packet, std::uint32_t field, std::uint32_t element, T& value) {
    const SPacketLayout& layout = packet.GetLayout();
    if (!IsField(layout, field, GetFieldType<T>(), true) || element >= layout.fields[field].count)
        return false;
    value = Load<T>(packet.GetPayload() + layout.offsets[field] + element * sizeof(T));
    return true;
}

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

void CXpfTablePacket::Clear() { std::memset(GetPayload(), 0, m_layout->payloadSize); }

std::string CXpfTablePacket::ToText(std::string_view separator) const {
    std::string text;
    const std::uint8_t* bytes = CXpfPacket::GetPayload();
    for (const SFieldLayout& row : m_layout->fields) {
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

std::string CXpfTablePacket::GetHeaderText(std::string_view separator) const {
    std::string text;
    for (const SFieldLayout& row : m_layout->fields) {
        for (std::uint32_t element = 0; element < row.count; ++element) {
            if (!text.empty()) text += separator;
            text += row.name;
        }
    }
    return text;
}

bool CXpfTablePacket::GetFieldInfo(std::uint32_t field, EFieldType& type, std::uint32_t& count,
                                   std::uint8_t& nature) const {
    if (field >= GetFieldCount()) return false;
    const SFieldLayout& row = m_layout->fields[field];
    type = row.type;
    count = row.count;
    nature = row.nature;
    return true;
}

bool CXpfTablePacket::GetDouble(std::uint32_t field, double& value) const {
    if (field >= GetFieldCount() || m_layout->fields[field].count != 1) return false;
    value = WithValue(m_layout->fields[field].type, CXpfPacket::GetPayload() + m_layout->offsets[field],
                      [](auto stored) { return static_cast<double>(stored); });
    return true;
}

bool CXpfTablePacket::GetStatusValue(std::uint32_t statusField, std::uint32_t& value) const {
    const SStatusTable* table = FindStatusTable(m_layout->type);
    if (!table || statusField >= table->fields.size()) return false;
    const SStatusField& row = table->fields[statusField];
    const std::uint32_t field = table->firstField + row.field;
    const std::uint8_t* bytes = CXpfPacket::GetPayload() + m_layout->offsets[field];
    const std::uint32_t stored =
        m_layout->fields[field].type == EFieldType::u8 ? *bytes : Load<std::uint32_t>(bytes);
    const auto literal =
        std::ranges::find(row.literals, (stored >> row.shift) & row.mask, &SStatusLiteral::bits);
    if (literal == row.literals.end()) return false;
    value = static_cast<std::uint32_t>(literal - row.literals.begin());
    return true;
}

CDateTimeSpan CXpfTablePacket::GetPacketDate() const {
    return CDateTimeSpan(Load<std::int64_t>(CXpfPacket::GetPayload()));
}

bool CXpfTablePacket::GetDate(std::uint32_t field, CDateTimeSpan& value) const {
    if (field == 0) value = GetPacketDate();
    return field == 0;
}

bool CXpfTablePacket::SetDate(std::uint32_t field, CDateTimeSpan value) {
    const std::int64_t ticks = value.GetTicks();
    if (field == 0) std::memcpy(GetPayload(), &ticks, sizeof ticks);
    return field == 0;
}

// No packet has several dates.
bool CXpfTablePacket::GetDateElement(std::uint32_t, std::uint32_t, CDateTimeSpan&) const { return false; }

bool CXpfTablePacket::GetFloat(std::uint32_t field, float& value) const {
    return GetScalar(*this, field, value);
}
bool CXpfTablePacket::GetInt32(std::uint32_t field, std::int32_t& value) const {
    return GetScalar(*this, field, value);
}
bool CXpfTablePacket::GetInt16(std::uint32_t field, std::int16_t& value) const {
    return GetScalar(*this, field, value);
}
bool CXpfTablePacket::GetInt8(std::uint32_t field, std::int8_t& value) const {
    return GetScalar(*this, field, value);
}
bool CXpfTablePacket::GetUInt32(std::uint32_t field, std::uint32_t& value) const {
    return GetScalar(*this, field, value);
}
bool CXpfTablePacket::GetUInt16(std::uint32_t field, std::uint16_t& value) const {
    return GetScalar(*this, field, value);
}
bool CXpfTablePacket::GetUInt8(std::uint32_t field, std::uint8_t& value) const {
    return GetScalar(*this, field, value);
}

bool CXpfTablePacket::SetDouble(std::uint32_t field, double value) { return SetScalar(*this, field, value); }
bool CXpfTablePacket::SetFloat(std::uint32_t field, float value) { return SetScalar(*this, field, value); }
bool CXpfTablePacket::SetInt32(std::uint32_t field, std::int32_t value) {
    return SetScalar(*this, field, value);
}
bool CXpfTablePacket::SetInt16(std::uint32_t field, std::int16_t value) {
    return SetScalar(*this, field, value);
}
bool CXpfTablePacket::SetInt8(std::uint32_t field, std::int8_t value) {
    return SetScalar(*this, field, value);
}
bool CXpfTablePacket::SetUInt32(std::uint32_t field, std::uint32_t value) {
    return SetScalar(*this, field, value);
}
bool CXpfTablePacket::SetUInt16(std::uint32_t field, std::uint16_t value) {
    return SetScalar(*this, field, value);
}
bool CXpfTablePacket::SetUInt8(std::uint32_t field, std::uint8_t value) {
    return SetScalar(*this, field, value);
}

bool CXpfTablePacket::GetDoubleElement(std::uint32_t field, std::uint32_t element, double& value) const {
    return GetElement(*this, field, element, value);
}
bool CXpfTablePacket::GetFloatElement(std::uint32_t field, std::uint32_t element, float& value) const {
    return GetElement(*this, field, element, value);
}
bool CXpfTablePacket::GetInt32Element(std::uint32_t field, std::uint32_t element, std::int32_t& value) const {
    return GetElement(*this, field, element, value);
}
bool CXpfTablePacket::GetInt16Element(std::uint32_t field, std::uint32_t element, std::int16_t& value) const {
    return GetElement(*this, field, element, value);
}
bool CXpfTablePacket::GetInt8Element(std::uint32_t field, std::uint32_t element, std::int8_t& value) const {
    return GetElement(*this, field, element, value);
}
bool CXpfTablePacket::GetUInt32Element(std::uint32_t field, std::uint32_t element,
                                       std::uint32_t& value) const {
    return GetElement(*this, field, element, value);
}
bool CXpfTablePacket::GetUInt16Element(std::uint32_t field, std::uint32_t element,
                                       std::uint16_t& value) const {
    return GetElement(*this, field, element, value);
}
bool CXpfTablePacket::GetUInt8Element(std::uint32_t field, std::uint32_t element, std::uint8_t& value) const {
    return GetElement(*this, field, element, value);
}

std::unique_ptr<CXpfPacket> CreateXpfPacket(std::uint16_t packetType) {
    const SPacketClass* row = FindPacketClass(packetType);
    return row ? row->createPacket() : nullptr;
}

} // namespace Persistance_Xpf
