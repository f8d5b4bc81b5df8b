#include "dataaccess/index_scan.h"

#include "xpf/stream_walk.h"
#include "xpf/whole_packet_search.h"

#include <algorithm>
#include <utility>

namespace Application_Tarvel {

using namespace Persistance_Xpf;

namespace {

// Bytes of the stream after which waiting queries go on, and the memory is looked at.
constexpr std::int64_t kReportEvery = std::int64_t{4} << 20;

} // namespace

// The second half of a file, on a thread of its own: up to the end, or to the first damage.
class CIndexScan::CSecond {
  public:
    CSecond(std::unique_ptr<CXpfFile> file, std::unique_ptr<CIndexBuilder> builder,
            const Outils::CEvent& stop)
        : m_file(std::move(file)),
          m_builder(std::move(builder)),
          m_begin(m_builder->GetFrontier()),
          m_task([this, &stop](const Outils::CEvent& cancel) { Run(stop, cancel); }) {}

    bool Start() { return m_task.Start(); }
    std::int64_t GetBegin() const { return m_begin; }
    // Once it has come to its end.
    CIndexBuilder& Wait() {
        m_task.Join();
        return *m_builder;
    }

  private:
    void Run(const Outils::CEvent& stop, const Outils::CEvent& cancel) {
        CStreamWalk walk(*m_file);
        CStreamWalk::Run run;
        m_file->Seek(m_begin);
        while (!stop.IsSet() && !cancel.IsSet()) {
            const std::int64_t position = m_file->GetPosition();
            if (walk.NextRun(run) != EPacketRead::whole) return;
            m_builder->Take(position, run);
        }
    }

    std::unique_ptr<CXpfFile> m_file;
    std::unique_ptr<CIndexBuilder> m_builder;
    const std::int64_t m_begin;
    Outils::CTask m_task; // goes first
};

CIndexScan::CIndexScan(std::filesystem::path path, EFileKind kind, std::shared_ptr<CFileIndexes> indexes)
    : m_path(std::move(path)), m_kind(kind), m_indexes(std::move(indexes)) {}

CIndexScan::~CIndexScan() = default;

void CIndexScan::StartSecond(const CXpfFile& file, const Outils::CEvent& stop) {
    const auto middle = m_indexes->ShareScan(m_builder->GetFrontier(), file.GetFileSize());
    auto own = middle ? OpenXpfFile(m_path, m_kind, &stop).file : nullptr;
    if (!own || !FindWholePacket(*own, *middle)) return;
    const std::int64_t begin = own->GetPosition();
    auto index = std::make_shared<CFileIndex>(*own, m_kind, m_builder->GetIndex()->GetIdentity());
    index->SetCovered(begin);
    m_second = std::make_unique<CSecond>(std::move(own), CIndexBuilder::MakePart(std::move(index)), stop);
    if (!m_second->Start()) m_second.reset();
}

// The packets before the one at which the second thread has begun. Where no packet of the walk begins there,
// what it found was none.
std::span<const std::uint8_t* const> CIndexScan::EndAtSecond(std::int64_t position,
                                                             std::span<const std::uint8_t* const> packets) {
    if (!m_second || packets.empty()) return packets;
    const std::int64_t begin = m_second->GetBegin() - position;
    if (packets.back() - packets.front() < begin) return packets;
    const auto same =
        std::ranges::find(packets, begin, [&](const auto* packet) { return packet - packets.front(); });
    if (same != packets.end()) return packets.first(static_cast<std::size_t>(same - packets.begin()));
    m_second.reset();
    return packets;
}

bool CIndexScan::JoinSecond() {
    if (!m_second || !m_builder || m_builder->GetFrontier() < m_second->GetBegin()) return false;
    const auto second = std::exchange(m_second, nullptr);
    return m_builder->Join(second->Wait());
}

void CIndexScan::Begin(CXpfFile& file, const Outils::CEvent& stop) {
    m_second.reset();
    if (m_gaveUp || (m_builder && m_builder->Begin(file, m_path))) return;
    if (stop.IsSet()) return; // which looks like another file
    m_builder = m_indexes->Begin(m_path, m_kind);
    if (m_builder && !m_builder->Begin(file, m_path)) m_builder.reset();
    m_reported = 0;
    if (m_builder) StartSecond(file, stop);
}

std::optional<std::int64_t> CIndexScan::GetFrontier() const {
    return m_builder ? std::optional(m_builder->GetFrontier()) : std::nullopt;
}

void CIndexScan::Take(std::int64_t position, std::span<const std::uint8_t* const> packets) {
    if (!m_builder) return;
    m_builder->Take(position, EndAtSecond(position, packets));
    if (m_builder->GetFrontier() < m_reported + kReportEvery) return;
    m_reported = m_builder->GetFrontier();
    m_builder->GetIndex()->ReportGrowth();
    if (m_builder->HasFailed()) {
        m_indexes->Forget(m_path);
        m_builder.reset();
    }
    m_indexes->LimitMemory(m_path, m_builder);
    m_gaveUp = !m_builder;
}

void CIndexScan::GoOn(CXpfFile& file, const Outils::CEvent& stop) {
    CStreamWalk walk(file);
    CStreamWalk::Run run;
    while (m_builder && !stop.IsSet()) {
        file.Seek(m_builder->GetFrontier());
        std::int64_t position = file.GetPosition();
        bool isWhole = false;
        while (m_builder && !stop.IsSet() && walk.NextRun(run) == EPacketRead::whole) {
            Take(position, run);
            if (JoinSecond()) file.Seek(*GetFrontier());
            position = file.GetPosition();
            isWhole = true;
        }
        if (isWhole || stop.IsSet() || !m_builder) continue;
        // A damaged size can reach beyond the end: the tail is torn when no packet follows.
        if (!FindWholePacket(file, position + 1, [&] { return !stop.IsSet(); })) return;
        const std::int64_t next = file.GetPosition();
        // Looked at again: a writer may have been at work here, and has written what follows since.
        SPacketHeader header;
        std::span<const std::uint8_t> payload;
        file.Seek(position);
        if (walk.Next(header, payload) != EPacketRead::whole) m_builder->SkipTo(next);
    }
}

void CIndexScan::Stop() {
    m_second.reset();
    if (m_builder) m_builder->End();
}

bool CIndexScan::End(bool always) {
    m_second.reset();
    if (!m_builder) return false;
    m_builder->End();
    return m_indexes->Keep(m_path, *m_builder, always);
}

} // namespace Application_Tarvel
