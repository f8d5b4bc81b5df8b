#include "xpf/block_reader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

namespace Persistance_Xpf {

namespace {

constexpr std::int64_t kPage = 4096;
// A lone access takes less than a page: what it costs is the memory that it touches, and most packets fit.
constexpr std::int64_t kSector = 256;
constexpr std::size_t kSmallestBlock = 2 * kSector;
constexpr std::size_t kLargestBlock = std::size_t{256} << 10;
// Walks shorter than this stay with smaller blocks: memory that has not been used before costs more than a
// few system calls.
constexpr std::size_t kLongWalk = std::size_t{2} << 20;
constexpr std::size_t kUsualBlock = std::size_t{64} << 10;
// A jump up to this far costs less as a read through than as a read of its own: a system call takes about the
// time in which this much is copied.
constexpr std::int64_t kNear = 2 * kPage;
// Reads above this go straight into the caller's memory.
constexpr std::size_t kLargestCopy = std::size_t{64} << 10;

constexpr std::int64_t Floor(std::int64_t offset, std::int64_t unit) { return offset & ~(unit - 1); }

// Reads until `enough` bytes are there, asking for `size` at once.
std::size_t ReadAt(int handle, std::int64_t offset, std::uint8_t* buffer, std::size_t size,
                   std::size_t enough) {
    std::size_t count = 0;
    while (count < enough) {
        const ssize_t got = pread(handle, buffer + count, size - count, offset + static_cast<off_t>(count));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        count += static_cast<std::size_t>(got);
    }
    return count;
}

} // namespace

bool CBlockReader::Open(const std::filesystem::path& path) {
    Close();
    // Without O_NONBLOCK opening a FIFO would wait for its writer.
    const int handle = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (handle < 0) return false;
    struct stat status {};
    if (fstat(handle, &status) != 0 || !S_ISREG(status.st_mode)) {
        close(handle);
        return false;
    }
    m_handle = handle;
    m_sizeAtOpen = status.st_size;
    posix_fadvise(handle, 0, 0, POSIX_FADV_RANDOM);
    return true;
}

void CBlockReader::Close() {
    if (m_handle >= 0) close(m_handle);
    m_handle = -1;
    m_position = 0;
    m_adviseSequential = false;
    Forget();
}

std::int64_t CBlockReader::GetFileSize() const {
    struct stat status {};
    return m_handle >= 0 && fstat(m_handle, &status) == 0 ? status.st_size : 0;
}

bool CBlockReader::IsAt(const std::filesystem::path& path) const {
    struct stat mine {
    }, named{};
    return m_handle >= 0 && fstat(m_handle, &mine) == 0 && stat(path.c_str(), &named) == 0 &&
           mine.st_dev == named.st_dev && mine.st_ino == named.st_ino && mine.st_size >= m_sizeAtOpen;
}

std::size_t CBlockReader::Read(void* buffer, std::size_t size) {
    if (m_handle < 0 || size == 0 || (size > kLargestCopy && IsInterrupted())) return 0;
    std::size_t count = size;
    if (size > kLargestCopy) {
        count = ReadAt(m_handle, m_position, static_cast<std::uint8_t*>(buffer), size, size);
    } else if (const std::uint8_t* bytes = View(m_position, size)) {
        std::memcpy(buffer, bytes, size);
    } else {
        const bool inside = m_position >= m_begin && m_position < m_end;
        count = inside ? std::min(size, static_cast<std::size_t>(m_end - m_position)) : 0;
        if (count > 0) std::memcpy(buffer, m_buffer.get() + (m_position - m_begin), count);
    }
    m_position += static_cast<std::int64_t>(count);
    return count;
}

bool CBlockReader::Probe(std::int64_t offset, void* buffer, std::size_t size) const {
    if (m_handle < 0 || offset < 0 || offset > kLargestOffset || IsInterrupted()) return false;
    if (Holds(offset, size)) {
        std::memcpy(buffer, m_buffer.get() + (offset - m_begin), size);
        return true;
    }
    return ReadAt(m_handle, offset, static_cast<std::uint8_t*>(buffer), size, size) == size;
}

std::size_t CBlockReader::ProbeCached(std::int64_t offset, void* buffer, std::size_t size) const {
    if (m_handle < 0 || offset < 0 || offset > kLargestOffset || IsInterrupted()) return 0;
    const iovec target = {buffer, size};
    const ssize_t got = preadv2(m_handle, &target, 1, offset, RWF_NOWAIT);
    return got > 0 ? static_cast<std::size_t>(got) : 0;
}

std::size_t CBlockReader::ProbePart(std::int64_t offset, void* buffer, std::size_t size) const {
    if (m_handle < 0 || offset < 0 || offset > kLargestOffset || IsInterrupted()) return 0;
    return ReadAt(m_handle, offset, static_cast<std::uint8_t*>(buffer), size, size);
}

void CBlockReader::Announce(std::int64_t offset, std::int64_t size) const {
    if (m_handle >= 0) posix_fadvise(m_handle, offset, size, POSIX_FADV_WILLNEED);
}

// Whole pages only: of one that is used in part somebody may want the rest.
void CBlockReader::Release(std::int64_t offset, std::size_t size) const {
    posix_fadvise(m_handle, offset, static_cast<off_t>(size), POSIX_FADV_DONTNEED);
}

void CBlockReader::Forget() {
    m_begin = m_end = 0;
    m_block = m_walked = 0;
}

bool CBlockReader::Load(std::int64_t offset, std::size_t size) {
    if (m_handle < 0 || offset < 0 || offset > kLargestOffset || size > kLargestView) return false;
    if (IsInterrupted()) return false;
    const std::int64_t end = offset + static_cast<std::int64_t>(size);
    const bool forward = offset >= m_begin && offset <= m_end + kNear;
    const bool backward = offset < m_begin && end >= m_begin - kNear;
    ChooseBlock(!m_isLone && (forward || backward));

    const auto block = static_cast<std::int64_t>(m_block);
    const std::int64_t unit = m_block == kSmallestBlock ? kSector : kPage;
    const std::int64_t begin =
        Floor(backward ? std::clamp<std::int64_t>(end - block, 0, offset) : offset, unit);
    const auto needed = static_cast<std::size_t>(end - begin);
    const std::size_t length =
        std::max(m_block, static_cast<std::size_t>(Floor(end - begin + unit - 1, unit)));
    if (!Reserve(length, end)) return false;
    Fill(begin, length, needed);
    return m_end >= end;
}

void CBlockReader::Fetch(std::int64_t offset, std::size_t size) {
    if (m_handle < 0 || offset < 0 || offset > kLargestOffset || IsInterrupted()) return;
    size = std::min(size, kLargestFetch);
    if (Holds(offset, size)) return;
    const std::int64_t begin = Floor(offset, kPage);
    const std::int64_t end = Floor(offset + static_cast<std::int64_t>(size) + kPage - 1, kPage);
    const auto length = static_cast<std::size_t>(end - begin);
    if (!Reserve(length, end)) return;
    ChooseBlock(false);
    m_block = length; // a walk that starts here reads on from this size
    Fill(begin, length, static_cast<std::size_t>(offset - begin) + size);
}

void CBlockReader::Fill(std::int64_t begin, std::size_t length, std::size_t needed) {
    m_begin = begin;
    m_end = begin + static_cast<std::int64_t>(ReadAt(m_handle, begin, m_buffer.get(), length, needed));
}

// Grows the block with the length of the walk that goes on where the last block ended, and starts small
// elsewhere.
void CBlockReader::ChooseBlock(bool goesOn) {
    m_walked = goesOn ? m_walked + m_block : 0;
    if (!goesOn)
        m_block = kSmallestBlock;
    else if (m_walked < kLongWalk)
        m_block = std::clamp<std::size_t>(m_block * 2, kPage, kUsualBlock);
    else
        m_block = kLargestBlock;
    const bool sequential = m_block == kLargestBlock || (m_adviseSequential && m_block != kSmallestBlock);
    if (sequential == m_adviseSequential) return;
    m_adviseSequential = sequential;
    posix_fadvise(m_handle, 0, 0, sequential ? POSIX_FADV_SEQUENTIAL : POSIX_FADV_RANDOM);
}

// Memory for `length` bytes. Beyond what a walk or a Fetch takes only if the file reaches as far as `end`: a
// size that a damaged packet states costs no memory.
bool CBlockReader::Reserve(std::size_t length, std::int64_t end) {
    if (length <= m_capacity) return true;
    if (length > kLargestFetch + kPage && GetFileSize() < end) return false;
    const std::size_t least = (length <= kUsualBlock + kPage ? kUsualBlock : kLargestBlock) + kPage;
    const std::size_t capacity = std::max(length, least);
    m_begin = m_end = 0;
    m_buffer.reset();
    m_buffer.reset(static_cast<std::uint8_t*>(std::aligned_alloc(kPage, capacity)));
    m_capacity = m_buffer ? capacity : 0;
    return m_buffer != nullptr;
}

} // namespace Persistance_Xpf
