#include "recording/recording_header.h"

#include "xpf/layout.h"
#include "xpf/records.h"

#include <algorithm>
#include <cstring>
#include <set>

namespace Enregistrement {

using namespace Persistance_Xpf;

namespace {

struct SChannelDescription {
    std::string_view name;
    std::string_view description;
};

constexpr SChannelDescription kDescriptions[] = {
    {"IMU", "Raw inertial data"},
    {"DVL_BT", "Doppler log, bottom track"},
    {"DVL_WT", "Doppler log, water track"},
    {"EM_LOG_1", "Electromagnetic log"},
    {"EM_LOG_2", "Electromagnetic log"},
    {"GPS_1", "GPS receiver"},
    {"GPS_2", "GPS receiver"},
    {"GPS_3", "GPS receiver"},
    {"DEPTH", "Depth sensor"},
    {"USBL_1", "USBL beacon"},
    {"USBL_2", "USBL beacon"},
    {"USBL_3", "USBL beacon"},
    {"LBL", "LBL ranges"},
    {"UTC", "UTC synchronization"},
    {"ODOMETER", "Odometer"},
    {"SYNCHRO_1", "External event"},
    {"SYNCHRO_2", "External event"},
    {"SYNCHRO_3", "External event"},
    {"SYNCHRO_4", "External event"},
    {"NELIX_NAV", "Real-time navigation"},
    {"TEMPERATURE", "Temperatures of the unit"},
    {"PLATFORM_ORIENT", "Orientation of the stabilized mount"},
    {"MORVEX_STD", "Navigation result"},
    {"MORVEX_MSG", "Messages of the processing"},
    {"MORVEX_EXT", "Estimated states"},
    {"MORVEX_STA", "Internal states"},
};

// No reader decodes these packets, so that they have no layout: the counts tell how many values follow.
constexpr SFieldLayout kInternalStateFields[] = {
    {"Date", EFieldType::date, natureUnknown},  {"Vector size", EFieldType::u32, natureUnknown},
    {"Vector", EFieldType::f64, natureUnknown}, {"Matrix size", EFieldType::u32, natureUnknown},
    {"Matrix", EFieldType::f64, natureUnknown},
};
constexpr std::uint32_t kInternalStateVersion = 1;

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

void AddDefinition(CBytes& bytes, std::uint16_t type) {
    const SPacketLayout* layout = FindPacketLayout(type);
    const std::span<const SFieldLayout> fields =
        layout ? layout->fields : std::span<const SFieldLayout>(kInternalStateFields);
    bytes.Add(type);
    bytes.Add(layout ? layout->version : kInternalStateVersion);
    bytes.Add(static_cast<std::uint16_t>(fields.size()));
    for (const SFieldLayout& field : fields) {
        bytes.AddText(field.name, kFieldNameSize);
        bytes.Add(field.type);
        bytes.Add(field.count);
        bytes.AddText(field.name, kFieldDescriptionSize);
        bytes.Add(field.nature);
    }
}

} // namespace

std::string_view GetChannelDescription(std::string_view channelName) {
    const auto* found = std::ranges::find(kDescriptions, channelName, &SChannelDescription::name);
    return found == std::end(kDescriptions) ? std::string_view() : found->description;
}

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
        bytes.AddText(GetChannelDescription(name), kChannelDescriptionSize);
        bytes.Add(row->packetType);
    }
    for (const std::uint16_t type : types) AddDefinition(bytes, type);
    return bytes.Take();
}

} // namespace Enregistrement
