#include "dataaccess/file_indexes.h"

#include <cstdlib>
#include <thread>
#include <utility>

namespace Application_Tarvel {

using namespace Persistance_Xpf;

bool HasIdleCore() {
    double load = 0;
    const double cores = std::thread::hardware_concurrency();
    return cores >= 2 && getloadavg(&load, 1) == 1 && load < cores - 1;
}

// Two indexes grow during a shared scan, and only one of them can be put to the disk meanwhile.
std::optional<std::int64_t> CFileIndexes::ShareScan(std::int64_t begin, std::int64_t end) const {
    constexpr std::int64_t kIndexShare = 50; // an index takes a fiftieth of its file at most
    const std::int64_t size = end - begin;
    if (size < m_settings.leastShared || static_cast<std::uint64_t>(size / kIndexShare) > m_settings.memory ||
        !m_settings.hasIdleCore())
        return std::nullopt;
    return begin + size / 2;
}

std::shared_ptr<const CFileIndex> CFileIndexes::Find(const std::filesystem::path& path) const {
    const std::lock_guard lock(m_mutex);
    const auto place = m_entries.find(path);
    return place == m_entries.end() ? nullptr : place->second.index;
}

void CFileIndexes::Forget(const std::filesystem::path& path) {
    const std::lock_guard lock(m_mutex);
    m_entries.erase(path);
}

void CFileIndexes::Publish(const std::filesystem::path& path, std::shared_ptr<CFileIndex> index) {
    const std::lock_guard lock(m_mutex);
    m_entries[path] = {std::move(index)};
}

std::uint64_t CFileIndexes::GetBytes() const {
    const std::lock_guard lock(m_mutex);
    std::uint64_t sum = 0;
    for (const auto& [path, entry] : m_entries) sum += entry.index->GetBytes();
    return sum;
}

std::shared_ptr<CFileIndex> CFileIndexes::Load(const std::filesystem::path& path, EFileKind kind) {
    const auto file = OpenXpfFile(path, kind).file;
    auto index = file ? m_store.Load(*file, kind, path) : nullptr;
    if (!index) return nullptr;
    const std::lock_guard lock(m_mutex);
    m_entries[path] = {index, index->GetCovered(), index->GetCovered()};
    return index;
}

std::shared_ptr<const CFileIndex> CFileIndexes::FindKept(const std::filesystem::path& path, EFileKind kind) {
    return m_settings.isOn ? Load(path, kind) : nullptr;
}

std::unique_ptr<CIndexBuilder> CFileIndexes::Begin(const std::filesystem::path& path, EFileKind kind) {
    if (!m_settings.isOn) return nullptr;
    if (auto index = Load(path, kind)) return std::make_unique<CIndexBuilder>(std::move(index));
    const auto state = LookAtState(path);
    const auto file = state ? OpenXpfFile(path, kind).file : nullptr;
    if (!file || !file->IsAt(path)) return nullptr;
    const auto now = LookAtState(path); // another file may have come there since
    if (!now || now->identity != state->identity) return nullptr;
    auto index = std::make_shared<CFileIndex>(*file, kind, state->identity);
    Publish(path, index);
    return std::make_unique<CIndexBuilder>(std::move(index));
}

bool CFileIndexes::Keep(const std::filesystem::path& path, CIndexBuilder& builder, bool always) {
    CFileIndex& index = *builder.GetIndex();
    const std::int64_t covered = index.GetCovered(), size = covered - index.GetDataStart();
    {
        const std::lock_guard lock(m_mutex);
        const auto place = m_entries.find(path);
        if (place == m_entries.end() || place->second.index.get() != &index) return false;
        SEntry& entry = place->second;
        if (covered == entry.kept && entry.kept != 0) return true;
        // What could not be written is not tried again at every look.
        const std::int64_t grown = covered - std::max(entry.kept, entry.tried);
        if (!always && (size < m_settings.leastKept || grown < size / 8)) return false;
        entry.tried = covered;
    }
    builder.CloseBlocks();
    if (builder.HasFailed() || !m_store.Save(index, builder.GetState())) return false;
    const std::lock_guard lock(m_mutex);
    if (const auto place = m_entries.find(path);
        place != m_entries.end() && place->second.index.get() == &index)
        place->second.kept = covered;
    return true;
}

void CFileIndexes::LimitMemory(const std::filesystem::path& path, std::unique_ptr<CIndexBuilder>& builder) {
    constexpr std::uint64_t kShare = 8; // what is less of the memory is not worth a trip to the disk
    if (!builder || GetBytes() <= m_settings.memory) return;
    if (builder->GetIndex()->GetBytes() < m_settings.memory / kShare) return;
    const EFileKind kind = builder->GetIndex()->GetKind();
    const SFileState state = builder->GetState();
    builder->End();
    const bool isKept = Keep(path, *builder, true);
    builder.reset();
    auto index = isKept ? Load(path, kind) : nullptr;
    const auto file = index ? OpenXpfFile(path, kind).file : nullptr;
    if (!file) return;
    // Most of it is in the memory again: it would be written again at once.
    if (index->GetBytes() >= m_settings.memory / 2 && m_settings.loaded > 0) return;
    builder = std::make_unique<CIndexBuilder>(std::move(index));
    if (!builder->Begin(*file, path, &state)) builder.reset();
}

} // namespace Application_Tarvel
