#include "foundation/files.h"

#include "foundation/descriptor.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <random>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace Outils_Fichiers {

namespace fs = std::filesystem;

namespace {

bool WriteAll(int file, std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(file, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return true;
}

// Calls `make` with new names in `folder` until it does not fail for one that exists; `path` receives the
// name, or stays empty on failure. The name does not grow with that of another file, which may have the
// longest that the file system takes.
template <class Make>
int MakeUnique(const fs::path& folder, std::string_view prefix, fs::path& path, Make make) {
    std::random_device random;
    for (int attempt = 0; attempt < 100; ++attempt) {
        char suffix[24];
        std::snprintf(suffix, sizeof suffix, "%08x%08x.tmp", random(), random());
        const fs::path name = folder / (std::string(prefix) + suffix);
        const int result = make(name.c_str());
        if (result >= 0) path = name;
        if (result >= 0 || errno != EEXIST) return result;
    }
    return -1;
}

CDescriptor CreateUnique(const fs::path& folder, std::string_view prefix, mode_t mode, fs::path& path) {
    return CDescriptor(MakeUnique(folder, prefix, path, [mode](const char* name) {
        return ::open(name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    }));
}

std::string LinkOf(const CDescriptor& file) { return "/proc/self/fd/" + std::to_string(file.Get()); }

// Creates a file that goes with its last descriptor, so that a program that is killed leaves nothing. Closed
// where the file system or the platform has no such files.
CDescriptor CreateNameless(const fs::path& folder) {
    CDescriptor file(::open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666));
    if (file.IsOpen() && ::access(LinkOf(file).c_str(), F_OK) != 0) file.Close();
    return file;
}

// Gives a nameless file a name.
bool LinkUnique(const CDescriptor& file, const fs::path& folder, std::string_view prefix, fs::path& path) {
    return MakeUnique(folder, prefix, path, [link = LinkOf(file)](const char* name) {
               return ::linkat(AT_FDCWD, link.c_str(), AT_FDCWD, name, AT_SYMLINK_FOLLOW);
           }) >= 0;
}

constexpr std::string_view kSavePrefix = ".save-";

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

// Opens a regular file for reading; not open for anything else. `size` receives its size.
CDescriptor OpenRegular(const fs::path& path, std::uint64_t& size) {
    // Not to hang on a pipe before it is seen to be none of ours.
    CDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status;
    if (!file.IsOpen() || ::fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode))
        file.Close();
    else
        size = static_cast<std::uint64_t>(status.st_size);
    return file;
}

// Fills the span as far as the file goes; false on a failure.
bool ReadOn(const CDescriptor& file, std::span<std::uint8_t> bytes, std::size_t& filled) {
    while (filled < bytes.size()) {
        const ssize_t count = ::read(file.Get(), bytes.data() + filled, bytes.size() - filled);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        if (count == 0) break;
        filled += static_cast<std::size_t>(count);
    }
    return true;
}

} // namespace

std::optional<std::vector<std::uint8_t>> ReadWholeFile(const fs::path& path, std::uint64_t limit) {
    std::uint64_t size = 0;
    const CDescriptor file = OpenRegular(path, size);
    if (!file.IsOpen() || size > limit) return std::nullopt;

    // One byte more than the size shows whether the file grows meanwhile.
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size) + 1);
    std::size_t filled = 0;
    for (;;) {
        if (!ReadOn(file, bytes, filled) || filled > limit) return std::nullopt;
        if (filled < bytes.size()) break;
        bytes.resize(bytes.size() * 2);
    }
    bytes.resize(filled);
    return bytes;
}

std::optional<std::vector<std::uint8_t>> ReadFileHead(const fs::path& path, std::size_t limit) {
    std::uint64_t size = 0;
    const CDescriptor file = OpenRegular(path, size);
    if (!file.IsOpen()) return std::nullopt;
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(std::min<std::uint64_t>(size, limit)));
    std::size_t filled = 0;
    if (!ReadOn(file, bytes, filled)) return std::nullopt;
    bytes.resize(filled);
    return bytes;
}

bool SaveAtomically(const fs::path& path, std::span<const std::uint8_t> bytes) {
    const auto target = FollowLinks(path);
    if (!target) return false;
    struct stat former;
    const bool replaces = ::stat(target->c_str(), &former) == 0;
    // The rename would ask only for the folder's permission, and replace a file that was locked against
    // writing.
    if (replaces && (!S_ISREG(former.st_mode) || ::access(target->c_str(), W_OK) != 0)) return false;

    const fs::path folder = FolderOf(*target);
    const auto fill = [&](const CDescriptor& file) {
        return (!replaces || ::fchmod(file.Get(), former.st_mode & 0777) == 0) &&
               WriteAll(file.Get(), bytes) && ::fsync(file.Get()) == 0;
    };
    fs::path temporary; // empty while the file has no name
    CDescriptor file = CreateNameless(folder);
    bool written = file.IsOpen() && fill(file);
    if (!file.IsOpen() || (written && !LinkUnique(file, folder, kSavePrefix, temporary))) {
        file = CreateUnique(folder, kSavePrefix, 0666, temporary);
        written = file.IsOpen() && fill(file);
    }
    if (!file.Close() || !written || ::rename(temporary.c_str(), target->c_str()) != 0) {
        if (!temporary.empty()) ::unlink(temporary.c_str());
        return false;
    }
    FlushFolder(folder);
    return true;
}

bool CanWriteInto(const fs::path& folder) {
    // The effective user's rights, by which the file would be made.
    return ::faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
}

bool WriteWholeFile(const fs::path& path, std::span<const std::uint8_t> bytes) {
    CDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
    return file.IsOpen() && WriteAll(file.Get(), bytes) && file.Close();
}

fs::path GetExecutablePath() {
    std::error_code error;
    return fs::read_symlink("/proc/self/exe", error);
}

std::optional<fs::path> CreateTemporaryFile(std::string_view prefix) {
    std::error_code error;
    const fs::path folder = fs::temp_directory_path(error);
    if (error) return std::nullopt;
    fs::path path;
    if (!CreateUnique(folder, prefix, 0600, path).IsOpen()) return std::nullopt;
    return path;
}

} // namespace Outils_Fichiers
