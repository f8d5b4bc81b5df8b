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
        if (total > kLargestFieldTotal) return false;
        for (std::uint32_t k = 0; k < fields; ++k) {
            std::uint8_t record[kFieldRecordSize];
            if (!Read(file, record)) return false;
            AddField(definition, record);
        }
        definitions.push_back(std::move(definition));
    }
    return true;
}

ELayout Judge(SFileLayout& layout) {
    if (layout.channels.empty()) return ELayout::damaged;
    ELayout state = ELayout::current;
    for (std::size_t i = 0; i < layout.channels.size(); ++i) {
        const SOwnChannel& channel = layout.channels[i];
        const SChannelLayout* row = FindChannelLayout(channel.name);
        if (i == 0 && row) layout.kind = row->kind;
        if (!row || row->kind != layout.kind || row->packetType != channel.packetType) {
            layout.culprit = channel.name;
            return ELayout::unknown;
        }
        const SPacketLayout* current = FindDescribedLayout(layout.kind, channel.packetType);
        const SOwnDefinition* own = layout.FindDefinition(channel.packetType);
        // Without a description a packet can only be taken as it is.
        if (!own || !current || own->version == current->version) continue;
        if (own->version > current->version) return ELayout::newer;
        if (!own->readable) return ELayout::damaged;
        state = ELayout::former;
    }
    return state;
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
