// Where an archive reads its bytes from and writes them to.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace Outils_Objets {

class IByteStream {
  public:
    virtual ~IByteStream() = default;
    // Up to `size` bytes; the count read, 0 at the end or on a failure.
    virtual std::size_t Read(void* data, std::size_t size) = 0;
    // False when not all was written.
    virtual bool Write(const void* data, std::size_t size) = 0;
    // Bytes between the read position and the end; what a reader may allocate is bounded by it.
    virtual std::uint64_t GetRemaining() const = 0;
};

// Bytes in memory: written at the end, read from the start.
class CMemoryStream : public IByteStream {
  public:
    CMemoryStream() = default;
    explicit CMemoryStream(std::vector<std::uint8_t> bytes) : m_bytes(std::move(bytes)) {}

    std::size_t Read(void* data, std::size_t size) override;
    bool Write(const void* data, std::size_t size) override;
    std::uint64_t GetRemaining() const override { return m_bytes.size() - m_position; }

    const std::vector<std::uint8_t>& GetBytes() const { return m_bytes; }

  private:
    std::vector<std::uint8_t> m_bytes;
    std::size_t m_position = 0;
};

} // namespace Outils_Objets
