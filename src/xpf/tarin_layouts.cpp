#include "xpf/tarin_layouts.h"
#include "xpf/layout_lists.h"

namespace Persistance_Xpf {

namespace {

constexpr const SPacketLayout* kTarinLayouts[] = {
    &kImuLayout,
    &kDvlLayout,
    &kEMLogLayout,
    &kGpsLayout,
    &kDepthLayout,
    &kUsblLayout,
    &kLblLayout,
    &kUtcLayout,
    &kOdometerLayout,
    &kSynchroLayout,
    &kNelixNavLayout,
    &kTemperatureLayout,
    &kPlatformOrientationLayout,
};

} // namespace

std::span<const SPacketLayout* const> GetTarinLayouts() { return kTarinLayouts; }

} // namespace Persistance_Xpf
