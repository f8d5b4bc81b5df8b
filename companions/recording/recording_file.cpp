#include "recording/recording_file.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace Enregistrement {

bool CRecordingFile::Create(const std::filesystem::path& path) {
    // Not to hang on a pipe before it is seen to be no regular file.
    m_file =
        Outils_Fichiers::CDescriptor(::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0666));
    if (!m_file.IsOpen()) return false;
    struct stat status;
    if (::fstat(m_file.Get(), &status) == 0 && S_ISREG(status.st_mode) && Truncate(0)) return true;
    Close();
    return false;
}

bool CRecordingFile::WriteAt(std::int64_t position, std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::pwrite(m_file.Get(), bytes.data(), bytes.size(), position);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        bytes = bytes.subspan(static_cast<std::size_t>(count));
        position += count;
    }
    return true;
}

bool CRecordingFile::Truncate(std::int64_t size) { return ::ftruncate(m_file.Get(), size) == 0; }

} // namespace Enregistrement
