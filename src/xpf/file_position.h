#pragma once

#include <compare>
#include <cstdint>

namespace Persistance_Xpf {

// A byte offset in a packet file; 0 means not known, since the file header lies there.
class CXpfFilePosition {
  public:
    constexpr CXpfFilePosition() = default;
    constexpr CXpfFilePosition(std::int64_t offset) : m_offset(offset) {}

    constexpr std::int64_t Get() const { return m_offset; }
    constexpr bool IsKnown() const { return m_offset != 0; }
    friend constexpr auto operator<=>(CXpfFilePosition, CXpfFilePosition) = default;

  private:
    std::int64_t m_offset = 0;
};

} // namespace Persistance_Xpf
