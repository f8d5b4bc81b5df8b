#include "foundation/atomic_file.h"

#include "foundation/unique_file.h"

#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace Outils_Fichiers {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kPrefix = ".save-";
constexpr unsigned kNewMode = 0666, kModeMask = 0777;

// The file that a link leads to at last, which need not exist; empty for a ring of links.
std::optional<fs::path> FollowLinks(fs::path path) {
    std::error_code error;
    for (int link = 0; link < 40; ++link) {
        if (!fs::is_symlink(fs::symlink_status(path, error))) return path;
        const fs::path target = fs::read_symlink(path, error);
        if (error) return std::nullopt;
        path = path.parent_path() / target;
    }
    return std::nullopt;
}

fs::path FolderOf(const fs::path& path) {
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

// The data is on the disk and under the new name already: a file system that cannot flush a folder loses
// nothing.
void FlushFolder(const fs::path& folder) {
    const CDescriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.IsOpen()) ::fsync(opened.Get());
}

} // namespace

bool CAtomicFile::Open(const fs::path& path) {
    Abandon();
    const auto target = FollowLinks(path);
    if (!target || !target->has_filename()) return false;
    m_target = *target;
    struct stat former;
    m_replaces = ::stat(m_target.c_str(), &former) == 0;
    m_mode = m_replaces ? former.st_mode & kModeMask : kNewMode;
    // The rename would ask only for the folder's permission, and replace a file that was locked against
    // writing.
    if (m_replaces && (!S_ISREG(former.st_mode) || ::access(m_target.c_str(), W_OK) != 0)) return false;
    m_file = CreateNameless(FolderOf(m_target));
    if (!m_file.IsOpen()) m_file = CreateUnique(FolderOf(m_target), kPrefix, kNewMode, m_beside);
    if (!m_file.IsOpen()) return false;
    if (!m_replaces || ::fchmod(m_file.Get(), m_mode) == 0) return true;
    Abandon();
    return false;
}

bool CAtomicFile::Write(std::span<const std::uint8_t> bytes) const { return WriteAll(m_file, bytes); }

bool CAtomicFile::Commit() {
    const bool written = m_file.IsOpen() && TakeName() && ::fsync(m_file.Get()) == 0;
    if (!m_file.Close() || !written || ::rename(m_beside.c_str(), m_target.c_str()) != 0) {
        Abandon();
        return false;
    }
    m_beside.clear();
    FlushFolder(FolderOf(m_target));
    return true;
}

void CAtomicFile::Abandon() {
    m_file.Close();
    if (!m_beside.empty()) ::unlink(m_beside.c_str());
    m_beside.clear();
}

// Where a nameless file gets no name, one that has a name takes its content.
bool CAtomicFile::TakeName() {
    const fs::path folder = FolderOf(m_target);
    if (!m_beside.empty() || LinkUnique(m_file, folder, kPrefix, m_beside)) return true;
    CDescriptor named = CreateUnique(folder, kPrefix, kNewMode, m_beside);
    if (!named.IsOpen() || !CopyTo(named) || (m_replaces && ::fchmod(named.Get(), m_mode) != 0)) return false;
    m_file = std::move(named);
    return true;
}

bool CAtomicFile::CopyTo(const CDescriptor& named) const {
    std::vector<std::uint8_t> block(1 << 16);
    for (off_t at = 0;;) {
        const ssize_t count = ::pread(m_file.Get(), block.data(), block.size(), at);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return count == 0;
        if (!WriteAll(named, std::span(block).first(static_cast<std::size_t>(count)))) return false;
        at += count;
    }
}

} // namespace Outils_Fichiers
