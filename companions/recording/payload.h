// Packet payloads filled by field name, the names resolved at compile time.
#pragma once

#include "xpf/layout.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <span>
#include <string_view>

namespace Enregistrement {

struct SPlace {
    std::uint32_t offset;
    Persistance_Xpf::EFieldType type;
};

// Where a field lies; an unknown name does not compile.
consteval SPlace PlaceOf(const Persistance_Xpf::SPacketLayout& layout, std::string_view name) {
    const std::uint32_t index = layout.IndexOf(name);
    return {layout.offsets[index], layout.fields[index].type};
}

class CPayload {
  public:
    // Zeros of the size of a packet type.
    void Reset(std::uint32_t size) {
        m_size = size;
        m_bytes.fill(0);
    }
    std::span<const std::uint8_t> Get() const { return {m_bytes.data(), m_size}; }

    void PutDate(std::int64_t ticks) { PutAs<std::int64_t>(0, ticks); }
    // The value in the field's type; whole numbers are rounded and held within it.
    void Put(SPlace place, double value) {
        using enum Persistance_Xpf::EFieldType;
        switch (place.type) {
        case u8: return PutRounded<std::uint8_t>(place.offset, value);
        case u16: return PutRounded<std::uint16_t>(place.offset, value);
        case u32: return PutRounded<std::uint32_t>(place.offset, value);
        case i8: return PutRounded<std::int8_t>(place.offset, value);
        case i16: return PutRounded<std::int16_t>(place.offset, value);
        case i32: return PutRounded<std::int32_t>(place.offset, value);
        case f32: return PutAs(place.offset, static_cast<float>(value));
        case f64: return PutAs(place.offset, value);
        case date: return PutAs(place.offset, static_cast<std::int64_t>(value));
        }
    }

  private:
    template <class T>
    void PutAs(std::uint32_t offset, T value) {
        std::memcpy(m_bytes.data() + offset, &value, sizeof value);
    }
    template <class T>
    void PutRounded(std::uint32_t offset, double value) {
        const double low = std::numeric_limits<T>::min(), high = std::numeric_limits<T>::max();
        PutAs(offset, static_cast<T>(std::clamp(std::nearbyint(value), low, high)));
    }

    std::array<std::uint8_t, 320> m_bytes{}; // no packet of a recording or of a truth is bigger
    std::uint32_t m_size = 0;
};

} // namespace Enregistrement
