#include "xpf/table_file.h"

#include "foundation/bytes.h"
#include "xpf/packet_classes.h"
#include "xpf/status_fields.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace Persistance_Xpf {

using Outils::Load;

namespace {

// Far above any real file (17 types of at most 71 fields); bounds what the header of a hostile file costs.
constexpr std::uint32_t kLargestFieldTotal = 1u << 18;

// Compared over all 16 bytes: bytes after a terminator count too.
const SChannelLayout* FindChannelOfRecord(const std::uint8_t* name, EFileKind kind) {
    const SChannelLayout* row = FindChannelLayout(LoadPaddedText(name, kChannelNameSize));
    if (!row || row->kind != kind) return nullptr;
    const auto* padding = name + row->name.size();
    return std::all_of(padding, name + kChannelNameSize, [](std::uint8_t byte) { return byte == 0; })
               ? row
               : nullptr;
}

} // namespace

bool CXpfTableFile::ReadFileHeader(bool& outdated, HeaderBuffer& headerBuffer) {
    outdated = false;
    m_channels.clear();
    m_definitions.clear();
    m_byNumber.clear();
    if (!Seek(0) || Read(headerBuffer.data(), headerBuffer.size()) != headerBuffer.size()) return false;

    const auto channelCount = Load<std::uint16_t>(&headerBuffer[kChannelCountOffset]);
    for (std::uint32_t i = 0; i < channelCount; ++i) {
        if (ReadChannelRecord()) continue;
        outdated = true;
        return false;
    }
    const auto definitionCount = Load<std::uint16_t>(&headerBuffer[kDefinitionCountOffset]);
    if (!ReadDefinitions(definitionCount)) return false;

    outdated = std::ranges::any_of(m_definitions, [this](const auto& definition) {
        const SPacketLayout* layout = FindDescribedLayout(m_kind, definition->type);
        return layout && layout->version != definition->version;
    });
    return !outdated;
}

EOpening CXpfTableFile::ExplainRefusal() {
    HeaderBuffer header{};
    const std::size_t count = Seek(0) ? Read(header.data(), header.size()) : 0;
    if (count == 0 && GetFileSize() > 0) return EOpening::unreadable;
    if (std::memcmp(header.data(), "XPF", 3) != 0) return EOpening::foreign;
    if (count < header.size()) return EOpening::damaged;
    const EOpening channels = ExplainChannels(Load<std::uint16_t>(&header[kChannelCountOffset]));
    if (channels == EOpening::damaged) return channels;
    m_definitions.clear();
    if (!ReadDefinitions(Load<std::uint16_t>(&header[kDefinitionCountOffset]))) return EOpening::damaged;
    bool isCurrent = false;
    for (const auto& definition : m_definitions) {
        const SPacketLayout* layout = FindDescribedLayout(m_kind, definition->type);
        if (!layout) continue;
        if (layout->version != definition->version) return EOpening::outdated;
        isCurrent = true;
    }
    // Channels of no table beside packets of the current versions: no former layout has had both.
    return isCurrent ? EOpening::damaged : channels;
}

// Damaged for records that no writer has made; outdated otherwise.
EOpening CXpfTableFile::ExplainChannels(std::uint32_t count) {
    std::vector<std::string> names;
    for (std::uint32_t i = 0; i < count; ++i) {
        std::uint8_t record[kChannelRecordSize];
        if (Read(record, sizeof record) != sizeof record) return EOpening::damaged;
        const std::string name(LoadPaddedText(record + 2, kChannelNameSize));
        const auto isZero = [](std::uint8_t byte) { return byte == 0; };
        const bool isName = !name.empty() &&
                            std::ranges::all_of(name, [](char c) { return c > ' ' && c < 127; }) &&
                            std::all_of(record + 2 + name.size(), record + 2 + kChannelNameSize, isZero);
        if (!isName || std::ranges::find(names, name) != names.end()) return EOpening::damaged;
        names.push_back(name);
    }
    return EOpening::outdated;
}

