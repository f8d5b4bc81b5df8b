#include "xpf/layout.h"

#include "xpf/layout_lists.h"
#include "xpf/tarout_layouts.h"

#include <algorithm>

namespace Persistance_Xpf {

namespace {

constexpr int kFirstChannelLabel = 2200;

// The row's index is the number that recordings written by this system give the channel.
constexpr SChannelLayout kChannels[] = {
    {"IMU", typeImu, EFileKind::tarin, 2200},
    {"DVL_BT", typeDvl, EFileKind::tarin, 2201},
    {"DVL_WT", typeDvl, EFileKind::tarin, 2202},
    {"EM_LOG_1", typeEMLog, EFileKind::tarin, 2203},
    {"EM_LOG_2", typeEMLog, EFileKind::tarin, 2204},
    {"GPS_1", typeGps, EFileKind::tarin, 2205},
    {"GPS_2", typeGps, EFileKind::tarin, 2206},
    {"GPS_3", typeGps, EFileKind::tarin, 2207},
    {"DEPTH", typeDepth, EFileKind::tarin, 2208},
    {"USBL_1", typeUsbl, EFileKind::tarin, 2209},
    {"USBL_2", typeUsbl, EFileKind::tarin, 2210},
    {"USBL_3", typeUsbl, EFileKind::tarin, 2211},
    {"LBL", typeLbl, EFileKind::tarin, 2212},
    {"UTC", typeUtc, EFileKind::tarin, 2213},
    {"ODOMETER", typeOdometer, EFileKind::tarin, 2214},
    {"SYNCHRO_1", typeSynchro, EFileKind::tarin, 2215},
    {"SYNCHRO_2", typeSynchro, EFileKind::tarin, 2216},
    {"SYNCHRO_3", typeSynchro, EFileKind::tarin, 2217},
    {"SYNCHRO_4", typeSynchro, EFileKind::tarin, 2218},
    {"NELIX_NAV", typeNelixNav, EFileKind::tarin, 2219},
    {"TEMPERATURE", typeTemperature, EFileKind::tarin, 2220},
    {"PLATFORM_ORIENT", typePlatformOrientation, EFileKind::tarin, 2221},
    {"MORVEX_STD", typeMorvexStd, EFileKind::tarout, 2222},
    {"MORVEX_MSG", typeMorvexMsg, EFileKind::tarout, 2223},
    {"MORVEX_EXT", typeMorvexExt, EFileKind::tarout, 2224},
    {"MORVEX_STA", typeMorvexSta, EFileKind::tarout, 2225},
};
static_assert(std::size(kChannels) == 26 && kChannels[25].label == kFirstChannelLabel + 25);

const SPacketLayout* Find(std::span<const SPacketLayout* const> layouts, std::uint16_t type) {
    const auto found = std::ranges::find(layouts, type, &SPacketLayout::type);
    return found == layouts.end() ? nullptr : *found;
}

} // namespace

const SPacketLayout* FindPacketLayout(std::uint16_t type) {
    const SPacketLayout* layout = Find(GetTarinLayouts(), type);
    return layout ? layout : Find(GetTaroutLayouts(), type);
}

const std::uint32_t* FindExpectedVersion(EFileKind kind, std::uint16_t type) {
    if (kind == EFileKind::tarout && type == typeMorvexSta) return &kMorvexStaVersion;
    const SPacketLayout* layout =
        Find(kind == EFileKind::tarin ? GetTarinLayouts() : GetTaroutLayouts(), type);
    return layout ? &layout->version : nullptr;
}

std::span<const SChannelLayout> GetChannelLayouts() { return kChannels; }

const SChannelLayout* FindChannelLayout(std::string_view name) {
    const auto* found = std::ranges::find(kChannels, name, &SChannelLayout::name);
    return found == std::end(kChannels) ? nullptr : found;
}

} // namespace Persistance_Xpf
