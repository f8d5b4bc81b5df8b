// The reader against the machine's own limit: each operation is timed beside a plain loop over the same warm
// file in the same run, and `ratio` is the quotient of the medians of their alternating runs.
#include "xpf/channel.h"
#include "xpf/packet.h"
#include "xpf/stream_walk.h"
#include "xpf/table_file.h"

#include <algorithm>
#include <array>
#include <benchmark/benchmark.h>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <map>
#include <unistd.h>
#include <vector>

namespace {

using namespace Persistance_Xpf;

constexpr std::int64_t kFileSize = 300'000'000;
constexpr std::size_t kPlainBlock = std::size_t{1} << 20;
constexpr int kRuns = 5;

// Inertial data at 200 Hz, positions at 5 Hz, navigation at 50 Hz and time at 1 Hz, as far as they fit.
class CRecording {
  public:
    CRecording() {
        const char* folder = std::getenv("TMPDIR");
        path = std::filesystem::path(folder ? folder : "/tmp") /
               ("bench_xpf" + std::to_string(getpid()) + ".tarin");
        WriteHeader();
        for (std::int64_t tick = 0; static_cast<std::int64_t>(m_bytes.size()) < kFileSize; ++tick) {
            Add("IMU");
            if (tick % 4 == 0) Add("NELIX_NAV");
            if (tick % 40 == 0) Add("GPS_1");
            if (tick % 200 == 0) Add("UTC");
            if (tick % 20000 == 0) Add("SYNCHRO_1");
        }
        std::ofstream(path, std::ios::binary)
            .write(m_bytes.data(), static_cast<std::streamsize>(m_bytes.size()));
        m_bytes = {};
        Prepare();
    }
    // A file that is there already, and stays.
    explicit CRecording(const char* existing) : path(existing), m_own(false) {
        Prepare();
        dataStart = Open()->GetDataStart().Get();
    }
    ~CRecording() {
        close(handle);
        if (m_own) std::filesystem::remove(path);
    }
    CRecording(const CRecording&) = delete;
    CRecording& operator=(const CRecording&) = delete;

    std::unique_ptr<CXpfFile> Open() const { return OpenXpfFile(path, EFileKind::tarin).file; }

    void Evict() const {
        fsync(handle);
        posix_fadvise(handle, 0, 0, POSIX_FADV_DONTNEED);
    }
    std::uint64_t ReadPlainly() const {
        std::uint64_t sum = 0;
        for (off_t at = 0; pread(handle, buffer.get(), kPlainBlock, at) > 0; ++sum)
            at += static_cast<off_t>(kPlainBlock);
        return sum;
    }

    struct SFree {
        void operator()(char* bytes) const { std::free(bytes); }
    };
    std::filesystem::path path;
    int handle = -1;
    std::unique_ptr<char, SFree> buffer;
    std::int64_t dataStart = 0;

  private:
    static constexpr std::array<const char*, 5> kNames = {"IMU", "NELIX_NAV", "GPS_1", "UTC", "SYNCHRO_1"};
    struct SState {
        std::uint16_t number = 0;
        std::uint32_t payload = 0, count = 0;
        std::size_t last = 0;
    };

    // A file just written reads slower than one read from the disk: evict it and read it back.
    void Prepare() {
        handle = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        if (handle < 0) std::abort();
        posix_fadvise(handle, 0, 0, POSIX_FADV_SEQUENTIAL);
        Evict();
        buffer.reset(static_cast<char*>(std::aligned_alloc(4096, kPlainBlock)));
        ReadPlainly();
    }

    template <class T>
    void Put(const T& value) {
        const auto* raw = reinterpret_cast<const char*>(&value);
        m_bytes.insert(m_bytes.end(), raw, raw + sizeof value);
    }

    void WriteHeader() {
        m_bytes.reserve(kFileSize + 1000);
        m_bytes.resize(kFileHeaderSize + kNames.size() * kChannelRecordSize);
        const auto count = static_cast<std::uint16_t>(kNames.size());
        std::memcpy(&m_bytes[kChannelCountOffset], &count, sizeof count);
        char* record = &m_bytes[kFileHeaderSize];
        for (const char* name : kNames) {
            const SChannelLayout* row = FindChannelLayout(name);
            const auto number = static_cast<std::uint16_t>(row - GetChannelLayouts().data());
            std::memcpy(record, &number, sizeof number);
            std::memcpy(record + 2, name, std::strlen(name));
            std::memcpy(record + kChannelRecordSize - 2, &row->packetType, sizeof row->packetType);
            record += kChannelRecordSize;
            m_states[name] = {number, FindPacketLayout(row->packetType)->payloadSize};
        }
        dataStart = static_cast<std::int64_t>(m_bytes.size());
    }

