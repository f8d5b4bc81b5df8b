// A packet file of either kind: its header, the walk over its packets, and every search in it.
#include "input.h"

#include "dataaccess/date_search.h"
#include "xpf/channel_walk.h"
#include "xpf/file.h"
#include "xpf/packet.h"
#include "xpf/stream_walk.h"

#include <vector>

using namespace Persistance_Xpf;

namespace {

constexpr int kMostSteps = 300; // of one walk; more of the same packets show nothing new

void ReadEveryField(const CXpfPacket& packet) {
    packet.ToText("\t");
    packet.GetHeaderText("\t");
    for (std::uint32_t field = 0; field <= packet.GetFieldCount(); ++field) {
        double number = 0;
        std::uint32_t literal = 0;
        packet.GetDouble(field, number);
        packet.GetDoubleElement(field, 0xFFFFFFFF, number);
        packet.GetStatusValue(field, literal);
    }
}

// A run of packets holds the same packets as single steps.
void WalkRuns(CXpfFile& file) {
    file.Seek(file.GetDataStart().Get());
    CStreamWalk walk(file);
    CStreamWalk::Run run;
    for (int step = 0; step < kMostSteps; ++step) {
        const std::int64_t start = file.GetPosition();
        if (walk.NextRun(run) != EPacketRead::whole) break;
        std::vector<std::uint32_t> sizes;
        for (const std::uint8_t* packet : run) {
            sizes.push_back(LoadPacketSize(packet));
            [[maybe_unused]] volatile std::uint8_t last = CStreamWalk::GetPayload(packet).data()[-1];
        }
        const std::int64_t end = file.GetPosition();
        SPacketHeader header;
        std::span<const std::uint8_t> payload;
        file.Seek(start);
        for (const std::uint32_t size : sizes)
            Fuzz::Require(walk.Next(header, payload) == EPacketRead::whole && header.size == size,
                          "a run holds whole packets only");
        Fuzz::Require(file.GetPosition() == end, "a run ends behind its last packet");
    }
    Fuzz::Require(!file.IsTornTail(file.GetDataStart().Get()) ||
                      file.GetPosition() == file.GetDataStart().Get(),
                  "a torn tail begins where the walk ends");
}

void WalkStream(CXpfFile& file) {
    WalkRuns(file);
    SPacketHeader header;
    std::span<const std::uint8_t> payload;
    std::int64_t last = file.GetDataStart().Get();
    file.Seek(last);
    std::uint64_t sum = 0;
    for (int step = 0; step < kMostSteps && CStreamWalk(file).Next(header, payload) == EPacketRead::whole;
         ++step) {
        for (const std::uint8_t byte : payload) sum += byte;
        Fuzz::Require(file.GetPosition() > last, "a walk moves forward");
        last = file.GetPosition();
    }
    // What the sum was made of has to be read, if the optimiser is not to drop the loop.
    Fuzz::Require(sum <= static_cast<std::uint64_t>(last) * 255, "a payload lies in its file");
    for (std::int64_t at = 0; at <= file.GetFileSize(); at += file.GetFileSize() / 8 + 1) {
        if (file.Seek(at) && file.SearchPacketForward(header))
            Fuzz::Require(file.GetPosition() >= at, "a forward search ends behind its start");
        if (file.Seek(at) && file.SearchPacketBackward(header))
            Fuzz::Require(file.GetPosition() < at || at == 0, "a backward search ends before its start");
    }
}

// The walk of a reduction; header and trailer around each payload are its to read.
void WalkPayloads(CXpfFile& file, CXpfChannel& channel, std::uint32_t payloadSize) {
    if (!channel.SeekFirstPacket(nullptr)) return;
    const std::int64_t size = file.GetFileSize();
    CChannelWalk walk(channel, payloadSize);
    [[maybe_unused]] volatile std::uint8_t seen = 0; // the bytes are read, not only pointed at
    for (int step = 0; step < kMostSteps; ++step) {
        const auto run = walk.Next([] {});
        for (const std::uint8_t* payload : run)
            seen = payload[-static_cast<std::ptrdiff_t>(kPacketHeaderSize)] ^
                   payload[payloadSize + kPacketTrailerSize - 1];
        if (run.empty()) break;
        Fuzz::Require(channel.GetPrevious().Get() < size, "a packet begins in its file");
    }
}

void WalkChannel(CXpfFile& file, CXpfChannel& channel, Application_Tarvel::CXpfFileCache& cache,
                 const std::filesystem::path& path) {
    SPacketHeader header;
    channel.SeekLastPacket(&header);
    channel.SeekFirstPacket(&header);
    const std::unique_ptr<CXpfPacket> packet = channel.CreatePacket();
    if (packet) {
        for (int step = 0; step < kMostSteps; ++step) {
            if (!channel.ReadNextPacket(*packet, &header)) break;
            if (step < 4) ReadEveryField(*packet);
        }
        WalkPayloads(file, channel, packet->GetPayloadSize());
    } else {
        std::uint8_t buffer[64];
        std::uint32_t sizeRead = 0;
        for (int step = 0; step < kMostSteps; ++step)
            if (!channel.ReadNextPacket(sizeRead, &header, buffer, sizeof buffer)) break;
    }
    for (const std::uint32_t number : {0u, 1u, 2u, 7u, 1000u, 0xFFFFFFFFu}) channel.SeekPacketNumber(number);

    if (auto* dated = dynamic_cast<CXpfDatedPacket*>(packet.get())) {
        const Outils::CEvent cancel;
        const Application_Tarvel::SDateSearch search{path, &cache, true, cancel};
        Application_Tarvel::SDateBracket bracket;
        for (const std::int64_t ticks : {std::int64_t{0}, std::int64_t{15'000'000}, std::int64_t{1} << 62})
            SearchDate(channel, *dated, Outils_Temps::CDateTimeSpan(ticks), search, bracket);
    }
    std::string name, description;
    std::uint32_t literals = 0;
    const auto type = static_cast<std::uint16_t>(channel.GetPacketType());
    for (std::uint32_t i = 0; i <= file.GetStatusFieldCount(type); ++i) {
        file.GetStatusField(type, i, name, description, literals);
        file.GetStatusLiteral(type, i, literals, name, description);
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Fuzz::CMemoryFile input;
    input.Set({data, size});
    for (const EFileKind kind : {EFileKind::tarin, EFileKind::tarout}) {
        const auto file = OpenXpfFile(input.GetPath(), kind).file;
        if (!file) continue;
        WalkStream(*file);
        Application_Tarvel::CXpfFileCache cache;
        for (const auto& channel : file->GetChannels()) {
            Fuzz::Require(file->FindChannelByNumber(channel->GetNumber()) != nullptr,
                          "channels have numbers");
            WalkChannel(*file, *channel, cache, input.GetPath());
        }
    }
    return 0;
}
