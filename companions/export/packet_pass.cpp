#include "export/packet_pass.h"

#include "foundation/bytes.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "xpf/whole_packet_search.h"

#include <algorithm>

namespace Exportation {

using namespace Persistance_Xpf;

namespace {

constexpr std::string_view kNavigationChannel = "NELIX_NAV";
constexpr unsigned kRunsBetweenQuestions = 16; // of up to 64 packets

EText GetReason(EOpening how) {
    switch (how) {
    case EOpening::outdated: return EText::exportSourceOutdated;
    case EOpening::damaged: return EText::exportSourceDamaged;
    case EOpening::unreadable: return EText::exportSourceUnreadable;
    default: return EText::exportSourceForeign;
    }
}

// A result looks like a former recording to the reader of recordings, and the other way round.
bool IsOtherKind(const std::filesystem::path& path, EFileKind kind) {
    return OpenXpfFile(path, kind == EFileKind::tarin ? EFileKind::tarout : EFileKind::tarin).file != nullptr;
}

} // namespace

bool CPacketPass::Open(const std::filesystem::path& path, std::initializer_list<EFileKind> kinds) {
    EOpening reason = EOpening::foreign;
    for (const EFileKind kind : kinds) {
        SOpenedFile opened = OpenXpfFile(path, kind);
        // A file of the other kind looks outdated to this one: the last kind decides.
        reason = opened.how;
        m_file = std::move(opened.file);
        m_kind = kind;
        if (m_file) break;
    }
    if (reason == EOpening::outdated && kinds.size() == 1 && IsOtherKind(path, *kinds.begin()))
        reason = EOpening::foreign;
    if (!m_file || !m_file->GetDataStart().IsKnown()) {
        m_monitor.Report(ELevel::error, GetReason(reason), {Outils_Fichiers::ToText(path)});
        m_file.reset();
        return false;
    }
    m_walk.emplace(*m_file);
    m_channels.clear();
    for (const auto& channel : m_file->GetChannels()) {
        const SPacketLayout* layout = FindPacketLayout(static_cast<std::uint16_t>(channel->GetPacketType()));
        if (layout)
            m_channels.push_back({channel->GetNumber(), FindChannelLayout(channel->GetName()), layout});
    }
    return true;
}

const SPassChannel* CPacketPass::FindChannel(std::string_view name) const {
    if (name == kNavigationChannel && m_kind == EFileKind::tarout) name = kResultChannel;
    const auto found = std::ranges::find_if(
        m_channels, [name](const SPassChannel& channel) { return channel.row->name == name; });
    return found == m_channels.end() ? nullptr : &*found;
}

std::string CPacketPass::ListChannels() const {
    std::string text;
    for (const SPassChannel& channel : m_channels)
        text += (text.empty() ? "" : ", ") + std::string(channel.row->name);
    return text;
}

void CPacketPass::Begin(const std::vector<const SPassChannel*>& channels, const SPeriod& period, double first,
                        double last) {
    m_byNumber.assign(65536, -1);
    for (std::size_t i = 0; i < m_channels.size(); ++i) {
        SPassChannel& channel = m_channels[i];
        channel.selected = channels.empty() || std::ranges::find(channels, &channel) != channels.end();
        if (channel.selected) m_byNumber[channel.number] = static_cast<std::int16_t>(i);
    }
    m_period = period;
    m_run = {};
    m_next = 0;
    m_beyond = 0;
    m_stopped = false;
    m_faults = {};
    m_position = m_file->GetDataStart().Get();
    m_size = std::max<std::int64_t>(m_file->GetFileSize(), 1);
    m_firstPercent = first;
    m_percentPerByte = (last - first) / static_cast<double>(m_size);
    m_file->Seek(m_position);
}

bool CPacketPass::Next(SPassPacket& packet) {
    while (!m_stopped && m_beyond <= kTolerance) {
        if (m_next == m_run.size() && !NextRun()) return false;
        const std::uint8_t* bytes = m_run[m_next++];
        const std::int64_t position = m_position;
        m_position += LoadPacketSize(bytes);
        const std::int16_t index = m_byNumber[LoadWord(bytes) >> 16];
        if (index < 0) continue;
        const SPassChannel& channel = m_channels[static_cast<std::size_t>(index)];
        if (LoadPacketSize(bytes) != channel.layout->payloadSize + kPacketOverhead) {
            m_faults.Add(EText::exportFaultSize, static_cast<std::uint64_t>(position));
            continue;
        }
        // Every decoded type begins with its date.
        const auto date = Outils::Load<std::int64_t>(bytes + kPacketHeaderSize);
        m_beyond = date > m_period.to ? m_beyond + 1 : 0;
        if (date < m_period.from || date > m_period.to) continue;
        packet = {&channel, bytes + kPacketHeaderSize, date};
        return true;
    }
    return false;
}

void CPacketPass::ReportFaults() const { m_faults.Report(m_monitor, EText::faultsByByte); }

// False at the end of the file, or when the run is stopped.
bool CPacketPass::NextRun() {
    m_next = 0;
    for (;;) {
        if (m_runs++ % kRunsBetweenQuestions == 0 && !GoOn()) return false;
        m_position = m_file->GetPosition();
        if (m_position >= m_size) return false;
        if (m_walk->NextRun(m_run) == EPacketRead::whole) return true;
        // A torn packet in the middle of the file is a damaged size: what follows is searched as well. A torn
        // tail is where the writer of the file is, and no fault.
        const std::int64_t damage = m_position;
        if (!FindWholePacket(*m_file, damage + 1, [this] { return GoOn(); })) {
            if (!m_stopped && !m_file->IsTornTail(damage))
                m_faults.Add(EText::exportFaultDamage, static_cast<std::uint64_t>(damage));
            m_run = {};
            m_position = m_size;
            m_file->Seek(m_size);
            return false;
        }
        m_faults.Add(EText::exportFaultDamage, static_cast<std::uint64_t>(damage));
    }
}

bool CPacketPass::GoOn() {
    m_monitor.Progress(m_firstPercent + m_percentPerByte * static_cast<double>(m_position));
    m_stopped = m_stopped || !m_monitor.GoOn();
    return !m_stopped;
}

} // namespace Exportation
