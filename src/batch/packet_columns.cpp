#include "batch/packet_columns.h"

#include "foundation/text.h"

#include <cstring>
#include <utility>

namespace Batch {

using namespace Persistance_Xpf;
using Outils_Temps::CDateTimeSpan;
using Outils_Texte::EText;

namespace {

constexpr std::string_view kUtcColumn = "UTC";

bool IsText(const SFieldLayout& field) { return field.type == EFieldType::i8 && field.count > 1; }
// The first field of a dated packet.
bool IsDate(const SFieldLayout& field) { return field.type == EFieldType::date && field.count == 1; }

template <class Element>
void AddElement(CTable& table, const std::uint8_t* bytes) {
    Element value;
    std::memcpy(&value, bytes, sizeof value);
    table.Add(value);
}

// Adds one element that is stored as the type says.
void AddElement(CTable& table, EFieldType type, const std::uint8_t* bytes) {
    [&]<std::size_t... Code>(std::index_sequence<Code...>) {
        ((static_cast<std::size_t>(type) == Code
              ? AddElement<std::tuple_element_t<Code, FieldElements>>(table, bytes)
              : void()),
         ...);
    }
    (std::make_index_sequence<std::tuple_size_v<FieldElements>>());
}

void AddDate(CTable& table, const std::uint8_t* bytes) {
    std::int64_t ticks;
    std::memcpy(&ticks, bytes, sizeof ticks);
    table.Add(CDateTimeSpan(ticks));
}

void AddField(CTable& table, const SFieldLayout& field, const std::uint8_t* bytes) {
    if (IsText(field)) {
        const std::string_view text(reinterpret_cast<const char*>(bytes), field.count);
        table.Add(SQuoted{Outils_Texte::TrimAtZero(text)});
        return;
    }
    for (std::uint32_t i = 0; i < field.count; ++i, bytes += GetWidth(field.type))
        field.type == EFieldType::date ? AddDate(table, bytes) : AddElement(table, field.type, bytes);
}

// Calls `use` with each name: one for a field, or one for each element of an array.
template <class F>
void ForEachName(const SFieldLayout& field, F use) {
    if (field.count == 1 || IsText(field)) return use(std::string(field.name));
    for (std::uint32_t i = 0; i < field.count; ++i)
        use(std::string(field.name) + '[' + std::to_string(i) + ']');
}

void AppendName(std::string& names, std::string_view name) {
    if (!names.empty()) names += ';';
    names += name;
}

} // namespace

CPacketColumns::CPacketColumns(std::uint32_t packetType, const Outils_Temps::CDateTime& utcOrigin)
    : m_layout(*FindPacketLayout(static_cast<std::uint16_t>(packetType))), m_utcOrigin(utcOrigin) {}

std::string CPacketColumns::GetNames() const {
    std::string names;
    for (const SFieldLayout& field : m_layout.fields) {
        ForEachName(field, [&](const std::string& name) { AppendName(names, name); });
        if (IsDate(field)) AppendName(names, kUtcColumn);
    }
    return names;
}

std::string CPacketColumns::GetNames(EText form) const {
    std::string names;
    for (const SFieldLayout& field : m_layout.fields)
        ForEachName(field, [&](const std::string& name) {
            AppendName(names, Outils_Texte::FormatText(form, {name}));
        });
    return names;
}

void CPacketColumns::AddCells(CTable& table, const CXpfPacket& packet, bool withUtc) const {
    for (std::size_t i = 0; i < m_layout.fields.size(); ++i) {
        AddField(table, m_layout.fields[i], packet.GetPayload() + m_layout.offsets[i]);
        if (withUtc && IsDate(m_layout.fields[i])) AddUtc(table, packet);
    }
}

void CPacketColumns::AddUtc(CTable& table, const CXpfPacket& packet) const {
    CDateTimeSpan date;
    table.Add(packet.GetDate(0, date) ? m_utcOrigin + date : Outils_Temps::CDateTime::Invalid());
}

} // namespace Batch
