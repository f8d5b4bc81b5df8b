#include "dataaccess/file_index.h"

#include "xpf/packet.h"

#include <algorithm>
#include <sys/stat.h>
#include <utility>

namespace Application_Tarvel {

using namespace Persistance_Xpf;

namespace {

constexpr std::size_t kSamplesKept = 64;
constexpr std::int64_t kLargestHead = std::int64_t{64} << 10;
constexpr std::uint32_t kLargestSample = std::uint32_t{64} << 10;

// The part of a packet's header before the link that a writer sets later.
constexpr std::size_t kBeforeLink = offsetof(SPacketHeader, forwardLink);

std::optional<std::uint64_t> SumHead(CXpfFile& file, std::int64_t dataStart) {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(std::min(dataStart, kLargestHead)));
    if (!file.Seek(0) || file.Read(bytes.data(), bytes.size()) != bytes.size()) return std::nullopt;
    return SumIndexBytes(bytes, 0);
}

std::optional<std::uint64_t> SumPacketAt(CXpfFile& file, std::int64_t position) {
    std::vector<std::uint8_t> packet(kPacketHeaderSize);
    if (!file.Seek(position) || file.Read(packet.data(), kPacketHeaderSize) != kPacketHeaderSize)
        return std::nullopt;
    if (!CheckHeaderBytes(packet.data())) return std::nullopt;
    packet.resize(std::min(LoadPacketSize(packet.data()), kLargestSample));
    const std::size_t rest = packet.size() - kPacketHeaderSize;
    if (file.Read(packet.data() + kPacketHeaderSize, rest) != rest) return std::nullopt;
    return SumPacket(packet);
}

} // namespace

CChannelIndex::CChannelIndex(std::uint16_t number, std::uint16_t packetType, std::uint32_t payloadSize)
    : m_number(number), m_packetType(packetType), m_form(payloadSize) {
    for (std::size_t level = 0; level < kIndexLevels; ++level) m_made.emplace_back(m_form.recordSize);
}

std::size_t CChannelIndex::GetBytes() const {
    std::size_t sum = 0;
    for (const CIndexRecords& level : m_made) sum += level.GetBytes();
    return sum;
}

std::uint64_t SumPacket(std::span<const std::uint8_t> packet) {
    packet = packet.first(std::min<std::size_t>(packet.size(), kLargestSample));
    return SumIndexBytes(packet.subspan(kPacketHeaderSize), SumIndexBytes(packet.first(kBeforeLink), 1));
}

std::optional<SFileState> LookAtState(const std::filesystem::path& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    constexpr std::int64_t kNanoseconds = 1'000'000'000;
    return SFileState{{static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino)},
                      status.st_size,
                      std::int64_t{status.st_mtim.tv_sec} * kNanoseconds + status.st_mtim.tv_nsec};
}

CFileIndex::CFileIndex(CXpfFile& file, EFileKind kind, const SFileIdentity& identity)
    : m_kind(kind), m_identity(identity), m_dataStart(file.GetDataStart().Get()), m_covered(m_dataStart) {
    for (const auto& channel : file.GetChannels()) {
        const auto packet = channel->CreatePacket();
        // Of channels of one number the first one counts, as in every search.
        if (!packet || !packet->HasDate() || file.FindChannelByNumber(channel->GetNumber()) != channel.get())
            continue;
        m_channels.try_emplace(channel->GetNumber(), channel->GetNumber(),
                               static_cast<std::uint16_t>(channel->GetPacketType()),
                               packet->GetPayloadSize());
    }
    if (const auto sum = SumHead(file, m_dataStart)) m_samples.push_back({0, *sum});
}

const CChannelIndex* CFileIndex::GetChannel(std::uint16_t number) const {
    const auto place = m_channels.find(number);
    return place == m_channels.end() ? nullptr : &place->second;
}

CChannelIndex* CFileIndex::GetChannel(std::uint16_t number) {
    return const_cast<CChannelIndex*>(std::as_const(*this).GetChannel(number));
}

std::size_t CFileIndex::GetBytes() const {
    std::size_t sum = 0;
    for (const auto& [number, channel] : m_channels) sum += channel.GetBytes();
    return sum;
}

bool CFileIndex::Fits(CXpfFile& file, const std::filesystem::path& path) const {
    const auto state = LookAtState(path);
    if (!state || state->identity != m_identity || state->size < GetCovered() || IsDamaged() ||
        !file.IsAt(path))
        return false;
    std::vector<SIndexSample> samples;
    {
        const std::lock_guard lock(m_mutex);
        if (m_settled == state) return true;
        samples = m_samples;
    }
    if (samples.empty()) return false;
    for (const SIndexSample& sample : samples) {
        const auto sum =
            sample.position == 0 ? SumHead(file, m_dataStart) : SumPacketAt(file, sample.position);
        if (sum != sample.sum) return false;
    }
    Settle(*state);
    return true;
}

std::vector<SIndexGap> CFileIndex::GetGaps() const {
    const std::lock_guard lock(m_mutex);
    return m_gaps;
}

std::uint64_t CFileIndex::GetMoreGaps() const {
    const std::lock_guard lock(m_mutex);
    return m_moreGaps;
}

std::map<std::uint16_t, std::int64_t> CFileIndex::GetFirstPlaces() const {
    const std::lock_guard lock(m_mutex);
    return m_firstPlaces;
}

void CFileIndex::AddGap(const SIndexGap& gap) {
    const std::lock_guard lock(m_mutex);
    if (m_gaps.size() < kGapsKept)
        m_gaps.push_back(gap);
    else
        ++m_moreGaps;
    m_hasGaps.store(true, std::memory_order_release);
}

void CFileIndex::AddFirstPlace(std::uint16_t channel, std::int64_t position) {
    const std::lock_guard lock(m_mutex);
    m_firstPlaces.try_emplace(channel, position);
}

bool CFileIndex::AddSample(const SIndexSample& sample, bool isTail) {
    const std::lock_guard lock(m_mutex);
    if (std::exchange(m_hasTail, isTail)) m_samples.pop_back();
    // The header stays, and of the others every second one.
    const bool isFull = m_samples.size() >= kSamplesKept;
    if (isFull) {
        std::size_t kept = 1;
        for (std::size_t i = 2; i < m_samples.size(); i += 2) m_samples[kept++] = m_samples[i];
        m_samples.resize(kept);
    }
    m_samples.push_back(sample);
    return isFull;
}

std::vector<SIndexSample> CFileIndex::GetSamples() const {
    const std::lock_guard lock(m_mutex);
    return m_samples;
}

void CFileIndex::Restore(std::vector<SIndexSample> samples, std::vector<SIndexGap> gaps,
                         std::uint64_t moreGaps) {
    const std::lock_guard lock(m_mutex);
    m_samples = std::move(samples);
    m_hasTail = false;
    m_gaps = std::move(gaps);
    m_moreGaps = moreGaps;
    m_hasGaps.store(!m_gaps.empty(), std::memory_order_release);
}

void CFileIndex::Settle(const SFileState& state) const {
    const std::lock_guard lock(m_mutex);
    m_settled = state;
}

void CFileIndex::EndGrowth() {
    const std::lock_guard lock(m_mutex);
    m_growing.store(false, std::memory_order_release);
    m_growth.notify_all();
}

void CFileIndex::WaitForGrowth(std::int64_t covered, std::chrono::milliseconds time) const {
    std::unique_lock lock(m_mutex);
    m_growth.wait_for(lock, time, [&] { return GetCovered() > covered || !IsGrowing(); });
}

} // namespace Application_Tarvel
