// Which fields of a packet the views offer.
#pragma once

#include "xpf/layout.h"

#include <string_view>

namespace Metier_Tarvel_DataModel {

enum class EVisibility {
    hidden,
    expertOnly, // also every field that the system does not know
    visible,
};

// The visibility of a field of a packet type in this version, as files of this kind carry it.
EVisibility GetVisibility(Persistance_Xpf::EFileKind kind, std::uint16_t packetType, std::uint32_t version,
                          std::string_view fieldName);

} // namespace Metier_Tarvel_DataModel