    void Add(std::string_view name) {
        SState& state = m_states[name];
        const std::size_t position = m_bytes.size();
        const std::uint32_t size = state.payload + kPacketOverhead;
        const auto link = state.count ? static_cast<std::uint32_t>(position - state.last) : 0;
        if (link)
            std::memcpy(&m_bytes[state.last + offsetof(SPacketHeader, forwardLink)], &link, sizeof link);
        Put(SPacketHeader{{'$', '$'}, state.number, size, state.count++, link, 0});
        for (std::uint32_t i = 0; i < state.payload; ++i)
            m_bytes.push_back(static_cast<char>(state.count + i));
        Put(SPacketTrailer{{'!', '!'}, state.number, size});
        state.last = position;
    }

    bool m_own = true;
    std::vector<char> m_bytes;
    std::map<std::string_view, SState> m_states;
};

CRecording& Recording() {
    static CRecording recording;
    return recording;
}

// The recording that VARNE_BENCH_FILE names, for a measurement at full size; without it the one made here.
CRecording& LargeRecording() {
    static const char* const existing = std::getenv("VARNE_BENCH_FILE");
    if (!existing) return Recording();
    static CRecording recording(existing);
    return recording;
}

// The least that any checked scan must do.
std::uint64_t ScanPlainly(const CRecording& file) {
    std::uint64_t packets = 0;
    std::int64_t at = file.dataStart;
    for (;;) {
        const std::int64_t begin = at & ~std::int64_t{4095};
        const ssize_t got = pread(file.handle, file.buffer.get(), kPlainBlock, begin);
        const std::int64_t end = begin + got;
        const std::int64_t before = at;
        while (at + kPacketHeaderSize <= end) {
            SPacketHeader header;
            SPacketTrailer trailer;
            std::memcpy(&header, file.buffer.get() + (at - begin), sizeof header);
            if (!header.Check()) return packets;
            if (at + header.size > end) break;
            std::memcpy(&trailer, file.buffer.get() + (at - begin) + header.size - sizeof trailer,
                        sizeof trailer);
            if (!trailer.Matches(header)) return packets;
            at += header.size;
            ++packets;
        }
        if (at == before) return packets;
    }
}

std::uint64_t ScanStream(const CRecording& recording) {
    const auto file = recording.Open();
    file->Seek(file->GetDataStart().Get());
    CStreamWalk walk(*file);
    CStreamWalk::Run run;
    std::uint64_t packets = 0;
    while (walk.NextRun(run) == EPacketRead::whole) packets += run.size();
    return packets;
}

std::uint64_t WalkChannel(const CRecording& recording, const char* name) {
    const auto file = recording.Open();
    CXpfChannel* channel = file->FindChannelByName(name);
    const auto packet = channel->CreatePacket();
    std::uint64_t packets = 0;
    while (channel->ReadNextPacket(*packet)) ++packets;
    return packets;
}

// The packets of a channel from here to the end.
std::uint64_t WalkOnPlainly(const CRecording& file, std::int64_t at, std::uint16_t channel) {
    std::uint64_t packets = 0;
    for (;;) {
        const std::int64_t begin = at & ~std::int64_t{4095};
        const std::int64_t end = begin + pread(file.handle, file.buffer.get(), kPlainBlock, begin);
        if (at + kPacketHeaderSize > end) return packets;
        while (at + kPacketHeaderSize <= end) {
            SPacketHeader header;
            std::memcpy(&header, file.buffer.get() + (at - begin), sizeof header);
            packets += header.channel == channel;
            at += header.size;
        }
    }
}

// Along the links with one read a packet: the better way for a channel that is sparse enough. Behind the last
// packet the rest of the stream has to be looked through, since a writer may have appended before its link.
std::uint64_t FollowLinksPlainly(const CRecording& file, const char* name) {
    const auto opened = file.Open();
    CXpfChannel* channel = opened->FindChannelByName(name);
    channel->SeekFirstPacket(nullptr);
    std::int64_t at = channel->GetCurrent().Get();
    for (std::uint64_t packets = 1;; ++packets) {
        SPacketHeader header;
        const ssize_t got = pread(file.handle, file.buffer.get(), 100, at);
        if (got < static_cast<ssize_t>(sizeof header)) return packets;
        std::memcpy(&header, file.buffer.get(), sizeof header);
        if (header.forwardLink == 0) return packets + WalkOnPlainly(file, at + header.size, header.channel);
        at += header.forwardLink;
    }
}

// Of the processor, so that a busy machine does not count; the file is in memory and nothing waits.
double Now(clockid_t clock = CLOCK_THREAD_CPUTIME_ID) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

// Seconds of one run; short work is repeated until the clock tells.
template <class F>
double Time(F work) {
    constexpr double enough = 0.02;
    int runs = 0;
    const double start = Now();
    double end = start;
    for (; end - start < enough; end = Now(), ++runs) benchmark::DoNotOptimize(work());
    return (end - start) / runs;
}

double Median(std::vector<double>& values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

// Runs own and plain work in turns; the time of the benchmark is that of the own work.
template <class Own, class... Plain>
void Compare(benchmark::State& state, Own own, Plain... plain) {
    Recording();
    for (auto _ : state) {
        std::vector<double> ownTimes;
        std::array<std::vector<double>, sizeof...(plain)> plainTimes;
        for (int run = 0; run < kRuns; ++run) {
            std::size_t i = 0;
            (plainTimes[i++].push_back(Time(plain)), ...);
            ownTimes.push_back(Time(own));
        }
        double best = Median(plainTimes[0]);
        for (auto& times : plainTimes) best = std::min(best, Median(times));
        state.SetIterationTime(Median(ownTimes));
        state.counters["plain_ms"] = best * 1e3;
        state.counters["ratio"] = Median(ownTimes) / best;
    }
    state.SetLabel(std::to_string(own()) + " packets");
}

void SequentialScan(benchmark::State& state) {
    Compare(
        state, [] { return ScanStream(LargeRecording()); }, [] { return ScanPlainly(LargeRecording()); });
}

void ScanAgainstRawRead(benchmark::State& state) {
    Compare(
        state, [] { return ScanStream(LargeRecording()); }, [] { return LargeRecording().ReadPlainly(); });
}

// From the disk, by the clock on the wall: each run evicts the file first.
void ColdScan(benchmark::State& state) {
    const CRecording& file = LargeRecording();
    const auto time = [&file](auto&& work) {
        file.Evict();
        const double start = Now(CLOCK_MONOTONIC);
        benchmark::DoNotOptimize(work());
        return Now(CLOCK_MONOTONIC) - start;
    };
    for (auto _ : state) {
        std::vector<double> own, raw;
        for (int run = 0; run < kRuns; ++run) {
            raw.push_back(time([&file] { return file.ReadPlainly(); }));
            own.push_back(time([&file] { return ScanStream(file); }));
        }
        state.SetIterationTime(Median(own));
        state.counters["raw_ms"] = Median(raw) * 1e3;
        state.counters["ratio"] = Median(own) / Median(raw);
    }
}

void ChannelWalk(benchmark::State& state, const char* name) {
    Compare(
        state, [name] { return WalkChannel(Recording(), name); }, [] { return ScanPlainly(Recording()); },
        [name] { return FollowLinksPlainly(Recording(), name); });
}

// Numbers all over the file, against four reads of a page each, for the two ends, the estimate and the
// packet.
void SeekPacketNumber(benchmark::State& state) {
    constexpr std::uint32_t kSeeks = 2000;
    const auto file = Recording().Open();
    CXpfChannel* channel = file->FindChannelByName("IMU");
    SPacketHeader last;
    channel->SeekLastPacket(&last);
    const auto pick = [&last](std::uint32_t i) { return (i * 2654435761u) % last.number; };
    Compare(
        state,
        [&] {
            const auto packet = channel->CreatePacket();
            std::uint64_t found = 0;
            for (std::uint32_t i = 0; i < kSeeks; ++i)
                found += channel->SeekPacketNumber(pick(i)) && channel->ReadNextPacket(*packet);
            return found;
        },
        [&] {
            const CRecording& plain = Recording();
            std::uint64_t sum = 0;
            for (std::uint32_t i = 0; i < kSeeks * 4; ++i)
                sum += static_cast<std::uint64_t>(
                    pread(plain.handle, plain.buffer.get(), 4096, off_t{pick(i)} * 60 / 4096 * 4096));
            return sum;
        });
}

BENCHMARK(SequentialScan)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(ScanAgainstRawRead)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(ColdScan)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ChannelWalk, dense, "IMU")->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ChannelWalk, medium, "NELIX_NAV")
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ChannelWalk, sparse, "GPS_1")
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ChannelWalk, sparser, "UTC")->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ChannelWalk, sparsest, "SYNCHRO_1")
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(SeekPacketNumber)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
