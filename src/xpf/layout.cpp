#include "xpf/layout.h"

#include "foundation/texts.h"
#include "xpf/tarin_layouts.h"
#include "xpf/tarout_layouts.h"

#include <algorithm>

namespace Persistance_Xpf {

using Outils_Texte::EText;

namespace {

constexpr EText kFirstChannelLabel = EText::channelImu;

// The row's index is the number that recordings written by this system give the channel.
constexpr SChannelLayout kChannels[] = {
    {"IMU", typeImu, EFileKind::tarin, EText::channelImu, "Raw inertial data"},
    {"DVL_BT", typeDvl, EFileKind::tarin, EText::channelDvlBottomTrack, "Doppler log, bottom track"},
    {"DVL_WT", typeDvl, EFileKind::tarin, EText::channelDvlWaterTrack, "Doppler log, water track"},
    {"EM_LOG_1", typeEMLog, EFileKind::tarin, EText::channelEmLog1, "Electromagnetic log"},
    {"EM_LOG_2", typeEMLog, EFileKind::tarin, EText::channelEmLog2, "Electromagnetic log"},
    {"GPS_1", typeGps, EFileKind::tarin, EText::channelGps1, "GPS receiver"},
    {"GPS_2", typeGps, EFileKind::tarin, EText::channelGps2, "GPS receiver"},
    {"GPS_3", typeGps, EFileKind::tarin, EText::channelGps3, "GPS receiver"},
    {"DEPTH", typeDepth, EFileKind::tarin, EText::channelDepthSensor, "Depth sensor"},
    {"USBL_1", typeUsbl, EFileKind::tarin, EText::channelUsblBeacon1, "USBL beacon"},
    {"USBL_2", typeUsbl, EFileKind::tarin, EText::channelUsblBeacon2, "USBL beacon"},
    {"USBL_3", typeUsbl, EFileKind::tarin, EText::channelUsblBeacon3, "USBL beacon"},
    {"LBL", typeLbl, EFileKind::tarin, EText::channelLbl, "LBL ranges"},
    {"UTC", typeUtc, EFileKind::tarin, EText::channelUtcSynchronization, "UTC synchronization"},
    {"ODOMETER", typeOdometer, EFileKind::tarin, EText::channelOdometer, "Odometer"},
    {"SYNCHRO_1", typeSynchro, EFileKind::tarin, EText::channelExternalSynchro1, "External event"},
    {"SYNCHRO_2", typeSynchro, EFileKind::tarin, EText::channelExternalSynchro2, "External event"},
    {"SYNCHRO_3", typeSynchro, EFileKind::tarin, EText::channelExternalSynchro3, "External event"},
    {"SYNCHRO_4", typeSynchro, EFileKind::tarin, EText::channelExternalSynchro4, "External event"},
    {"NELIX_NAV", typeNelixNav, EFileKind::tarin, EText::channelInsRealTimeNavigation,
     "Real-time navigation"},
    {"TEMPERATURE", typeTemperature, EFileKind::tarin, EText::channelInsTemperatures,
     "Temperatures of the unit"},
    {"PLATFORM_ORIENT", typePlatformOrientation, EFileKind::tarin, EText::channelGyroStabilizedMount,
     "Orientation of the stabilized mount"},
    {kResultChannel, typeMorvexStd, EFileKind::tarout, EText::channelPostProcessingStandard,
     "Navigation result"},
    {"MORVEX_MSG", typeMorvexMsg, EFileKind::tarout, EText::channelPostProcessingMessages,
     "Messages of the processing"},
    {"MORVEX_EXT", typeMorvexExt, EFileKind::tarout, EText::channelPostProcessingExtended,
     "Estimated states"},
    {"MORVEX_STA", typeMorvexSta, EFileKind::tarout, EText::channelPostProcessingInternalStates,
     "Internal states"},
};
static_assert(std::size(kChannels) == 26 && kChannels[25].label == kFirstChannelLabel + 25);

struct STypeRow {
    EFileKind kind;
    bool isDecoded;
    const SPacketLayout* layout;
};

// By the code of the type.
constexpr STypeRow kTypes[] = {
#define PACKET_TYPE(code, kind, name, packetClass) {EFileKind::kind, true, &k##name##Layout},
#define UNDECODED_TYPE(code, kind, name) {EFileKind::kind, false, &k##name##Layout},
#include "xpf/packet_types.inc"
};

constexpr bool AreTypesInOrder() {
    for (std::size_t i = 0; i < std::size(kTypes); ++i)
        if (kTypes[i].layout->type != i) return false;
    return true;
}
static_assert(AreTypesInOrder());

} // namespace

const SPacketLayout* FindPacketLayout(std::uint16_t type) {
    return type < std::size(kTypes) && kTypes[type].isDecoded ? kTypes[type].layout : nullptr;
}

const SPacketLayout* FindDescribedLayout(EFileKind kind, std::uint16_t type) {
    return type < std::size(kTypes) && kTypes[type].kind == kind ? kTypes[type].layout : nullptr;
}

std::span<const SChannelLayout> GetChannelLayouts() { return kChannels; }

const SChannelLayout* FindChannelLayout(std::string_view name) {
    const auto* found = std::ranges::find(kChannels, name, &SChannelLayout::name);
    return found == std::end(kChannels) ? nullptr : found;
}

std::string_view GetChannelLabel(std::string_view name) {
    const SChannelLayout* row = FindChannelLayout(name);
    return row ? Outils_Texte::GetText(row->label) : std::string_view();
}

} // namespace Persistance_Xpf
