// Indexes that are kept in a folder of the user's cache, each in a file of its own. Several programs may use
// the folder: a file is written beside and renamed, and what is in it counts only as far as its checksums
// fit. Any thread.
#pragma once

#include "dataaccess/file_index.h"

#include <cstdint>
#include <filesystem>
#include <memory>

namespace Application_Tarvel {

class CIndexStore {
  public:
    // `most`: bytes of all files in the folder; those used least lately go first. `loaded`: bytes of the
    // upper levels of a channel that Load reads at once, because a search begins with them.
    CIndexStore(std::filesystem::path folder, std::uint64_t most, std::int64_t loaded)
        : m_folder(std::move(folder)), m_most(most), m_loaded(loaded) {}

    // The folder of this program in the user's cache; empty when the user has none.
    static std::filesystem::path GetUsualFolder();

    // The index of this file, whose header has been read; null when none is kept that fits it. One that does
    // not is removed.
    std::shared_ptr<CFileIndex> Load(Persistance_Xpf::CXpfFile& file, Persistance_Xpf::EFileKind kind,
                                     const std::filesystem::path& path) const;
    // `index` is not added to meanwhile, and `state` is how its file looked before the last scan. False when
    // the disk does not take it, or it is larger than all files may be.
    bool Save(const CFileIndex& index, const SFileState& state) const;
    void Remove(const SFileIdentity& identity) const;

    // Where the index of a file is kept.
    std::filesystem::path GetPlace(const SFileIdentity& identity) const;

  private:
    void MakeRoom() const;

    std::filesystem::path m_folder;
    std::uint64_t m_most;
    std::int64_t m_loaded;
};

} // namespace Application_Tarvel
