// The recording that the benchmarks of this room share: a dense channel of inertial data beside a sparse GPS.
#pragma once

#include "foundation/date_time.h"
#include "recording/recording_writer.h"
#include "xpf/packets.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

using Outils_Temps::CDateTimeSpan;

inline constexpr std::size_t kPackets = 3'000'000; // of the IMU: 204 MB, beside a sparse channel
inline constexpr int kSlices = 2000;
inline constexpr std::int64_t kStep = 50'000; // ticks between two packets: 200 Hz

// A file that is made for one purpose, and removed with it.
class CMadeFile {
  public:
    CMadeFile() {
        std::string name = (std::filesystem::temp_directory_path() / "varne-bench-XXXXXX").string();
        ::close(::mkstemp(name.data()));
        path = name;
    }
    ~CMadeFile() { std::filesystem::remove(path); }
    CMadeFile(const CMadeFile&) = delete;
    CMadeFile& operator=(const CMadeFile&) = delete;

    std::filesystem::path path;
};

// The recording, made once and removed at the end. Evicted and read back, so that its pages are those of a
// reader.
class CRecording {
  public:
    CRecording() {
        constexpr std::string_view channels[] = {"IMU", "GPS_1"};
        Enregistrement::CRecordingWriter writer;
        writer.Create(GetPath(), channels);
        Persistance_Xpf::CXpfTarinImuPacketV2 imu;
        Persistance_Xpf::CXpfTarinGpsPacketV2 gps;
        std::uint32_t noise = 1;
        for (std::size_t i = 0; i < kPackets; ++i) {
            const CDateTimeSpan date(static_cast<std::int64_t>(i) * kStep);
            imu.SetDate(0, date);
            for (std::uint32_t field = 4; field < 10; ++field)
                imu.SetInt32(field, static_cast<std::int32_t>(noise = noise * 1664525 + 1013904223));
            writer.Write(0, imu);
            if (i % 40 == 0) {
                gps.SetDate(0, date);
                writer.Write(1, gps);
            }
        }
        writer.Close();
        const int file = ::open(GetPath().c_str(), O_RDONLY);
        ::fsync(file);
        ::posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED);
        std::vector<char> block(1 << 20);
        while (::read(file, block.data(), block.size()) > 0) {
        }
        ::close(file);
    }
    const std::filesystem::path& GetPath() const { return m_file.path; }

  private:
    CMadeFile m_file;
};

inline const CRecording& GetRecording() {
    static const CRecording recording;
    return recording;
}

// The recording that VARNE_BENCH_FILE names, for measurements at full size; without it the one made here.
inline std::filesystem::path GetLargeFile() {
    const char* existing = std::getenv("VARNE_BENCH_FILE");
    return existing ? std::filesystem::path(existing) : GetRecording().GetPath();
}

template <class Work>
double SecondsOf(Work&& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Of this thread, so that a busy machine does not count, for work that waits for nothing.
template <class Work>
double ProcessorSecondsOf(Work&& work) {
    const auto now = [] {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    };
    const double start = now();
    work();
    return now() - start;
}

inline double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace bench
