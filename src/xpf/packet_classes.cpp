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
#define PACKET_TYPE(code, kind, name, packetClass) Row<k##name##Layout>(),
#define UNDECODED_TYPE(code, kind, name)
#include "xpf/packet_types.inc"
};

} // namespace

const SPacketClass* FindPacketClass(std::uint16_t type) {
    const auto* found = std::ranges::find(kClasses, type, &SPacketClass::type);
    return found == std::end(kClasses) ? nullptr : found;
}

std::unique_ptr<CXpfPacket> CreateXpfPacket(std::uint16_t packetType) {
    const SPacketClass* row = FindPacketClass(packetType);
    return row ? row->createPacket() : nullptr;
}

} // namespace Persistance_Xpf
