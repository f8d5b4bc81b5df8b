#include "morvex/spool.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <stdlib.h>
#include <string>
#include <unistd.h>

namespace Morvex {
namespace {

constexpr std::size_t kBlockBytes = 1 << 20;

int OpenNameless(const std::filesystem::path& folder) {
    const int file = open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (file >= 0) return file;
    std::string name = (folder / ".spool-XXXXXX").string();
    const int named = mkostemp(name.data(), O_CLOEXEC);
    if (named >= 0) unlink(name.c_str());
    return named;
}

} // namespace

bool CSpool::Open(const std::filesystem::path& folder, std::size_t recordSize) {
    m_file = Outils_Fichiers::CDescriptor(OpenNameless(folder));
    m_size = recordSize;
    m_count = m_written = m_blockFirst = m_blockCount = 0;
    m_pending.clear();
    m_pending.reserve(kBlockBytes + recordSize);
    return m_file.IsOpen();
}

bool CSpool::Append(const void* record) {
    const auto* bytes = static_cast<const std::uint8_t*>(record);
    m_pending.insert(m_pending.end(), bytes, bytes + m_size);
    ++m_count;
    return m_pending.size() < kBlockBytes || Flush();
}

bool CSpool::Flush() {
    std::size_t done = 0;
    while (done < m_pending.size()) {
        const ssize_t size = pwrite(m_file.Get(), m_pending.data() + done, m_pending.size() - done,
                                    m_written * static_cast<std::int64_t>(m_size) + static_cast<off_t>(done));
        if (size < 0 && errno == EINTR) continue;
        if (size <= 0) return false;
        done += static_cast<std::size_t>(size);
    }
    m_written += static_cast<std::int64_t>(m_pending.size() / m_size);
    m_pending.clear();
    return true;
}

const std::uint8_t* CSpool::Read(std::int64_t index) {
    if (!m_pending.empty() && !Flush()) return nullptr;
    if (index < m_blockFirst || index >= m_blockFirst + m_blockCount) {
        // Downwards the block ends with the record, upwards it begins with it.
        const auto records = static_cast<std::int64_t>(std::max<std::size_t>(kBlockBytes / m_size, 1));
        m_blockFirst = index < m_blockFirst ? std::max<std::int64_t>(index + 1 - records, 0) : index;
        m_blockCount = std::min(records, m_count - m_blockFirst);
        m_block.resize(static_cast<std::size_t>(m_blockCount) * m_size);
        std::size_t done = 0;
        while (done < m_block.size()) {
            const ssize_t size =
                pread(m_file.Get(), m_block.data() + done, m_block.size() - done,
                      m_blockFirst * static_cast<std::int64_t>(m_size) + static_cast<off_t>(done));
            if (size < 0 && errno == EINTR) continue;
            if (size <= 0) {
                m_blockCount = 0;
                return nullptr;
            }
            done += static_cast<std::size_t>(size);
        }
    }
    return m_block.data() + static_cast<std::size_t>(index - m_blockFirst) * m_size;
}

} // namespace Morvex
