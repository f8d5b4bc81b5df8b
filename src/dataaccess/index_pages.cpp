#include "dataaccess/index_pages.h"

#include <bit>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace Application_Tarvel {

namespace {

constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15; // 2^64 by the golden ratio

std::uint64_t Mix(std::uint64_t sum, std::uint64_t word) {
    sum = (sum ^ word) * kOdd;
    return sum ^ (sum >> 29);
}

} // namespace

std::uint64_t SumIndexBytes(std::span<const std::uint8_t> bytes, std::uint64_t seed) {
    constexpr std::size_t kLanes = 4, kStep = kLanes * sizeof(std::uint64_t);
    std::uint64_t lanes[kLanes] = {seed, seed + 1, seed + 2, seed + 3};
    std::size_t at = 0;
    for (; at + kStep <= bytes.size(); at += kStep) {
        std::uint64_t words[kLanes];
        std::memcpy(words, bytes.data() + at, kStep);
        for (std::size_t lane = 0; lane < kLanes; ++lane) lanes[lane] = Mix(lanes[lane], words[lane]);
    }
    std::uint64_t sum = Mix(seed, bytes.size());
    for (; at < bytes.size(); ++at) sum = Mix(sum, bytes[at]);
    for (const std::uint64_t lane : lanes) sum = Mix(sum, lane);
    return sum;
}

std::shared_ptr<const CIndexPages> CIndexPages::Open(const std::filesystem::path& path) {
    const int handle = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (handle < 0) return nullptr;
    struct stat status {};
    if (fstat(handle, &status) != 0 || !S_ISREG(status.st_mode)) {
        close(handle);
        return nullptr;
    }
    return std::make_shared<const CIndexPages>(handle, path);
}

CIndexPages::~CIndexPages() { close(m_handle); }

std::int64_t CIndexPages::GetSize() const {
    struct stat status {};
    return fstat(m_handle, &status) == 0 ? status.st_size : 0;
}

bool CIndexPages::Read(std::int64_t offset, std::span<std::uint8_t> bytes) const {
    std::size_t count = 0;
    while (count < bytes.size()) {
        const ssize_t got =
            pread(m_handle, bytes.data() + count, bytes.size() - count, offset + static_cast<off_t>(count));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return false;
        count += static_cast<std::size_t>(got);
    }
    return true;
}

bool CIndexPages::ReadPage(std::int64_t offset, std::uint64_t seed, Page& page) const {
    std::uint64_t sum = 0;
    const bool isRead = Read(offset, page);
    std::memcpy(&sum, page.data() + kRoom, sizeof sum);
    if (isRead && sum == SumIndexBytes(std::span(page).first(kRoom), seed)) return true;
    MarkDamaged();
    return false;
}

void CIndexPages::MarkDamaged() const {
    std::error_code error;
    if (!m_damaged.exchange(true, std::memory_order_relaxed)) std::filesystem::remove(m_path, error);
}

void CIndexPages::Touch() const { futimens(m_handle, nullptr); }

void CIndexPages::Seal(Page& page, std::uint64_t seed) {
    const std::uint64_t sum = SumIndexBytes(std::span(page).first(kRoom), seed);
    std::memcpy(page.data() + kRoom, &sum, sizeof sum);
}

} // namespace Application_Tarvel
