#include "dataaccess/data_file_analyzer.h"

#include "dataaccess/index_scan.h"
#include "foundation/bytes.h"
#include "xpf/stream_walk.h"
#include "xpf/table_file.h"
#include "xpf/tarin_layouts.h"
#include "xpf/utc_fields.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace Application_Tarvel {

using namespace Persistance_Xpf;
using Outils::Load;
using Outils_Temps::CDateTimeSpan;

namespace {

constexpr std::uint32_t kGpsPacketSize = kGpsLayout.payloadSize + kPacketOverhead;
constexpr std::uint32_t kUtcPacketSize = kUtcLayout.payloadSize + kPacketOverhead;
constexpr std::uint32_t kMostDecoded = std::max(kGpsLayout.payloadSize, kUtcLayout.payloadSize); // bytes

} // namespace

CTrvDataFileAnalyzerThread::CTrvDataFileAnalyzerThread(std::filesystem::path path, Outils::CMessagePort& port,
                                                       OnChannel onChannel, OnDamage onDamage,
                                                       std::shared_ptr<CFileIndexes> indexes)
    : m_path(std::move(path)),
      m_port(port),
      m_onChannel(std::move(onChannel)),
      m_onDamage(std::move(onDamage)),
      m_indexes(std::move(indexes)) {}

CTrvDataFileAnalyzerThread::~CTrvDataFileAnalyzerThread() { Kill(); }

bool CTrvDataFileAnalyzerThread::Start() {
    {
        const std::lock_guard lock(m_startMutex);
        if (m_scanning) {
            m_scanAgain = true;
            return false;
        }
        m_scanning = true;
        m_scanAgain = false;
        m_stop.Reset();
    }
    Join(); // a former run is at most on its last instructions
    if (CThread::Start()) return true;
    const std::lock_guard lock(m_startMutex);
    m_scanning = false;
    return false;
}

void CTrvDataFileAnalyzerThread::Run() {
    for (;;) {
        Scan();
        const std::lock_guard lock(m_startMutex);
        if (!std::exchange(m_scanAgain, false)) {
            m_scanning = false;
            m_port.Post([] {}); // who waits for the end looks again
            return;
        }
        m_stop.Reset();
    }
}

void CTrvDataFileAnalyzerThread::RequestStop() {
    const std::lock_guard lock(m_startMutex);
    m_scanAgain = false;
    m_stop.Set();
}

void CTrvDataFileAnalyzerThread::Scan() {
    const auto file = OpenDataFile(m_path);
    if (!file) return;
    if (m_indexes && !m_index) m_index = std::make_unique<CIndexScan>(m_path, GetKind(), m_indexes);
    if (m_index) m_index->Begin(*file, m_stop);
    if (m_index && m_index->GetIndex() && !m_resume.IsKnown()) TakeKnown(*file, *m_index->GetIndex());
    if (!m_resume.IsKnown()) m_resume = file->GetDataStart();
    m_passed.reset(); // the file may have been written again
    if (m_resume.IsKnown()) ScanStream(*file);
    if (!m_index) return;
    m_index->GoOn(*file, m_stop);
    if (m_stop.IsSet())
        m_index->Stop();
    else
        m_index->End();
}

// From where the last scan or the index has ended, whichever comes first.
void CTrvDataFileAnalyzerThread::ScanStream(CXpfFile& file) {
    const auto frontier = m_index ? m_index->GetFrontier() : std::nullopt;
    if (!file.Seek(std::min(m_resume.Get(), frontier.value_or(m_resume.Get())))) return;
    CStreamWalk walk(file);
    CStreamWalk::Run run;
    while (!m_stop.IsSet()) {
        const std::int64_t position = file.GetPosition();
        if (walk.NextRun(run) != EPacketRead::whole) return EndScan(file);
        if (m_index) m_index->Take(position, run);
        if (!ProcessRun(file, position, run)) return;
        if (m_index && m_index->JoinSecond()) {
            TakeKnown(file, *m_index->GetIndex());
            file.Seek(m_resume.Get());
        }
    }
}

