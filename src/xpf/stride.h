// The steps from packet to packet within a block of a file.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace Persistance_Xpf {

// A step is mostly one of those that came last. Compared with them it is known to the processor by its branch
// prediction before the size or link itself has come from memory, so that several packets are on their way at
// once.
class CStride {
  public:
    std::int64_t Take(std::uint32_t step) {
        for (const std::uint32_t usual : m_usual) {
            if (step != usual) continue;
            std::int64_t known = usual;
            asm("" : "+r"(known)); // else the compiler would add the loaded value after all
            return known;
        }
        m_usual[m_oldest] = step;
        m_oldest = (m_oldest + 1) % m_usual.size();
        return step;
    }

  private:
    std::array<std::uint32_t, 2> m_usual{};
    std::size_t m_oldest = 0;
};

} // namespace Persistance_Xpf
