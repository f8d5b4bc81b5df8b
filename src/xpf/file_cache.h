// What was learned of packet files and is worth keeping between two queries: where a channel begins and ends,
// and which packet number has which date. Every operation may be called from any thread; none reads a file.
#pragma once

#include "foundation/date_time.h"
#include "foundation/interval_index.h"
#include "xpf/channel.h"
#include "xpf/file_position.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <mutex>
#include <string>

namespace Application_Tarvel {

using Outils_Temps::CDateTimeSpan;
using Persistance_Xpf::CXpfFilePosition;

// The samples nearest to a date; a side without a sample has an invalid date.
struct SDateSamples {
    CDateTimeSpan lowerDate = CDateTimeSpan::Invalid();
    std::uint32_t lowerNumber = 0;
    CDateTimeSpan upperDate = CDateTimeSpan::Invalid();
    std::uint32_t upperNumber = 0;
};

class CXpfFileCache {
  public:
    static constexpr std::uint32_t kMaximumSamples = 2000; // for each channel
    static constexpr std::uint32_t kEvictionBatch = 100;   // those not hit for longest go first

    // True, and `position` filled, when the place of the channel's first or last packet is known.
    bool GetFirstPosition(const std::filesystem::path& path, std::uint16_t channel,
                          CXpfFilePosition& position) const;
    void SetFirstPosition(const std::filesystem::path& path, std::uint16_t channel,
                          CXpfFilePosition position);
    bool GetLastPosition(const std::filesystem::path& path, std::uint16_t channel,
                         CXpfFilePosition& position) const;
    void SetLastPosition(const std::filesystem::path& path, std::uint16_t channel, CXpfFilePosition position);

    // True when a sample has exactly this date: `exactNumber` is filled, and both sides of `samples` are
    // invalid. Otherwise the samples below and above it, as far as there are any.
    bool FindDate(const std::filesystem::path& path, std::uint16_t channel, CDateTimeSpan date,
                  std::uint32_t& exactNumber, SDateSamples& samples);
    void InsertDate(const std::filesystem::path& path, std::uint16_t channel, CDateTimeSpan date,
                    std::uint32_t number);

    // Forget what is known of a file, all its channels at once. Paths that differ in case are different
    // files.
    void InvalidateFirst(const std::filesystem::path& path);
    void InvalidateLast(const std::filesystem::path& path);
    void InvalidateDates(const std::filesystem::path& path);
    // All three.
    void InvalidateFile(const std::filesystem::path& path);

  private:
    using CIndex = Outils_Collection::CAVLTree<CDateTimeSpan, std::uint32_t>;

    // One of the three stores, with a lock of its own that is never held together with another.
    template <class T>
    struct SStore {
        mutable std::mutex lock;
        std::map<std::string, T, std::less<>> entries; // by channel key
    };

    static std::string MakeKey(const std::filesystem::path& path, std::uint16_t channel);
    static bool Get(const SStore<CXpfFilePosition>& store, const std::string& key,
                    CXpfFilePosition& position);
    static void Set(SStore<CXpfFilePosition>& store, const std::string& key, CXpfFilePosition position);
    template <class T>
    static void Invalidate(SStore<T>& store, const std::filesystem::path& path);
    CIndex& GetIndex(const std::string& key); // with the lock of the store held

    SStore<CXpfFilePosition> m_first;
    SStore<CXpfFilePosition> m_last;
    SStore<CIndex> m_dates;
};

// The seeks of a channel helped by the cache, which they correct. `cache` may be null.
bool SeekFirstCached(Persistance_Xpf::CXpfChannel& channel, const std::filesystem::path& path,
                     CXpfFileCache* cache);
bool SeekLastCached(Persistance_Xpf::CXpfChannel& channel, const std::filesystem::path& path,
                    CXpfFileCache* cache);

} // namespace Application_Tarvel
