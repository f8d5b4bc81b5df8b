// The file under a recording: positioned writes, nothing else.
#pragma once

#include "foundation/descriptor.h"

#include <cstdint>
#include <filesystem>
#include <span>

namespace Enregistrement {

class CRecordingFile {
  public:
    // Makes the regular file, or empties an existing one; false for anything else of that name.
    bool Create(const std::filesystem::path& path);
    bool IsOpen() const { return m_file.IsOpen(); }

    // Writes all the bytes at this position.
    bool WriteAt(std::int64_t position, std::span<const std::uint8_t> bytes);
    // Cuts the file.
    bool Truncate(std::int64_t size);
    // False when the system reports a failed write only now. True when not open.
    bool Close() { return m_file.Close(); }

  private:
    Outils_Fichiers::CDescriptor m_file;
};

} // namespace Enregistrement
