// Values where they lie in foreign bytes.
#pragma once

#include <cstdint>
#include <cstring>

namespace Outils {

// The value of a plain type at `bytes`, which need not be aligned. REQUIRES: sizeof(T) bytes there.
template <class T>
T Load(const std::uint8_t* bytes) {
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

} // namespace Outils
