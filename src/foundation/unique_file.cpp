#include "foundation/unique_file.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <random>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace Outils_Fichiers {

namespace fs = std::filesystem;

namespace {

// Calls `make` with new names until it does not fail for one that exists.
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

} // namespace

CDescriptor CreateUnique(const fs::path& folder, std::string_view prefix, unsigned mode, fs::path& path) {
    return CDescriptor(MakeUnique(folder, prefix, path, [mode](const char* name) {
        return ::open(name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    }));
}

fs::path GetLink(const CDescriptor& file) { return "/proc/self/fd/" + std::to_string(file.Get()); }

CDescriptor CreateNameless(const fs::path& folder) {
    CDescriptor file(::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0666));
    if (file.IsOpen() && ::access(GetLink(file).c_str(), F_OK) != 0) file.Close();
    return file;
}

bool LinkUnique(const CDescriptor& file, const fs::path& folder, std::string_view prefix, fs::path& path) {
    return MakeUnique(folder, prefix, path, [link = GetLink(file)](const char* name) {
               return ::linkat(AT_FDCWD, link.c_str(), AT_FDCWD, name, AT_SYMLINK_FOLLOW);
           }) >= 0;
}

bool WriteAll(const CDescriptor& file, std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(file.Get(), bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return true;
}

} // namespace Outils_Fichiers
