// Replaces a file by one that is written piece by piece, in one step at the end: beside it, flushed to the
// disk, renamed. One thread at a time.
#pragma once

#include "foundation/descriptor.h"

#include <cstdint>
#include <filesystem>
#include <span>

namespace Outils_Fichiers {

class CAtomicFile {
  public:
    CAtomicFile() = default;
    // What was not committed goes; the old file stays.
    ~CAtomicFile() { Abandon(); }
    CAtomicFile(const CAtomicFile&) = delete;
    CAtomicFile& operator=(const CAtomicFile&) = delete;

    // Begins the new file; one begun before is given up. A link is followed, the mode of an existing file is
    // kept. False when the target cannot be replaced: its folder is missing or closed, it is no regular file,
    // or it may not be written.
    bool Open(const std::filesystem::path& target);
    // The file that Commit replaces, links followed.
    const std::filesystem::path& GetTarget() const { return m_target; }
    // False when not all of it could be written. REQUIRES: it is open.
    bool Write(std::span<const std::uint8_t> bytes) const;
    // False on any failure: the old file is whole, and nothing is left beside it.
    bool Commit();
    void Abandon();

  private:
    bool TakeName();
    bool CopyTo(const CDescriptor& named) const;

    std::filesystem::path m_target;
    std::filesystem::path m_beside; // the name of the new file; empty while it has none
    CDescriptor m_file;
    bool m_replaces = false;
    unsigned m_mode = 0; // of the file that is replaced
};

} // namespace Outils_Fichiers
