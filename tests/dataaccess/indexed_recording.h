// Recordings of all kinds for the tests of the index, and the answers of queries with and without it.
#pragma once

#include "dataaccess/data_file_analyzer.h"
#include "dataaccess/file_indexes.h"
#include "dataaccess/test_recording.h"
#include "dataaccess/view_queries.h"
#include "xpf/stream_walk.h"

#include <cmath>
#include <fstream>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace test {

// What is odd about a recording.
struct SOddities {
    const char* name;
    bool datesGoBack = false;
    bool datesRepeat = false;
    bool hasOddSizes = false;
    int damage = 0;  // places
    int numbers = 0; // packets whose number is another one
    int links = 0;   // packets whose link leads elsewhere
};

inline constexpr std::uint16_t kImuNumber = 0;

// Packets of a dense channel and two sparse ones, appended piece by piece.
class CIndexedRecording {
  public:
    CIndexedRecording(std::filesystem::path path, const SOddities& oddities, unsigned seed)
        : m_recording(std::move(path)), m_oddities(oddities), m_random(seed) {}

    const std::filesystem::path& GetPath() const { return m_recording.GetPath(); }
    std::int64_t GetEnd() const { return m_ticks; }

    void Append(int packets) {
        for (int i = 0; i < packets; ++i, ++m_count) AppendPacket();
        m_recording.Flush();
    }

    // To be called once all packets are in the file.
    void Spoil() {
        const auto places = FindPackets();
        std::fstream file(GetPath(), std::ios::in | std::ios::out | std::ios::binary);
        const auto pick = [&] { return places[m_random() % places.size()]; };
        const auto put = [&](std::int64_t at, std::uint32_t word) {
            file.seekp(at).write(reinterpret_cast<const char*>(&word), sizeof word);
        };
        for (int i = 0; i < m_oddities.numbers; ++i) put(pick() + 8, static_cast<std::uint32_t>(m_random()));
        for (int i = 0; i < m_oddities.links; ++i) {
            const std::int64_t from = pick(), to = pick();
            put(from + 16, to > from ? static_cast<std::uint32_t>(to - from) : 0);
        }
        for (int i = 0; i < m_oddities.damage; ++i) {
            const std::int64_t at = pick() + static_cast<std::int64_t>(m_random() % 60);
            for (std::int64_t k = 0, end = 1 + static_cast<std::int64_t>(m_random() % 90); k < end; k += 4)
                put(at + k, static_cast<std::uint32_t>(m_random()));
        }
    }

  private:
    void AppendPacket() {
        m_ticks += m_oddities.datesRepeat && m_random() % 5 == 0 ? 0 : 40'000 + m_random() % 20'000;
        const bool goesBack = m_oddities.datesGoBack && m_random() % 300 == 0;
        const CDateTimeSpan date(goesBack ? m_ticks - 3'000'000 : m_ticks);
        Persistance_Xpf::CXpfTarinImuPacketV2 imu;
        imu.SetDate(0, date);
        imu.SetUInt16(1, static_cast<std::uint16_t>(m_random()));
        for (std::uint32_t field = 4; field < 10; ++field)
            imu.SetInt32(field, static_cast<std::int32_t>(m_random()));
        EXPECT_TRUE(m_recording.GetWriter().Write("IMU", imu));
        if (m_count % 3 == 0) m_recording.Depth(date, DrawDepth(), static_cast<std::uint8_t>(m_random()));
        if (m_count % 50 == 0)
            m_recording.Gps(date.GetTotalSeconds(), static_cast<double>(m_random() % 180), 4, DrawDepth());
        if (m_oddities.hasOddSizes && m_random() % 700 == 0) {
            std::vector<std::uint8_t> payload(m_random() % 60, 7);
            const auto channel = m_recording.GetWriter().FindChannel(m_random() % 2 ? "IMU" : "DEPTH");
            EXPECT_TRUE(m_recording.GetWriter().WriteRaw(*channel, payload));
        }
    }
    // With all that is odd about floats.
    float DrawDepth() {
        switch (m_random() % 8) {
        case 0: return std::nanf("");
        case 1: return 0.0f;
        case 2: return -0.0f;
        default: return static_cast<float>(m_random() % 1000) - 500;
        }
    }
    std::vector<std::int64_t> FindPackets() const {
        using namespace Persistance_Xpf;
        const auto file = OpenXpfFile(GetPath(), EFileKind::tarin).file;
        std::vector<std::int64_t> places;
        file->Seek(file->GetDataStart().Get());
        SPacketHeader header;
        std::span<const std::uint8_t> payload;
        do places.push_back(file->GetPosition());
        while (CStreamWalk(*file).Next(header, payload) == EPacketRead::whole);
        places.pop_back();
        return places;
    }

    CTestRecording m_recording;
    const SOddities m_oddities;
    std::mt19937 m_random;
    std::int64_t m_ticks = 10'000'000;
    int m_count = 0;
};

// The analysis of a file on the caller's thread.
class CIndexAnalysis : public Application_Tarvel::CTrvTarinDataFileAnalyzerThread {
  public:
    CIndexAnalysis(const std::filesystem::path& path,
                   std::shared_ptr<Application_Tarvel::CFileIndexes> indexes)
        : CTrvTarinDataFileAnalyzerThread(
              path, m_port, [this](std::uint16_t channel) { m_channels.push_back(channel); }, {},
              std::move(indexes)) {}
    ~CIndexAnalysis() override { Kill(); }

    void Scan() {
        Run();
        m_queue.RunPending();
    }
    std::vector<std::uint16_t> m_channels;

  private:
    Outils::CMessageQueue m_queue;
    Outils::CMessagePort m_port{m_queue};
};

// Everything that a query answers, as bytes.
struct SAnswer {
    Application_Tarvel::EQueryEnd end{};
    std::string bytes;

    bool operator==(const SAnswer&) const = default;
    // For messages of failed tests.
    friend void PrintTo(const SAnswer& answer, std::ostream* out) {
        *out << static_cast<int>(answer.end) << ": " << answer.bytes.size() << " bytes";
    }
    void Add(const Persistance_Xpf::CXpfPacket& packet) {
        bytes.append(reinterpret_cast<const char*>(packet.GetPayload()), packet.GetPayloadSize());
    }
};

inline SAnswer Reduce(const Application_Tarvel::SChannelAddress& address,
                      const Application_Tarvel::SWindow& window) {
    Application_Tarvel::CTrvView1DDataQuery query(address, window, nullptr);
    SAnswer answer{query.Execute(), {}};
    const auto series = query.TakeSeries();
    for (const auto* list : {&series.representatives, &series.minima, &series.maxima})
        for (const auto& packet : *list) answer.Add(*packet);
    return answer;
}

inline SAnswer FindValue(const Application_Tarvel::SChannelAddress& address, CDateTimeSpan time) {
    Application_Tarvel::CTrvViewValueDataQuery query(address, time, nullptr);
    SAnswer answer{query.Execute(), {}};
    if (const auto packet = query.TakePacket()) answer.Add(*packet);
    answer.bytes += std::to_string(query.GetPlace().position.Get());
    return answer;
}

} // namespace test
