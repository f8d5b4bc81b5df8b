// The packet classes of both file kinds: thin types over the layout rows.
#pragma once

#include "xpf/packet.h"
#include "xpf/tarin_layouts.h"
#include "xpf/tarout_layouts.h"

#include <array>
#include <memory>

namespace Persistance_Xpf {

template <const SPacketLayout& Layout>
class TXpfPacket final : public CXpfDatedPacket {
  public:
    TXpfPacket() : CXpfDatedPacket(Layout) {}
    using CXpfPacket::GetPayload;
    std::uint8_t* GetPayload() override { return m_payload.data(); }

  private:
    std::array<std::uint8_t, Layout.payloadSize> m_payload{};
};

#define PACKET_TYPE(code, kind, name, packetClass) using packetClass = TXpfPacket<k##name##Layout>;
#define UNDECODED_TYPE(code, kind, name)
#include "xpf/packet_types.inc"

// A new packet object of a type; null for a type that is not decoded.
std::unique_ptr<CXpfPacket> CreateXpfPacket(std::uint16_t packetType);

} // namespace Persistance_Xpf
