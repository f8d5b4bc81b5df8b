// A file descriptor that closes itself.
#pragma once

#include <unistd.h>

#include <utility>

namespace Outils_Fichiers {

class CDescriptor {
  public:
    CDescriptor() = default;
    explicit CDescriptor(int descriptor) : m_descriptor(descriptor) {}
    CDescriptor(CDescriptor&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    CDescriptor& operator=(CDescriptor&& other) noexcept {
        std::swap(m_descriptor, other.m_descriptor);
        other.Close();
        return *this;
    }
    ~CDescriptor() { Close(); }

    // -1 without one.
    int Get() const { return m_descriptor; }
    bool IsOpen() const { return m_descriptor >= 0; }
    // False when the system reports that bytes written before are lost. True without a descriptor.
    bool Close() { return !IsOpen() || ::close(std::exchange(m_descriptor, -1)) == 0; }

  private:
    int m_descriptor = -1;
};

} // namespace Outils_Fichiers
