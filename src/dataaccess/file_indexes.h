// The indexes of the files that a program works with: where the queries find them, and where the analyses
// begin and keep them.
#pragma once

#include "dataaccess/index_builder.h"
#include "dataaccess/index_store.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>

namespace Application_Tarvel {

// Whether a core has nothing to do, as far as the load of the last minute shows.
bool HasIdleCore();

struct SIndexSettings {
    bool isOn = true;
    std::uint64_t memory = std::uint64_t{256} << 20; // bytes, of all indexes together
    std::uint64_t disk = std::uint64_t{4} << 30;     // bytes, of all kept files together
    std::filesystem::path folder;                    // of the kept files; empty keeps none
    std::int64_t leastKept = std::int64_t{16} << 20; // bytes of a stream that is worth a file
    std::int64_t loaded = std::int64_t{8} << 20;     // bytes of a channel that are read with a kept file
    // A scan of so many bytes or more is made by two threads while a core is idle.
    std::int64_t leastShared = std::int64_t{256} << 20;
    bool (*hasIdleCore)() = HasIdleCore;
};

// Any thread.
class CFileIndexes {
  public:
    explicit CFileIndexes(SIndexSettings settings)
        : m_settings(std::move(settings)), m_store(m_settings.folder, m_settings.disk, m_settings.loaded) {}

    bool IsOn() const { return m_settings.isOn; }
    // Null when there is none. Whether it fits the file at hand is the caller's to ask.
    std::shared_ptr<const CFileIndex> Find(const std::filesystem::path& path) const;
    void Forget(const std::filesystem::path& path);
    // Takes in the kept index of a file that nobody analyses; null when there is none.
    std::shared_ptr<const CFileIndex> FindKept(const std::filesystem::path& path,
                                               Persistance_Xpf::EFileKind kind);

    // For a scan of this file: a builder that goes on where the index of it ends, be it a kept one or a new
    // one, and the file that it was made for. Null when indexes are off or the file has no whole header.
    std::unique_ptr<CIndexBuilder> Begin(const std::filesystem::path& path, Persistance_Xpf::EFileKind kind);
    // Where a second thread had better begin with a scan of so many bytes from a place on; none for a scan by
    // one thread.
    std::optional<std::int64_t> ShareScan(std::int64_t begin, std::int64_t end) const;
    // Keeps the index when it has grown enough since it was kept last, or in any case. Whether all of it is
    // kept.
    bool Keep(const std::filesystem::path& path, CIndexBuilder& builder, bool always);
    // Called every now and then during a scan: when all indexes take more memory than they may, this one is
    // put to the disk and another builder takes the place of `builder`; null when that cannot be done.
    void LimitMemory(const std::filesystem::path& path, std::unique_ptr<CIndexBuilder>& builder);

  private:
    std::shared_ptr<CFileIndex> Load(const std::filesystem::path& path, Persistance_Xpf::EFileKind kind);
    void Publish(const std::filesystem::path& path, std::shared_ptr<CFileIndex> index);
    std::uint64_t GetBytes() const;

    struct SEntry {
        std::shared_ptr<CFileIndex> index;
        std::int64_t kept = 0;  // covered when it was kept last
        std::int64_t tried = 0; // and when that was last tried
    };

    const SIndexSettings m_settings;
    const CIndexStore m_store;
    mutable std::mutex m_mutex; // guards what follows
    std::map<std::filesystem::path, SEntry> m_entries;
};

} // namespace Application_Tarvel
