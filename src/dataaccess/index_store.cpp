#include "dataaccess/index_store.h"

#include "dataaccess/index_file.h"
#include "foundation/unique_file.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/file.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace Application_Tarvel {

using namespace Persistance_Xpf;
using Outils_Fichiers::CDescriptor;

namespace {

constexpr std::string_view kExtension = ".vnindex";
constexpr std::string_view kBeside = ".new-";

// Held by one program at a time, as long as the object lives.
class CFolderLock {
  public:
    explicit CFolderLock(const std::filesystem::path& folder)
        : m_file(open((folder / "lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)),
          m_isHeld(m_file.IsOpen() && flock(m_file.Get(), LOCK_EX | LOCK_NB) == 0) {}
    bool IsHeld() const { return m_isHeld; }

  private:
    const CDescriptor m_file;
    const bool m_isHeld;
};

} // namespace

std::filesystem::path CIndexStore::GetUsualFolder() {
    const char* cache = std::getenv("XDG_CACHE_HOME");
    if (cache && *cache == '/') return std::filesystem::path(cache) / "varne-nav";
    const char* home = std::getenv("HOME");
    if (home && *home == '/') return std::filesystem::path(home) / ".cache" / "varne-nav";
    return {};
}

std::filesystem::path CIndexStore::GetPlace(const SFileIdentity& identity) const {
    char name[40];
    std::snprintf(name, sizeof name, "%016llx-%016llx", static_cast<unsigned long long>(identity.device),
                  static_cast<unsigned long long>(identity.number));
    return m_folder / (name + std::string(kExtension));
}

std::shared_ptr<CFileIndex> CIndexStore::Load(CXpfFile& file, EFileKind kind,
                                              const std::filesystem::path& path) const {
    const auto state = LookAtState(path);
    if (m_folder.empty() || !state) return nullptr;
    const auto pages = CIndexPages::Open(GetPlace(state->identity));
    if (!pages) return nullptr;
    auto index = ReadIndexFile(pages, file, kind, *state, m_loaded);
    if (index && index->Fits(file, path)) {
        pages->Touch();
        return index;
    }
    Remove(state->identity);
    return nullptr;
}

bool CIndexStore::Save(const CFileIndex& index, const SFileState& state) const {
    if (m_folder.empty()) return false;
    std::error_code error;
    std::filesystem::create_directories(m_folder, error);
    std::filesystem::path beside;
    CDescriptor file = Outils_Fichiers::CreateUnique(m_folder, kBeside, 0600, beside);
    if (!file.IsOpen()) return false;
    bool done = WriteIndexFile(file, index, state);
    done = lseek(file.Get(), 0, SEEK_END) <= static_cast<off_t>(m_most) && done;
    done = file.Close() && done;
    done = done && std::rename(beside.c_str(), GetPlace(index.GetIdentity()).c_str()) == 0;
    if (!done) std::remove(beside.c_str());
    if (done) MakeRoom();
    return done;
}

void CIndexStore::Remove(const SFileIdentity& identity) const {
    std::error_code error;
    std::filesystem::remove(GetPlace(identity), error);
}

// Removes what was used least lately, and what a program that was killed has left. Another program that does
// the same at the moment does it for both.
void CIndexStore::MakeRoom() const {
    struct SEntry {
        std::filesystem::file_time_type used;
        std::filesystem::path path;
        std::uint64_t size;
    };
    const CFolderLock lock(m_folder);
    if (!lock.IsHeld()) return;
    std::vector<SEntry> entries;
    std::uint64_t total = 0;
    std::error_code error;
    for (std::filesystem::directory_iterator place(m_folder, error), end; !error && place != end;
         place.increment(error)) {
        const auto& found = *place;
        std::error_code gone;
        const SEntry entry{found.last_write_time(gone), found.path(), found.file_size(gone)};
        if (gone) continue;
        if (entry.path.extension() == kExtension) {
            entries.push_back(entry);
            total += entry.size;
        } else if (entry.path.filename().string().starts_with(kBeside) &&
                   entry.used + std::chrono::hours(1) < std::filesystem::file_time_type::clock::now()) {
            std::filesystem::remove(entry.path, gone);
        }
    }
    std::ranges::sort(entries, {}, &SEntry::used);
    for (const SEntry& entry : entries) {
        if (total <= m_most) break;
        if (std::filesystem::remove(entry.path, error)) total -= entry.size;
    }
}

} // namespace Application_Tarvel
