// Counts what a reader skips, so that nothing is left out in silence.
#pragma once

#include "common/run_monitor.h"

#include <array>
#include <cstdint>
#include <vector>

namespace Compagnon {

// Faults of a source by kind, each with the places of its first three. One thread.
class CFaultCounter {
  public:
    // `kind` names the fault ("wrong check sum"); `place` is the line, from 1, or the byte, from 0.
    void Add(EText kind, std::uint64_t place);

    std::uint64_t GetCount() const;
    std::uint64_t GetCount(EText kind) const;
    // One warning for each kind. `places`: a text with %1 for the fault, %2 for its count and %3 for the
    // places, such as EText::faultsByLine or EText::faultsByByte.
    void Report(IRunMonitor& monitor, EText places) const;

  private:
    struct SKind {
        EText kind;
        std::uint64_t count = 0;
        std::array<std::uint64_t, 3> first{};
    };
    std::vector<SKind> m_kinds; // in the order of their first fault
};

} // namespace Compagnon
