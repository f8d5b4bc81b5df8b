#include "dataaccess/file_scan.h"

#include "foundation/message_target.h"
#include "xpf/stream_walk.h"
#include "xpf/whole_packet_search.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace Application_Tarvel {

using namespace Persistance_Xpf;

namespace {

constexpr std::size_t kChannelNumbers = 65536;

// The offset of the first date in a packet's payload, by the file's own description of the packet.
std::optional<std::uint32_t> FindDateOffset(const CXpfFile& file, std::uint32_t packetType) {
    for (const auto& definition : file.GetDefinitions()) {
        if (definition->type != packetType) continue;
        std::uint64_t offset = 0;
        for (const CXpfFieldDefinition& field : definition->fields) {
            const auto type = static_cast<EFieldType>(field.GetTypeCode());
            if (type == EFieldType::date) {
                if (offset > UINT32_MAX) return std::nullopt;
                return static_cast<std::uint32_t>(offset);
            }
            const std::uint32_t width = GetWidth(type);
            if (width == 0) return std::nullopt; // the offsets after an unknown type are unknown
            offset += std::uint64_t{width} * field.GetCount();
        }
        return std::nullopt;
    }
    return std::nullopt;
}

} // namespace

// The background analysis of an input file, fed with the packets of this scan. It ends where the background
// one ends: at the first damage, or at a packet that is too short for its type.
class CFileScan::CFirstDataFinder : private CTrvTarinDataFileAnalyzerThread {
  public:
    explicit CFirstDataFinder(const std::filesystem::path& path)
        : CTrvTarinDataFileAnalyzerThread(path, m_port, [](std::uint16_t) {}) {
        m_searching = OpenDataFile(path) != nullptr;
    }

    void Take(CXpfFile& file, const SPacketHeader& header, std::span<const std::uint8_t> payload) {
        m_searching = m_searching && ProcessPacket(file, header, payload);
    }
    void End() { m_searching = false; }
    SFirstData Get() { return WaitForFirstData(std::chrono::milliseconds(0)); }

  private:
    Outils::CMessageQueue m_queue;
    Outils::CMessagePort m_port{m_queue};
    bool m_searching = false;
};

double SChannelScan::GetRate() const {
    // Damaged dates can lie farther apart than a span can hold.
    const double length = last.GetTotalSeconds() - first.GetTotalSeconds();
    return length > 0 ? static_cast<double>(dates - 1) / length : 0;
}

CFileScan::CFileScan(CXpfFile& file, EFileKind kind, const std::filesystem::path& path)
    : m_file(file), m_channels(kChannelNumbers), m_dateOffsets(kChannelNumbers) {
    for (const auto& channel : m_file.GetChannels())
        m_dateOffsets[channel->GetNumber()] = FindDateOffset(m_file, channel->GetPacketType());
    if (kind == EFileKind::tarin) m_firstData = std::make_unique<CFirstDataFinder>(path);
}

CFileScan::~CFileScan() = default;

void CFileScan::Run(const std::function<void(int percent)>& progress) {
    const std::int64_t size = m_file.GetFileSize();
    std::int64_t step = 1;
    m_file.Seek(m_file.GetDataStart().Get());
    CStreamWalk walk(m_file);
    SPacketHeader header;
    std::span<const std::uint8_t> payload;
    for (std::int64_t position = m_file.GetPosition(); position < size; position = m_file.GetPosition()) {
        if (walk.Next(header, payload) == EPacketRead::whole) {
            Take(position, header, payload);
        } else {
            if (m_firstData) m_firstData->End();
            // A damaged size can reach beyond the end as well: the file is torn when no packet follows.
            const bool found = FindWholePacket(m_file, position + 1);
            const std::int64_t end = found ? m_file.GetPosition() : size;
            AddDamage({position, end - position, !found && m_file.IsTornTail(position)});
            if (!found) break;
        }
        for (; step <= 9 && m_file.GetPosition() >= size / 10 * step; ++step)
            if (progress) progress(static_cast<int>(step) * 10);
    }
    if (progress) progress(100);
}

void CFileScan::AddDamage(const SDamage& damage) {
    if (m_damage.size() < kDamageKept) {
        m_damage.push_back(damage);
        return;
    }
    ++m_morePlaces;
    m_moreBytes += damage.size;
}

void CFileScan::Take(std::int64_t position, const SPacketHeader& header,
                     std::span<const std::uint8_t> payload) {
    auto& entry = m_channels[header.channel];
    if (!entry) entry = std::make_unique<SChannelScan>();
    SChannelScan& seen = *entry;
    if (seen.packets++ > 0) {
        const std::int64_t distance = position - seen.lastPosition;
        if (header.number != seen.lastNumber + 1)
            ++seen.numberJumps;
        else // a distance too long for a link is stored as 0, and a writer sets the forward link later
            seen.badLinks += header.backLink != (distance <= UINT32_MAX ? distance : 0) ||
                             (seen.lastForwardLink != 0 && seen.lastForwardLink != distance);
    }
    seen.lastNumber = header.number;
    seen.lastForwardLink = header.forwardLink;
    seen.lastPosition = position;
    const auto offset = m_dateOffsets[header.channel];
    std::int64_t ticks;
    if (offset && *offset + sizeof ticks <= payload.size()) {
        std::memcpy(&ticks, payload.data() + *offset, sizeof ticks);
        const CDateTimeSpan date(ticks);
        if (seen.dates++ == 0)
            seen.first = date;
        else
            seen.timeJumps += date < seen.last;
        seen.last = date;
    }
    if (m_firstData) m_firstData->Take(m_file, header, payload);
}

SFirstData CFileScan::GetFirstData() { return m_firstData ? m_firstData->Get() : SFirstData(); }

} // namespace Application_Tarvel
