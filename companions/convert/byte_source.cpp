#include "convert/byte_source.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Conversion {

using Outils_Fichiers::CDescriptor;

bool CByteSource::Open(std::span<const std::filesystem::path> paths) {
    m_files.clear();
    m_total = 0;
    for (const std::filesystem::path& path : paths) {
        m_current = m_files.size();
        // Not to hang on a pipe before it is seen to be no regular file.
        m_files.push_back({path, CDescriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)), 0});
        const int descriptor = m_files.back().file.Get();
        struct stat status;
        if (descriptor < 0 || fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return false;
        m_total += static_cast<std::uint64_t>(status.st_size);
        posix_fadvise(descriptor, 0, 0, POSIX_FADV_SEQUENTIAL);
    }
    Rewind();
    return true;
}

void CByteSource::Rewind() {
    for (SFile& file : m_files) file.offset = 0;
    m_current = 0;
    m_position = 0;
    m_stopped = m_failed = false;
}

std::size_t CByteSource::Read(std::span<char> bytes) {
    bytes = bytes.first(std::min(bytes.size(), kPieceSize));
    while (!m_failed && !m_stopped && m_current < m_files.size()) {
        m_stopped = !m_monitor.GoOn();
        if (m_stopped) break;
        SFile& file = m_files[m_current];
        const ssize_t count = pread(file.file.Get(), bytes.data(), bytes.size(), file.offset);
        if (count < 0 && errno == EINTR) continue;
        m_failed = count < 0;
        if (count > 0) {
            file.offset += count;
            m_position += static_cast<std::uint64_t>(count);
            const double share = static_cast<double>(m_position) / static_cast<double>(m_total);
            m_monitor.Progress(100.0 * std::min(share, 0.999)); // whole only once the target has its name
            return static_cast<std::size_t>(count);
        }
        if (!m_failed && m_current + 1 == m_files.size()) break;
        if (!m_failed) ++m_current;
    }
    return 0;
}

} // namespace Conversion
