#include "foundation/files.h"

#include "foundation/atomic_file.h"
#include "foundation/unique_file.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace Outils_Fichiers {

namespace fs = std::filesystem;

namespace {

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
    CAtomicFile file;
    return file.Open(path) && file.Write(bytes) && file.Commit();
}

bool CanWriteInto(const fs::path& folder) {
    // The effective user's rights, by which the file would be made.
    return ::faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
}

bool WriteWholeFile(const fs::path& path, std::span<const std::uint8_t> bytes) {
    CDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
    return file.IsOpen() && WriteAll(file, bytes) && file.Close();
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
