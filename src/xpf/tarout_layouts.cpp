#include "xpf/tarout_layouts.h"
#include "xpf/layout_lists.h"

namespace Persistance_Xpf {

namespace {

constexpr const SPacketLayout* kTaroutLayouts[] = {&kMorvexStdLayout, &kMorvexMsgLayout, &kMorvexExtLayout};

} // namespace

std::span<const SPacketLayout* const> GetTaroutLayouts() { return kTaroutLayouts; }

} // namespace Persistance_Xpf
