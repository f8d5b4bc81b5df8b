// The file that a tool makes: it appears under its name whole, or not at all.
#pragma once

#include "common/run_monitor.h"
#include "foundation/descriptor.h"

#include <filesystem>
#include <span>

namespace Compagnon {

// Gives a place to write beside the target and moves it there at the end. Where the file system has files
// without a name, a killed program leaves no file. One thread.
class CTargetFile {
  public:
    CTargetFile() = default;
    // Removes what was not committed.
    ~CTargetFile() { Discard(); }
    CTargetFile(const CTargetFile&) = delete;
    CTargetFile& operator=(const CTargetFile&) = delete;

    // Prepares the place. kNoText when it is ready; else the text of what is wrong, whose %1 is the
    // target: it is a folder, it is one of the sources, or its folder cannot be written.
    EText Open(const std::filesystem::path& target, std::span<const std::filesystem::path> sources);

    // Where to write; an empty file. Valid from Open to Commit.
    const std::filesystem::path& GetPath() const { return m_path; }

    // Brings the bytes to the disk and gives the file its name, in place of an older one. False when the
    // system refuses; nothing is left then but the older file.
    // REQUIRES: every writer of GetPath() is closed.
    bool Commit();
    void Discard();

  private:
    std::filesystem::path m_target, m_path;
    Outils_Fichiers::CDescriptor m_file;
    bool m_named = false; // m_path is a name in the target's folder
};

} // namespace Compagnon
