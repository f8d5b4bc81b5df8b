// The file under a recording: positioned writes, nothing else.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>

namespace Enregistrement {

class CRecordingFile {
  public:
    CRecordingFile() = default;
    ~CRecordingFile() { Close(); }
    CRecordingFile(const CRecordingFile&) = delete;
    CRecordingFile& operator=(const CRecordingFile&) = delete;

    // Makes the regular file, or empties an existing one; false for anything else of that name.
    bool Create(const std::filesystem::path& path);
    bool IsOpen() const { return m_descriptor >= 0; }

    // Writes all the bytes at this position.
    bool WriteAt(std::int64_t position, std::span<const std::uint8_t> bytes);
    // Cuts the file.
    bool Truncate(std::int64_t size);
    // False when the system reports a failed write only now. True when not open.
    bool Close();

  private:
    int m_descriptor = -1;
};

} // namespace Enregistrement
