// The packets of one channel, read through the whole file and past damage.
#pragma once

#include "morvex/run_plan.h"
#include "xpf/file.h"
#include "xpf/layout.h"

#include <cstdint>
#include <cstring>
#include <memory>
#include <span>

namespace Morvex {

// A view of a packet's payload; valid until the stream moves on.
class CPayload {
  public:
    CPayload() = default;
    explicit CPayload(std::span<const std::uint8_t> bytes) : m_bytes(bytes) {}

    // The field at this offset of a layout.
    // REQUIRES: the payload has the layout's size.
    template <class Value>
    Value Get(std::uint32_t offset) const {
        Value value;
        std::memcpy(&value, m_bytes.data() + offset, sizeof value);
        return value;
    }
    // The date, which is the first field, s.
    double GetSeconds() const { return static_cast<double>(Get<std::int64_t>(0)) * 1e-7; }

    std::span<const std::uint8_t> GetBytes() const { return m_bytes; }

  private:
    std::span<const std::uint8_t> m_bytes;
};

class CPacketStream {
  public:
    // False when the file cannot be opened as a recording, or has no such channel of this packet type.
    bool Open(const SChannelPlan& plan, const Persistance_Xpf::SPacketLayout& layout);
    // The next packet of the channel with a payload of the layout's size; false at the end.
    bool Next(CPayload& payload);
    // Date of the channel's last packet, s; false when it cannot be found. The place in the stream stays.
    bool GetLastDate(double& seconds);

    double GetTimeOffset() const { return m_timeOffset; }
    // Stretches of damaged bytes that were passed over.
    int GetDamageCount() const { return m_damages; }

  private:
    std::unique_ptr<Persistance_Xpf::CXpfFile> m_file;
    std::uint16_t m_channel = 0;
    std::uint32_t m_payloadSize = 0;
    double m_timeOffset = 0.0;
    int m_damages = 0;
};

} // namespace Morvex
