// A temporary file of equal records: appended once, then read in any direction.
#pragma once

#include "foundation/descriptor.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <vector>

namespace Morvex {

// The file has no name, so nothing of it is left however the program ends. Memory stays at two blocks. One
// thread.
class CSpool {
  public:
    // Makes the file in `folder`; false when that cannot be. `recordSize`: bytes of one record, above 0.
    bool Open(const std::filesystem::path& folder, std::size_t recordSize);
    // False when the disk does not take it.
    bool Append(const void* record);
    std::int64_t GetCount() const { return m_count; }
    // The record of this index, valid until the next call; null when the disk does not give it. Neighbours
    // are read together, upwards and downwards. REQUIRES: 0 <= index < GetCount().
    const std::uint8_t* Read(std::int64_t index);

  private:
    bool Flush();

    Outils_Fichiers::CDescriptor m_file;
    std::size_t m_size = 0;
    std::int64_t m_count = 0;
    std::int64_t m_written = 0; // records in the file
    std::vector<std::uint8_t> m_pending;
    std::vector<std::uint8_t> m_block;
    std::int64_t m_blockFirst = 0, m_blockCount = 0;
};

} // namespace Morvex