// What an index knows of the channels is not read again: from where this scan has come to, it would go on to
// the end of the index, or to the first damage.
void CTrvDataFileAnalyzerThread::TakeKnown(CXpfFile& file, const CFileIndex& index) {
    for (const auto& [number, channel] : index.GetChannels())
        if (Watches(number) && !channel.IsOrderly()) return;
    const std::int64_t begin = m_resume.Get();
    std::int64_t end = index.GetCovered();
    for (const SIndexGap& gap : index.GetGaps())
        if (gap.position >= begin) end = std::min(end, gap.position);
    std::vector<std::int64_t> places;
    for (const auto& [channel, place] : index.GetFirstPlaces())
        if (place >= begin && place < end) places.push_back(place);
    std::ranges::sort(places);
    for (const std::int64_t place : places) {
        m_resume = place;
        if (!ProcessAt(file, place)) return;
    }
    if (end > m_resume.Get()) m_resume = end;
}

bool CTrvDataFileAnalyzerThread::ProcessAt(CXpfFile& file, std::int64_t position) {
    SPacketHeader header;
    std::uint8_t payload[kMostDecoded];
    if (!file.Seek(position) || file.Read(&header, sizeof header) != sizeof header || !header.Check())
        return false;
    const std::size_t size = std::min<std::size_t>(header.GetPayloadSize(), sizeof payload);
    return file.Read(payload, size) == size && ProcessPacket(file, header, {payload, size});
}

// The packets of a run follow each other in the file, the first one at `position`.
bool CTrvDataFileAnalyzerThread::ProcessRun(CXpfFile& file, std::int64_t position,
                                            std::span<const std::uint8_t* const> packets) {
    for (const std::uint8_t* packet : packets) {
        const std::int64_t place = position + (packet - packets.front());
        const auto channel = static_cast<std::uint16_t>(LoadWord(packet) >> 16);
        if (m_passed.test(channel) || place < m_resume.Get()) continue;
        SPacketHeader header;
        std::memcpy(&header, packet, sizeof header);
        if (!ProcessPacket(file, header, CStreamWalk::GetPayload(packet))) {
            m_resume = place;
            return false;
        }
    }
    m_resume = std::max(m_resume, CXpfFilePosition(file.GetPosition()));
    return true;
}

// Where no whole packet follows. What is there is looked at twice: it may be in the making.
void CTrvDataFileAnalyzerThread::EndScan(CXpfFile& file) {
    const std::int64_t position = file.GetPosition();
    LookAtUnchecked(file);
    if (m_onDamage && IsDamaged(file, position) && !m_stop.IsSet())
        m_port.Post([report = m_onDamage, position] { report(position); });
}

// Whether the bytes here are no packet and no torn tail, or the disk does not give them.
bool CTrvDataFileAnalyzerThread::IsDamaged(CXpfFile& file, std::int64_t position) {
    SPacketHeader header;
    std::span<const std::uint8_t> payload;
    if (!file.Seek(position)) return false;
    return CStreamWalk(file).Next(header, payload) != EPacketRead::whole && !file.IsTornTail(position);
}

// What a packet says counts as soon as its payload is there. Its trailer only decides whether the scan goes
// on after it: without a fitting one the next run begins with this packet again.
void CTrvDataFileAnalyzerThread::LookAtUnchecked(CXpfFile& file) {
    const std::int64_t position = file.GetPosition();
    SPacketHeader header;
    std::uint8_t payload[kMostDecoded];
    if (file.Read(&header, sizeof header) != sizeof header || !header.Check()) return;
    const std::size_t size = std::min<std::size_t>(header.GetPayloadSize(), sizeof payload);
    if (position + header.size - kPacketTrailerSize <= file.GetFileSize() && file.Read(payload, size) == size)
        ProcessPacket(file, header, {payload, size});
}

bool CTrvDataFileAnalyzerThread::IsScanning() {
    const std::lock_guard lock(m_startMutex);
    return m_scanning;
}

std::unique_ptr<CXpfFile> CTrvDataFileAnalyzerThread::OpenDataFile(const std::filesystem::path& path) {
    auto file = std::make_unique<CXpfFile>();
    file->SetInterrupt(&GetStopEvent());
    return file->Open(path) ? std::move(file) : nullptr;
}

bool CTrvDataFileAnalyzerThread::ProcessPacket(CXpfFile&, const SPacketHeader& header,
                                               std::span<const std::uint8_t>) {
    m_passed.set(header.channel, !Watches(header.channel));
    if (m_reported.test(header.channel)) return true;
    m_reported.set(header.channel);
    m_port.Post([report = m_onChannel, channel = header.channel] { report(channel); });
    return true;
}

SFirstData CTrvTarinDataFileAnalyzerThread::WaitForFirstData(std::chrono::milliseconds timeout) {
    std::unique_lock lock(m_mutex);
    // Nothing else restarts a scan, so that one that has ended is not worth the rest of the time.
    m_firstData.wait_for(lock, timeout,
                         [this] { return (m_data.hasUtc && m_data.hasPosition) || !IsScanning(); });
    return m_data;
}

