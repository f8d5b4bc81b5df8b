#include "export/export_file.h"

#include "foundation/texts.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace Exportation {

using Outils_Texte::EText;

namespace {

// A write of this size takes a few milliseconds at most: a stop waits no longer.
constexpr std::size_t kBlockSize = 1 << 20;

} // namespace

EText CExportFile::Open(const std::filesystem::path& target, std::span<const std::filesystem::path> sources) {
    m_target = target;
    m_used = 0;
    m_written = 0;
    const EText fault = m_place.Open(target, sources);
    if (fault != EText::none) return fault;
    m_file = Outils_Fichiers::CDescriptor(::open(m_place.GetPath().c_str(), O_WRONLY | O_CLOEXEC));
    m_good = m_file.IsOpen();
    if (!m_good) return EText::targetNotWritable;
    m_bytes.resize(kBlockSize);
    return EText::none;
}

void CExportFile::Flush(std::size_t needed) {
    for (std::size_t done = 0; m_good && done < m_used;) {
        const ssize_t count = ::write(m_file.Get(), m_bytes.data() + done, m_used - done);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0)
            m_good = false;
        else
            done += static_cast<std::size_t>(count);
    }
    m_written += m_used;
    m_used = 0;
    if (needed > m_bytes.size()) m_bytes.resize(std::max(needed, kBlockSize));
}

bool CExportFile::Commit() {
    Flush(0);
    const bool closed = m_file.Close();
    m_good = m_good && closed && m_place.Commit();
    m_place.Discard();
    return m_good;
}

} // namespace Exportation
