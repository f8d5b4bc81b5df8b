// What the fuzz targets share: files that exist in memory only, and conditions that must hold whatever the
// input is.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace Fuzz {

using Bytes = std::span<const std::uint8_t>;

inline std::string_view AsText(Bytes bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// Ends the process, so that the fuzzer keeps the input, unless the condition holds.
void Require(bool condition, const char* what);

// A regular file without a name on any disk, for code that opens a path.
class CMemoryFile {
  public:
    explicit CMemoryFile(Bytes bytes = {});
    ~CMemoryFile();
    CMemoryFile(const CMemoryFile&) = delete;
    CMemoryFile& operator=(const CMemoryFile&) = delete;

    // Replaces the content.
    void Set(Bytes bytes);
    // Opens this file in this process, as long as the object lives.
    const std::filesystem::path& GetPath() const { return m_path; }

  private:
    int m_descriptor;
    std::filesystem::path m_path;
};

// A folder of its own in the memory file system, for code that saves; removed at the end.
class CScratchFolder {
  public:
    CScratchFolder();
    ~CScratchFolder();
    CScratchFolder(const CScratchFolder&) = delete;
    CScratchFolder& operator=(const CScratchFolder&) = delete;

    std::filesystem::path operator/(std::string_view name) const { return m_path / name; }

  private:
    std::filesystem::path m_path;
};

// A recording (.tarin) that has every channel, and one packet of zeros in each.
CMemoryFile& GetRecording();

} // namespace Fuzz
