// The sources of a conversion as one stream of bytes.
#pragma once

#include "common/run_monitor.h"
#include "foundation/descriptor.h"

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

namespace Conversion {

using Compagnon::ELevel;
using Compagnon::IRunMonitor;
using Outils_Texte::EText;

// Several files are read as one, since a recorder cuts its files anywhere. Reports the progress, and ends the
// stream early when the run is to stop. One thread.
class CByteSource {
  public:
    // Read in pieces of this size: the run hears of a stop between two of them.
    static constexpr std::size_t kPieceSize = 256 << 10;

    // `monitor` must outlive the source.
    explicit CByteSource(IRunMonitor& monitor) : m_monitor(monitor) {}

    // False when a file cannot be read or is not a regular file; GetCurrentPath() is the one.
    bool Open(std::span<const std::filesystem::path> paths);
    // Goes back to the first byte.
    void Rewind();

    // The next bytes, at most kPieceSize; 0 at the end of the stream.
    std::size_t Read(std::span<char> bytes);

    // Bytes read so far, over all files.
    std::uint64_t GetPosition() const { return m_position; }
    // Why the stream has ended early.
    bool IsStopped() const { return m_stopped; }
    bool IsFailed() const { return m_failed; } // GetCurrentPath() cannot be read on
    const std::filesystem::path& GetCurrentPath() const { return m_files[m_current].path; }

  private:
    struct SFile {
        std::filesystem::path path;
        Outils_Fichiers::CDescriptor file;
        std::int64_t offset = 0;
    };

    IRunMonitor& m_monitor;
    std::vector<SFile> m_files;
    std::size_t m_current = 0;
    std::uint64_t m_position = 0, m_total = 0;
    bool m_stopped = false, m_failed = false;
};

} // namespace Conversion
