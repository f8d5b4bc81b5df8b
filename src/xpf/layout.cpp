#include "xpf/layout.h"

#include "foundation/texts.h"
#include "xpf/layout_lists.h"
#include "xpf/tarout_layouts.h"

#include <algorithm>

namespace Persistance_Xpf {

using Outils_Texte::EText;

namespace {

constexpr EText kFirstChannelLabel = EText::channelImu;

// The row's index is the number that recordings written by this system give the channel.
constexpr SChannelLayout kChannels[] = {
    {"IMU", typeImu, EFileKind::tarin, EText::channelImu},
    {"DVL_BT", typeDvl, EFileKind::tarin, EText::channelDvlBottomTrack},
    {"DVL_WT", typeDvl, EFileKind::tarin, EText::channelDvlWaterTrack},
    {"EM_LOG_1", typeEMLog, EFileKind::tarin, EText::channelEmLog1},
    {"EM_LOG_2", typeEMLog, EFileKind::tarin, EText::channelEmLog2},
    {"GPS_1", typeGps, EFileKind::tarin, EText::channelGps1},
    {"GPS_2", typeGps, EFileKind::tarin, EText::channelGps2},
    {"GPS_3", typeGps, EFileKind::tarin, EText::channelGps3},
    {"DEPTH", typeDepth, EFileKind::tarin, EText::channelDepthSensor},
    {"USBL_1", typeUsbl, EFileKind::tarin, EText::channelUsblBeacon1},
    {"USBL_2", typeUsbl, EFileKind::tarin, EText::channelUsblBeacon2},
    {"USBL_3", typeUsbl, EFileKind::tarin, EText::channelUsblBeacon3},
    {"LBL", typeLbl, EFileKind::tarin, EText::channelLbl},
    {"UTC", typeUtc, EFileKind::tarin, EText::channelUtcSynchronization},
    {"ODOMETER", typeOdometer, EFileKind::tarin, EText::channelOdometer},
    {"SYNCHRO_1", typeSynchro, EFileKind::tarin, EText::channelExternalSynchro1},
    {"SYNCHRO_2", typeSynchro, EFileKind::tarin, EText::channelExternalSynchro2},
    {"SYNCHRO_3", typeSynchro, EFileKind::tarin, EText::channelExternalSynchro3},
    {"SYNCHRO_4", typeSynchro, EFileKind::tarin, EText::channelExternalSynchro4},
    {"NELIX_NAV", typeNelixNav, EFileKind::tarin, EText::channelInsRealTimeNavigation},
    {"TEMPERATURE", typeTemperature, EFileKind::tarin, EText::channelInsTemperatures},
    {"PLATFORM_ORIENT", typePlatformOrientation, EFileKind::tarin, EText::channelGyroStabilizedMount},
    {"MORVEX_STD", typeMorvexStd, EFileKind::tarout, EText::channelPostProcessingStandard},
    {"MORVEX_MSG", typeMorvexMsg, EFileKind::tarout, EText::channelPostProcessingMessages},
    {"MORVEX_EXT", typeMorvexExt, EFileKind::tarout, EText::channelPostProcessingExtended},
    {"MORVEX_STA", typeMorvexSta, EFileKind::tarout, EText::channelPostProcessingInternalStates},
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
