#include "xpf/packet_classes.h"

#include "xpf/packets.h"

#include <algorithm>
#include <utility>

namespace Persistance_Xpf {

namespace {

template <const SPacketLayout& Layout>
constexpr SPacketClass Row() {
    using TPacket = TXpfPacket<Layout>;
    return {Layout.type, []() -> std::unique_ptr<CXpfPacket> { return std::make_unique<TPacket>(); },
            [](CXpfFile& file, std::uint16_t number, std::string name,
               std::string description) -> std::unique_ptr<CXpfChannel> {
                return std::make_unique<CXpfStructuredChannel<TPacket>>(file, number, std::move(name),
                                                                        std::move(description), Layout.type);
            }};
}

constexpr SPacketClass kClasses[] = {
    Row<kImuLayout>(),
    Row<kDvlLayout>(),
    Row<kEMLogLayout>(),
    Row<kGpsLayout>(),
    Row<kDepthLayout>(),
    Row<kUsblLayout>(),
    Row<kLblLayout>(),
    Row<kUtcLayout>(),
    Row<kOdometerLayout>(),
    Row<kSynchroLayout>(),
    Row<kNelixNavLayout>(),
    Row<kTemperatureLayout>(),
    Row<kPlatformOrientationLayout>(),
    Row<kMorvexStdLayout>(),
    Row<kMorvexMsgLayout>(),
    Row<kMorvexExtLayout>(),
};

} // namespace

const SPacketClass* FindPacketClass(std::uint16_t type) {
    const auto* found = std::ranges::find(kClasses, type, &SPacketClass::type);
    return found == std::end(kClasses) ? nullptr : found;
}

} // namespace Persistance_Xpf
