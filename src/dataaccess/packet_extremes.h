// Smallest and greatest value of every numeric field over a run of packets of one type.
#pragma once

#include "xpf/layout.h"
#include "xpf/records.h"

#include <array>
#include <cstdint>
#include <span>

namespace Application_Tarvel {

// Compares each field in its own type; the date takes no part, and what is not a number never replaces a
// number. Runs once per packet of a reduced channel: the comparisons are made in vector registers, by code
// that is generated for each packet type from its layout rows.
class CPacketExtremes {
  public:
    // False for a packet type that is not decoded; the object is then not to be used.
    bool Prepare(std::uint16_t packetType);

    // Starts a run with its first packet. `payload` must be a payload of the type within its packet,
    // with the header before it and the trailer after it: vectors at the ends reach that far.
    void Begin(const std::uint8_t* payload) { m_functions.begin(payload, m_low.data(), m_high.data()); }
    // Takes in further packets; many at once, so that the extremes stay in registers.
    void Include(std::span<const std::uint8_t* const> payloads) {
        m_functions.include(payloads.data(), payloads.size(), m_low.data(), m_high.data());
    }
    // Overwrites the numeric fields of two payloads by the run's minima and maxima.
    void Finish(std::uint8_t* minimum, std::uint8_t* maximum) const {
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
    std::array<SVector, kMaximumVectors> m_low;
    std::array<SVector, kMaximumVectors> m_high;
};

} // namespace Application_Tarvel
