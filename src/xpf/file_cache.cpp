#include "xpf/file_cache.h"

#include "foundation/paths.h"

#include <cstdio>

namespace Application_Tarvel {

namespace {

// "%04X - %s" of the channel number and the path: the path begins here.
constexpr std::size_t kPathInKey = 7;

} // namespace

std::string CXpfFileCache::MakeKey(const std::filesystem::path& path, std::uint16_t channel) {
    char number[8];
    std::snprintf(number, sizeof number, "%04X - ", static_cast<unsigned>(channel));
    return number + Outils_Fichiers::ToText(path);
}

bool CXpfFileCache::Get(const SStore<CXpfFilePosition>& store, const std::string& key,
                        CXpfFilePosition& position) {
    const std::lock_guard guard(store.lock);
    const auto entry = store.entries.find(key);
    if (entry == store.entries.end()) return false;
    position = entry->second;
    return true;
}

void CXpfFileCache::Set(SStore<CXpfFilePosition>& store, const std::string& key, CXpfFilePosition position) {
    const std::lock_guard guard(store.lock);
    store.entries[key] = position;
}

template <class T>
void CXpfFileCache::Invalidate(SStore<T>& store, const std::filesystem::path& path) {
    const std::string text = Outils_Fichiers::ToText(path);
    const std::lock_guard guard(store.lock);
    std::erase_if(store.entries, [&text](const auto& entry) {
        return entry.first.compare(kPathInKey, std::string::npos, text) == 0;
    });
}

bool CXpfFileCache::GetFirstPosition(const std::filesystem::path& path, std::uint16_t channel,
                                     CXpfFilePosition& position) const {
    return Get(m_first, MakeKey(path, channel), position);
}

void CXpfFileCache::SetFirstPosition(const std::filesystem::path& path, std::uint16_t channel,
                                     CXpfFilePosition position) {
    Set(m_first, MakeKey(path, channel), position);
}

bool CXpfFileCache::GetLastPosition(const std::filesystem::path& path, std::uint16_t channel,
                                    CXpfFilePosition& position) const {
    return Get(m_last, MakeKey(path, channel), position);
}

void CXpfFileCache::SetLastPosition(const std::filesystem::path& path, std::uint16_t channel,
                                    CXpfFilePosition position) {
    Set(m_last, MakeKey(path, channel), position);
}

CXpfFileCache::CIndex& CXpfFileCache::GetIndex(const std::string& key) {
    CIndex& index = m_dates.entries[key];
    index.SetEviction(true, kMaximumSamples, kEvictionBatch);
    return index;
}

bool CXpfFileCache::FindDate(const std::filesystem::path& path, std::uint16_t channel, CDateTimeSpan date,
                             std::uint32_t& exactNumber, SDateSamples& samples) {
    const std::string key = MakeKey(path, channel);
    samples = SDateSamples();
    const std::lock_guard guard(m_dates.lock);
    return GetIndex(key).Find(date, exactNumber, samples.lowerDate, samples.lowerNumber, samples.upperDate,
                              samples.upperNumber) == CIndex::exact;
}

void CXpfFileCache::InsertDate(const std::filesystem::path& path, std::uint16_t channel, CDateTimeSpan date,
                               std::uint32_t number) {
    const std::string key = MakeKey(path, channel);
    const std::lock_guard guard(m_dates.lock);
    GetIndex(key).Insert(date, number);
}

void CXpfFileCache::InvalidateFirst(const std::filesystem::path& path) { Invalidate(m_first, path); }

void CXpfFileCache::InvalidateLast(const std::filesystem::path& path) { Invalidate(m_last, path); }

void CXpfFileCache::InvalidateDates(const std::filesystem::path& path) { Invalidate(m_dates, path); }

void CXpfFileCache::InvalidateFile(const std::filesystem::path& path) {
    InvalidateFirst(path);
    InvalidateLast(path);
    InvalidateDates(path);
}

bool SeekFirstCached(Persistance_Xpf::CXpfChannel& channel, const std::filesystem::path& path,
                     CXpfFileCache* cache) {
    CXpfFilePosition known;
    const bool hit = cache && cache->GetFirstPosition(path, channel.GetNumber(), known);
    if (hit) channel.SetFirst(known);
    if (!channel.SeekFirstPacket(nullptr)) return false;
    if (cache && !hit) cache->SetFirstPosition(path, channel.GetNumber(), channel.GetFirst());
    return true;
}

bool SeekLastCached(Persistance_Xpf::CXpfChannel& channel, const std::filesystem::path& path,
                    CXpfFileCache* cache) {
    CXpfFilePosition known;
    const bool hit = cache && cache->GetLastPosition(path, channel.GetNumber(), known);
    if (hit) channel.SetLast(known);
    if (!channel.SeekLastPacket(nullptr)) return false;
    // The place may have moved: a file that has grown corrects its entry here.
    if (cache && (!hit || channel.GetCurrent() != known))
        cache->SetLastPosition(path, channel.GetNumber(), channel.GetCurrent());
    return true;
}

} // namespace Application_Tarvel