bool CXpfTableFile::ReadChannelRecord() {
    std::uint8_t record[kChannelRecordSize];
    if (Read(record, sizeof record) != sizeof record) return false;
    const SChannelLayout* row = FindChannelOfRecord(record + 2, m_kind);
    if (!row || row->packetType != Load<std::uint16_t>(record + kChannelRecordSize - 2)) return false;
    const auto isRow = [row](const auto& channel) { return channel->GetName() == row->name; };
    if (std::ranges::any_of(m_channels, isRow)) return false;

    const auto number = Load<std::uint16_t>(record);
    const std::string description(LoadPaddedText(record + 2 + kChannelNameSize, kChannelDescriptionSize));
    const SPacketClass* packetClass = FindPacketClass(row->packetType);
    // What has no packet class are the internal states, whose size varies.
    m_channels.push_back(packetClass
                             ? packetClass->createChannel(*this, number, std::string(row->name), description)
                             : std::make_unique<CXpfVariableSizeChannel<CXpfPacket>>(
                                   *this, number, std::string(row->name), description, row->packetType));
    m_byNumber[number] = m_channels.back().get();
    return true;
}

bool CXpfTableFile::ReadDefinitions(std::uint32_t count) {
    std::uint32_t fieldTotal = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        std::uint8_t record[kDefinitionRecordSize];
        if (Read(record, sizeof record) != sizeof record) return false;
        auto definition = std::make_unique<CXpfPacketDefinition>();
        definition->type = Load<std::uint16_t>(record);
        definition->version = Load<std::uint32_t>(record + 2);
        const auto fieldCount = Load<std::uint16_t>(record + 6);
        fieldTotal += fieldCount;
        if (fieldTotal > kLargestFieldTotal) return false;
        for (std::uint32_t field = 0; field < fieldCount; ++field) {
            CXpfFieldDefinition::Record fieldRecord;
            if (Read(fieldRecord.data(), fieldRecord.size()) != fieldRecord.size()) return false;
            definition->fields.emplace_back(fieldRecord);
        }
        m_definitions.push_back(std::move(definition));
    }
    return true;
}

CXpfChannel* CXpfTableFile::FindChannelByName(std::string_view name) {
    const auto found = std::ranges::find_if(
        m_byNumber, [name](const auto& entry) { return entry.second->GetName() == name; });
    return found == m_byNumber.end() ? nullptr : found->second;
}

CXpfChannel* CXpfTableFile::FindChannelByNumber(std::uint16_t number) {
    const auto found = m_byNumber.find(number);
    return found == m_byNumber.end() ? nullptr : found->second;
}

// The table of a type, as far as files of this kind carry the type.
const SStatusTable* CXpfTableFile::FindStatus(std::uint16_t packetType) const {
    return FindDescribedLayout(m_kind, packetType) ? FindStatusTable(packetType) : nullptr;
}

std::uint32_t CXpfTableFile::GetStatusFieldCount(std::uint16_t packetType) const {
    const SStatusTable* table = FindStatus(packetType);
    return table ? static_cast<std::uint32_t>(table->fields.size()) : 0;
}

bool CXpfTableFile::GetStatusField(std::uint16_t packetType, std::uint32_t index, std::string& name,
                                   std::string& description, std::uint32_t& literalCount) const {
    if (index >= GetStatusFieldCount(packetType)) return false;
    const SStatusField& row = FindStatus(packetType)->fields[index];
    name = row.name;
    description = row.description;
    literalCount = static_cast<std::uint32_t>(row.literals.size());
    return true;
}

bool CXpfTableFile::GetStatusLiteral(std::uint16_t packetType, std::uint32_t index, std::uint32_t literal,
                                     std::string& name, std::string& description) const {
    if (index >= GetStatusFieldCount(packetType)) return false;
    const SStatusField& row = FindStatus(packetType)->fields[index];
    if (literal >= row.literals.size()) return false;
    name = row.literals[literal].name;
    description = row.literals[literal].description;
    return true;
}

} // namespace Persistance_Xpf
