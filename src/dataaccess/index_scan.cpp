#include "dataaccess/index_scan.h"

#include "xpf/stream_walk.h"
#include "xpf/whole_packet_search.h"

namespace Application_Tarvel {

using namespace Persistance_Xpf;

namespace {

// Bytes of the stream after which waiting queries go on, and the memory is looked at.
constexpr std::int64_t kReportEvery = std::int64_t{4} << 20;

} // namespace

void CIndexScan::Begin(CXpfFile& file) {
    if (m_builder && m_builder->Begin(file, m_path)) return;
    m_builder = m_indexes->Begin(m_path, m_kind);
    if (m_builder && !m_builder->Begin(file, m_path)) m_builder.reset();
    m_reported = 0;
}

std::optional<std::int64_t> CIndexScan::GetFrontier() const {
    return m_builder ? std::optional(m_builder->GetFrontier()) : std::nullopt;
}

void CIndexScan::Take(std::int64_t position, std::span<const std::uint8_t* const> packets) {
    if (!m_builder) return;
    m_builder->Take(position, packets);
    if (m_builder->GetFrontier() < m_reported + kReportEvery) return;
    m_reported = m_builder->GetFrontier();
    m_builder->GetIndex()->ReportGrowth();
    if (m_builder->HasFailed()) {
        m_indexes->Forget(m_path);
        m_builder.reset();
    }
    m_indexes->LimitMemory(m_path, m_builder);
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
            position = file.GetPosition();
            isWhole = true;
        }
        // What is no packet is looked at twice: it may have been in the making.
        if (isWhole || stop.IsSet() || !m_builder) continue;
        // A damaged size can reach beyond the end: the tail is torn when no packet follows.
        if (!FindWholePacket(file, position + 1, [&] { return !stop.IsSet(); })) return;
        m_builder->SkipTo(file.GetPosition());
    }
}

bool CIndexScan::End(bool always) {
    if (!m_builder) return false;
    m_builder->End();
    return m_indexes->Keep(m_path, *m_builder, always);
}

} // namespace Application_Tarvel
