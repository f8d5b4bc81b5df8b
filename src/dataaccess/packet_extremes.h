// Smallest and greatest value of every numeric field over a run of packets of one type.
#pragma once

#include "xpf/layout.h"
#include "xpf/records.h"

#include <array>
#include <cstdint>

namespace Application_Tarvel {

// Compares each field in its own type; the date takes no part, and what is not a number never replaces a
// number. Runs once per packet of a reduced channel: the comparisons are made in vector registers, by code
// that is generated for each packet type from its layout rows.
class CPacketExtremes {
  public:
    // False for a packet type that is not decoded; the object is then not to be used.
    bool Prepare(std::uint16_t packetType);

    // Starts a run with its first packet. `payload` must be a payload of the type that stands in its packet,
    // with the header before it and the trailer behind it: vectors at the ends reach that far.
    void Begin(const std::uint8_t* payload) {
        m_pendingCount = 0;
        m_functions.begin(payload, m_low.data(), m_high.data());
    }
    // Takes in a further packet, in the end: its bytes have to stay until Settle.
    void Include(const std::uint8_t* payload) {
        if (m_pendingCount == m_pending.size()) Settle();
        m_pending[m_pendingCount++] = payload;
    }
    // Compares what was included so far, many packets at once so that the extremes stay in registers.
    void Settle() {
        m_functions.include(m_pending.data(), m_pendingCount, m_low.data(), m_high.data());
        m_pendingCount = 0;
    }
    // Overwrites the numeric fields of two payloads by the run's minima and maxima.
    void Finish(std::uint8_t* minimum, std::uint8_t* maximum) {
        Settle();
        m_functions.finish(m_low.data(), minimum);
        m_functions.finish(m_high.data(), maximum);
    }

    // Bytes of one vector, and the most of them that a packet type needs.
    static constexpr std::size_t kVector = 16;
    static constexpr std::size_t kMaximumVectors = 64;
    struct alignas(kVector) SVector {
        std::uint8_t bytes[kVector];
    };

  private:
    struct SFunctions {
        void (*begin)(const std::uint8_t*, SVector*, SVector*);
        void (*include)(const std::uint8_t* const*, std::size_t, SVector*, SVector*);
        void (*finish)(const SVector*, std::uint8_t*);
    };
    template <const Persistance_Xpf::SPacketLayout& Layout>
    static SFunctions FunctionsFor(bool wide);

    SFunctions m_functions{};
    std::array<const std::uint8_t*, 64> m_pending;
    std::size_t m_pendingCount = 0;
    std::array<SVector, kMaximumVectors> m_low;
    std::array<SVector, kMaximumVectors> m_high;
};

} // namespace Application_Tarvel
