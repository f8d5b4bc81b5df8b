// The pages of a kept index file: records between checksums, read on demand.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>

namespace Application_Tarvel {

// A checksum over bytes, four lanes at a time. `seed` says what the bytes are, so that one page never passes
// for another.
std::uint64_t SumIndexBytes(std::span<const std::uint8_t> bytes, std::uint64_t seed);

// An index file that is open for reading. Any thread.
class CIndexPages {
  public:
    static constexpr std::size_t kPage = 4096; // bytes; the last eight are the checksum
    static constexpr std::size_t kRoom = kPage - 8;
    using Page = std::array<std::uint8_t, kPage>;

    // Null when the file cannot be opened, or is no regular file.
    static std::shared_ptr<const CIndexPages> Open(const std::filesystem::path& path);
    // Takes over the handle.
    CIndexPages(int handle, std::filesystem::path path) : m_handle(handle), m_path(std::move(path)) {}
    ~CIndexPages();
    CIndexPages(const CIndexPages&) = delete;
    CIndexPages& operator=(const CIndexPages&) = delete;

    // 0 on failure.
    std::int64_t GetSize() const;
    // Whether the bytes are all there.
    bool Read(std::int64_t offset, std::span<std::uint8_t> bytes) const;
    // False for a page that is not all there or fails its checksum; the file then counts as damaged, and is
    // removed so that the next program makes it again.
    bool ReadPage(std::int64_t offset, std::uint64_t seed, Page& page) const;
    bool IsDamaged() const { return m_damaged.load(std::memory_order_relaxed); }
    // Makes the file the one that was used last.
    void Touch() const;

    // Puts the checksum of a page into its place.
    static void Seal(Page& page, std::uint64_t seed);

  private:
    void MarkDamaged() const;

    int m_handle;
    std::filesystem::path m_path;
    mutable std::atomic<bool> m_damaged{false};
};

// Records of one level in a file of pages.
struct SKeptRecords {
    std::shared_ptr<const CIndexPages> pages;
    std::int64_t offset = 0; // of the first page
    std::size_t count = 0;
    std::uint64_t seed = 0; // of the first page; each next one has one more

    static std::size_t GetPerPage(std::uint32_t recordSize) { return CIndexPages::kRoom / recordSize; }
};

} // namespace Application_Tarvel
