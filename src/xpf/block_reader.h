// The file pointer of a packet file over blocks read ahead, so that a walk costs no system call per packet.
//
// One window of the file is held. It is replaced whenever bytes outside it are wanted, and then read again
// from the page of the first wanted byte on (of a lone access, from the 256 bytes that hold it): what a
// writer has appended since is seen, and the two halves of a packet never come from two moments. Bytes inside
// the window are as old as the window: Forget() before a look at what a writer may have changed. Windows grow
// while the walk is a sequential one, so that scattered accesses cost a few pages and long walks run at
// memory speed. Read with pread and not mapped, because a file that shrinks then gives a short count instead
// of a signal. Not thread-safe.
#pragma once

#include "foundation/thread.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>

namespace Persistance_Xpf {

class CBlockReader {
  public:
    // The most that one View can give: whatever sizes a file states, a reader stays far below 64 MiB.
    static constexpr std::size_t kLargestView = std::size_t{16} << 20;
    // No file is longer; keeps every sum of an offset and a 32-bit length within 64 bits.
    static constexpr std::int64_t kLargestOffset = std::int64_t{1} << 62;

    CBlockReader() = default;
    ~CBlockReader() { Close(); }
    CBlockReader(const CBlockReader&) = delete;
    CBlockReader& operator=(const CBlockReader&) = delete;

    // A regular file only. Closes the one that was open.
    bool Open(const std::filesystem::path& path);
    void Close();
    bool IsOpen() const { return m_handle >= 0; }
    // 0 on failure.
    std::int64_t GetFileSize() const;
    // Whether the open file is still the one of this path, and has not lost any of what it had when it was
    // opened.
    bool IsAt(const std::filesystem::path& path) const;

    // While the event is set, the window does not move: every walk and search ends as at the end of the file.
    // Null for none; the event must outlive its use.
    void SetInterrupt(const Outils::CEvent* interrupt) { m_interrupt = interrupt; }
    bool IsInterrupted() const { return m_interrupt && m_interrupt->IsSet(); }

    std::int64_t GetPosition() const { return m_position; }
    // False while closed and for an offset out of range; beyond the end of the file is allowed.
    bool Seek(std::int64_t offset) {
        if (m_handle < 0 || offset < 0 || offset > kLargestOffset) return false;
        m_position = offset;
        return true;
    }
    // Bytes that Holds has answered for.
    const std::uint8_t* GetHeld(std::int64_t offset) const { return m_buffer.get() + (offset - m_begin); }
    // The window: its first byte, and the byte after its last.
    std::int64_t GetHeldBegin() const { return m_begin; }
    std::int64_t GetHeldEnd() const { return m_end; }
    // Seek to a place within or right after held bytes, which needs no test.
    void MoveTo(std::int64_t offset) { m_position = offset; }
    // Moves the pointer on within a view or to its end.
    void Advance(std::int64_t count) { m_position += count; }
    // Moves the pointer by the count read, short at the end of the file.
    std::size_t Read(void* buffer, std::size_t size);

    // `size` bytes of the file from `offset` on; null when the file does not hold them all. Valid until the
    // next call. The file pointer stays.
    const std::uint8_t* View(std::int64_t offset, std::size_t size) {
        if (Holds(offset, size)) return m_buffer.get() + (offset - m_begin);
        return Load(offset, size) ? m_buffer.get() + (offset - m_begin) : nullptr;
    }
    // Copies the record at `offset`, as View gives it.
    template <class T>
    bool ReadRecord(std::int64_t offset, T& record) {
        const std::uint8_t* bytes = View(offset, sizeof record);
        if (bytes) std::memcpy(&record, bytes, sizeof record);
        return bytes != nullptr;
    }
    // A few bytes copied without moving the window; false when the file does not hold them. For a look far
    // off from where the walk goes on.
    bool Probe(std::int64_t offset, void* buffer, std::size_t size) const;

    // For reads all over the file, of which many are under way together. Their count of bytes: of what the
    // system has in memory, which waits for no disk / of all, short at the end of the file.
    std::size_t ProbeCached(std::int64_t offset, void* buffer, std::size_t size) const;
    std::size_t ProbePart(std::int64_t offset, void* buffer, std::size_t size) const;
    // Has the system forget these bytes. A hint.
    void Release(std::int64_t offset, std::size_t size) const;

    // Moves the window over these bytes, as far as the file has them, unless it holds them already: one read
    // for a place that is going to be looked at from all sides. Takes at most kLargestFetch of them.
    void Fetch(std::int64_t offset, std::size_t size);
    static constexpr std::size_t kLargestFetch = std::size_t{1} << 20;

    // These bytes are going to be wanted piece by piece: has the system read them at once if it does not have
    // them.
    void Announce(std::int64_t offset, std::int64_t size) const;
    // Whether each access is a lone one, however near it is to the one before: nothing is read ahead.
    void SetLone(bool isLone) { m_isLone = isLone; }

    void Forget();

    // Whether these bytes can be had without a read.
    bool Holds(std::int64_t offset, std::size_t size) const {
        return offset >= m_begin && m_end - offset >= static_cast<std::int64_t>(size);
    }

  private:
    struct SFree {
        void operator()(std::uint8_t* bytes) const { std::free(bytes); }
    };

    bool Load(std::int64_t offset, std::size_t size);
    void ChooseBlock(bool goesOn);
    void Fill(std::int64_t begin, std::size_t length, std::size_t needed);
    bool Reserve(std::size_t length, std::int64_t end);

    const Outils::CEvent* m_interrupt = nullptr;
    int m_handle = -1;
    std::int64_t m_sizeAtOpen = 0;
    std::int64_t m_position = 0;
    std::int64_t m_begin = 0; // the window in the file
    std::int64_t m_end = 0;
    std::unique_ptr<std::uint8_t, SFree> m_buffer;
    std::size_t m_capacity = 0;
    std::size_t m_block = 0;         // size of the last block
    std::size_t m_walked = 0;        // bytes before it that were read block after block
    bool m_isLone = false;
    bool m_adviseSequential = false; // as the system was last advised
};

} // namespace Persistance_Xpf