void CTrvTarinDataFileAnalyzerThread::Run() {
    CTrvDataFileAnalyzerThread::Run();
    const std::lock_guard lock(m_mutex);
    m_firstData.notify_all();
}

std::unique_ptr<CXpfFile> CTrvTarinDataFileAnalyzerThread::OpenDataFile(const std::filesystem::path& path) {
    auto file = OpenXpfFile(path, EFileKind::tarin, &GetStopEvent()).file;
    if (!file) return nullptr;
    m_types.assign(65536, kNoChannel);
    for (const auto& channel : file->GetChannels())
        m_types[channel->GetNumber()] = static_cast<std::uint16_t>(channel->GetPacketType());
    return file;
}

bool CTrvTarinDataFileAnalyzerThread::Watches(std::uint16_t channel) const {
    return m_types[channel] == typeGps || m_types[channel] == typeUtc;
}

bool CTrvTarinDataFileAnalyzerThread::ProcessPacket(CXpfFile& file, const SPacketHeader& header,
                                                    std::span<const std::uint8_t> payload) {
    const std::uint16_t type = m_types[header.channel];
    if (type == typeGps && !ProcessGps(header, payload)) return false;
    if (type == typeUtc && !ProcessUtc(header, payload)) return false;
    return CTrvDataFileAnalyzerThread::ProcessPacket(file, header, payload);
}

bool CTrvTarinDataFileAnalyzerThread::ProcessGps(const SPacketHeader& header,
                                                 std::span<const std::uint8_t> payload) {
    if (header.size < kGpsPacketSize) return false;
    if (m_positionSeen) return true;
    m_positionSeen = true;
    const std::lock_guard lock(m_mutex);
    m_data.hasPosition = true;
    m_data.position.latitude = Load<double>(payload.data() + kGpsLayout.OffsetOf("Latitude"));
    m_data.position.longitude = Load<double>(payload.data() + kGpsLayout.OffsetOf("Longitude"));
    m_data.position.altitude =
        static_cast<double>(Load<float>(payload.data() + kGpsLayout.OffsetOf("Altitude")));
    m_firstData.notify_all();
    return true;
}

bool CTrvTarinDataFileAnalyzerThread::ProcessUtc(const SPacketHeader& header,
                                                 std::span<const std::uint8_t> payload) {
    if (header.size < kUtcPacketSize) return false;
    if (m_utcSeen) return true;
    m_utcSeen = true;
    const SUtcFields utc(payload);
    CDateTime origin = CDateTime::Invalid();
    // Seconds that no 16-bit field holds (a NaN, say) name no instant.
    if (utc.second >= 0.0f && utc.second < 60.0f) {
        const auto whole = static_cast<std::uint16_t>(utc.second);
        const float fraction = (utc.second - static_cast<float>(whole)) * 1e7f;
        origin.SetDateTime(utc.year, utc.month, utc.day, utc.hour, utc.minute, whole,
                           static_cast<std::int64_t>(fraction));
    }
    origin -= utc.date;
    const std::lock_guard lock(m_mutex);
    m_data.hasUtc = true;
    m_data.utcOrigin = origin;
    m_firstData.notify_all();
    return true;
}

CDateTime FindUtcOrigin(const std::filesystem::path& path, int maxPacketCount,
                        const Outils::CEvent* interrupt) {
    const auto file = OpenXpfFile(path, EFileKind::tarin, interrupt).file;
    const CXpfChannel* channel = file ? file->FindChannelByName("UTC") : nullptr;
    const CXpfFilePosition start = channel ? file->GetDataStart() : CXpfFilePosition();
    if (!start.IsKnown()) return CDateTime::Invalid();
    std::int64_t position = start.Get();
    for (int count = 0; count < maxPacketCount; ++count) {
        SPacketHeader header;
        if (!file->Seek(position) || file->Read(&header, sizeof header) != sizeof header) break;
        if (header.size < kPacketOverhead) break;
        if (header.channel != channel->GetNumber()) {
            position += header.size;
            continue;
        }
        std::uint8_t payload[kUtcLayout.payloadSize];
        if (!header.Check() || header.size != kUtcPacketSize ||
            file->Read(payload, sizeof payload) != sizeof payload)
            break;
        return SUtcFields(payload).GetOrigin();
    }
    return CDateTime::Invalid();
}

} // namespace Application_Tarvel
