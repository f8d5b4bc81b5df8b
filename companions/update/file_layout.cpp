#include "update/file_layout.h"

#include "foundation/bytes.h"
#include "xpf/file.h"

#include <algorithm>
#include <cstring>

namespace MiseANiveau {

using namespace Persistance_Xpf;
using Outils::Load;

namespace {

constexpr std::uint32_t kLargestFieldTotal = 1u << 18; // bounds what the header of a hostile file costs
constexpr std::uint64_t kLargestPayload = 1u << 24;

template <std::size_t Size>
bool Read(CXpfFile& file, std::uint8_t (&bytes)[Size]) {
    return file.Read(bytes, Size) == Size;
}

bool ReadChannels(CXpfFile& file, std::uint32_t count, std::vector<SOwnChannel>& channels) {
    for (std::uint32_t i = 0; i < count; ++i) {
        std::uint8_t record[kChannelRecordSize];
        if (!Read(file, record)) return false;
        SOwnChannel channel{Load<std::uint16_t>(record),
                            std::string(LoadPaddedText(record + 2, kChannelNameSize)),
                            Load<std::uint16_t>(record + kChannelRecordSize - 2)};
        const std::uint8_t* padding = record + 2 + channel.name.size();
        if (std::any_of(padding, static_cast<const std::uint8_t*>(record) + 2 + kChannelNameSize,
                        [](std::uint8_t byte) { return byte != 0; }))
            return false;
        const auto isSame = [&](const SOwnChannel& other) {
            return other.name == channel.name || other.number == channel.number;
        };
        if (std::ranges::any_of(channels, isSame)) return false;
        channels.push_back(std::move(channel));
    }
    return true;
}

void AddField(SOwnDefinition& definition, const std::uint8_t (&record)[kFieldRecordSize]) {
    SOwnField field;
    field.name = LoadPaddedText(record, kFieldNameSize);
    field.type = record[kFieldNameSize];
    field.count = Load<std::uint32_t>(record + kFieldNameSize + 1);
    field.offset = static_cast<std::uint32_t>(definition.payloadSize);
    const std::uint32_t width = GetWidth(static_cast<EFieldType>(field.type));
    const std::uint64_t size = std::uint64_t{width} * field.count;
    definition.readable =
        definition.readable && width > 0 && definition.payloadSize + size <= kLargestPayload;
    if (definition.readable) definition.payloadSize += size;
    definition.fields.push_back(std::move(field));
}

bool ReadDefinitions(CXpfFile& file, std::uint32_t count, std::vector<SOwnDefinition>& definitions) {
    std::uint32_t total = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        std::uint8_t head[kDefinitionRecordSize];
        if (!Read(file, head)) return false;
        SOwnDefinition definition;
        definition.type = Load<std::uint16_t>(head);
        definition.version = Load<std::uint32_t>(head + 2);
        const auto fields = Load<std::uint16_t>(head + 6);
        total += fields;
        const bool isRepeated =
            std::ranges::find(definitions, definition.type, &SOwnDefinition::type) != definitions.end();
        if (total > kLargestFieldTotal || isRepeated) return false;
        for (std::uint32_t k = 0; k < fields; ++k) {
            std::uint8_t record[kFieldRecordSize];
            if (!Read(file, record)) return false;
            AddField(definition, record);
        }
        definitions.push_back(std::move(definition));
    }
    return true;
}

// Of the versions that a file states, also those of packets that no channel has: a reader compares them all.
ELayout JudgeVersions(const SFileLayout& layout) {
    ELayout state = ELayout::current;
    for (const SOwnDefinition& own : layout.definitions) {
        const SPacketLayout* present = FindDescribedLayout(layout.kind, own.type);
        if (!present || own.version == present->version) continue;
        if (own.version > present->version) return ELayout::newer;
        if (!own.readable) return ELayout::damaged;
        state = ELayout::former;
    }
    return state;
}

ELayout Judge(SFileLayout& layout) {
    if (layout.channels.empty()) return ELayout::damaged;
    const SChannelLayout* first = FindChannelLayout(layout.channels.front().name);
    if (first) layout.kind = first->kind;
    for (const SOwnChannel& channel : layout.channels) {
        const SChannelLayout* row = FindChannelLayout(channel.name);
        if (row && row->kind == layout.kind && row->packetType == channel.packetType) continue;
        layout.culprit = channel.name;
        return ELayout::unknown;
    }
    return JudgeVersions(layout);
}

} // namespace

const SOwnDefinition* SFileLayout::FindDefinition(std::uint16_t packetType) const {
    const auto found = std::ranges::find(definitions, packetType, &SOwnDefinition::type);
    return found == definitions.end() ? nullptr : &*found;
}

SFileLayout ReadFileLayout(const std::filesystem::path& path) {
    SFileLayout layout;
    CXpfFile file;
    std::uint8_t header[kFileHeaderSize];
    if (!file.Open(path)) return layout;
    layout.state = ELayout::foreign;
    if (!file.Seek(0) || !Read(file, header) || std::memcmp(header, "XPF", 3) != 0) return layout;
    layout.state = ELayout::damaged;
    if (!ReadChannels(file, Load<std::uint16_t>(header + kChannelCountOffset), layout.channels) ||
        !ReadDefinitions(file, Load<std::uint16_t>(header + kDefinitionCountOffset), layout.definitions))
        return layout;
    layout.dataStart = file.GetPosition();
    layout.state = Judge(layout);
    return layout;
}

} // namespace MiseANiveau
