#include "recording/recording_header.h"

#include "xpf/layout.h"
#include "xpf/records.h"

#include <algorithm>
#include <cstring>
#include <set>

namespace Enregistrement {

using namespace Persistance_Xpf;

namespace {

class CBytes {
  public:
    template <class T>
    void Add(T value) {
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(&value);
        m_bytes.insert(m_bytes.end(), bytes, bytes + sizeof value);
    }
    // Padded with zeros to `width`, cut when longer.
    void AddText(std::string_view text, std::size_t width) {
        text = text.substr(0, width);
        m_bytes.insert(m_bytes.end(), text.begin(), text.end());
        m_bytes.insert(m_bytes.end(), width - text.size(), 0);
    }
    std::vector<std::uint8_t> Take() { return std::move(m_bytes); }

  private:
    std::vector<std::uint8_t> m_bytes;
};

void AddDefinition(CBytes& bytes, const SPacketLayout& layout) {
    bytes.Add(layout.type);
    bytes.Add(layout.version);
    bytes.Add(static_cast<std::uint16_t>(layout.fields.size()));
    for (const SFieldLayout& field : layout.fields) {
        bytes.AddText(field.name, kFieldNameSize);
        bytes.Add(field.type);
        bytes.Add(field.count);
        bytes.AddText(field.name, kFieldDescriptionSize);
        bytes.Add(field.nature);
    }
}

} // namespace

std::vector<std::uint8_t> MakeRecordingHeader(std::span<const std::string_view> channelNames) {
    std::set<std::uint16_t> types;
    std::set<const SChannelLayout*> rows;
    for (const std::string_view name : channelNames) {
        const SChannelLayout* row = FindChannelLayout(name);
        if (!row || !rows.insert(row).second || row->kind != (*rows.begin())->kind) return {};
        types.insert(row->packetType);
    }
    if (rows.empty()) return {};

    CBytes bytes;
    bytes.AddText("XPF", kChannelCountOffset);
    bytes.Add(static_cast<std::uint16_t>(channelNames.size()));
    bytes.Add(static_cast<std::uint16_t>(types.size()));
    for (const std::string_view name : channelNames) {
        const SChannelLayout* row = FindChannelLayout(name);
        bytes.Add(static_cast<std::uint16_t>(row - GetChannelLayouts().data()));
        bytes.AddText(name, kChannelNameSize);
        bytes.AddText(row->description, kChannelDescriptionSize);
        bytes.Add(row->packetType);
    }
    for (const std::uint16_t type : types)
        AddDefinition(bytes, *FindDescribedLayout((*rows.begin())->kind, type));
    return bytes.Take();
}

} // namespace Enregistrement
