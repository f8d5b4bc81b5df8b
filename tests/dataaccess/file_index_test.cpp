#include "dataaccess/file_indexes.h"

#include "dataaccess/indexed_recording.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace Application_Tarvel;
using Persistance_Xpf::EFileKind;
using test::FindValue;
using test::Reduce;
using test::SOddities;

namespace {

constexpr int kPackets = 12'000; // about a megabyte
constexpr std::uint16_t kChannels[] = {test::kImuNumber, test::kDepthNumber, test::kGpsNumber};

constexpr SOddities kHealthy{"healthy"};
constexpr SOddities kKinds[] = {kHealthy,
                                {"backward", true},
                                {"repeated", false, true},
                                {"sizes", false, false, true},
                                {"damaged", false, false, false, 12},
                                {"numbers", false, false, false, 0, 5},
                                {"links", false, false, false, 0, 0, 6},
                                {"all", true, true, true, 8, 3, 3}};

class FileIndex : public testing::Test {
  protected:
    std::shared_ptr<CFileIndexes> MakeIndexes() {
        SIndexSettings settings;
        settings.folder = m_folder / "cache";
        settings.leastKept = 0;
        settings.loaded = 0; // every record of a kept file is read when it is needed
        settings.memory = m_memory;
        settings.disk = m_disk;
        settings.leastShared = m_isShared ? 0 : settings.leastShared;
        settings.hasIdleCore = [] { return true; };
        return std::make_shared<CFileIndexes>(std::move(settings));
    }
    const CFileIndex& GetIndex(const std::filesystem::path& path) const { return *m_indexes->Find(path); }
    std::filesystem::path GetKept(const std::filesystem::path& path) const {
        return CIndexStore(m_folder / "cache", 0, 0).GetPlace(LookAtState(path)->identity);
    }

    // Random windows and moments of every channel, within the data and beyond it, have the answers that the
    // walk gives.
    void CompareAnswers(const std::filesystem::path& path, std::int64_t end, int windows) {
        for (int i = 0; i < windows; ++i) {
            for (const std::uint16_t channel : kChannels) {
                const SChannelAddress plain{path, EFileKind::tarin, channel};
                const SChannelAddress indexed{path, EFileKind::tarin, channel, nullptr, m_indexes.get()};
                const auto [from, to] = std::minmax({Draw(end), Draw(end)});
                const std::int64_t slices = i % 3 ? 1 + Draw(30) : 1 + Draw(400);
                const SWindow window{CDateTimeSpan(from), CDateTimeSpan(to + 1),
                                     CDateTimeSpan((to - from) / slices + 1), i % 5 != 0};
                const auto truth = Reduce(plain, window), answer = Reduce(indexed, window);
                const auto apart =
                    std::ranges::mismatch(answer.bytes, truth.bytes).in1 - answer.bytes.begin();
                ASSERT_EQ(answer, truth) << "apart at " << apart << ", " << channel << ": " << from << " to "
                                         << to << " by " << window.slice.GetTicks();
                const CDateTimeSpan moment(Draw(end));
                ASSERT_EQ(FindValue(indexed, moment), FindValue(plain, moment)) << moment.GetTicks();
            }
        }
    }
    std::int64_t Draw(std::int64_t below) {
        return static_cast<std::int64_t>(m_random() % static_cast<std::uint64_t>(below + below / 20 + 1));
    }

    test::CTemporaryFolder m_folder;
    std::uint64_t m_memory = std::uint64_t{256} << 20, m_disk = std::uint64_t{1} << 30;
    bool m_isShared = false; // scans are made by two threads
    std::shared_ptr<CFileIndexes> m_indexes = MakeIndexes();
    std::mt19937_64 m_random{99};
};

class FileIndexKinds : public FileIndex, public testing::WithParamInterface<SOddities> {};

TEST_P(FileIndexKinds, AnswersAreThoseOfTheWalk) {
    for (unsigned seed = 1; seed <= 3; ++seed) {
        test::CIndexedRecording recording(m_folder / (std::to_string(seed) + ".tarin"), GetParam(), seed);
        recording.Append(kPackets);
        recording.Spoil();
        m_isShared = seed == 2;
        m_indexes = MakeIndexes();
        test::CIndexAnalysis(recording.GetPath(), m_indexes).Scan();
        EXPECT_GT(GetIndex(recording.GetPath()).GetChannel(test::kImuNumber)->GetCount(2), 2u);
        CompareAnswers(recording.GetPath(), recording.GetEnd(), 15);
        m_indexes = MakeIndexes();
        ASSERT_TRUE(m_indexes->FindKept(recording.GetPath(), EFileKind::tarin));
        CompareAnswers(recording.GetPath(), recording.GetEnd(), 15);
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, FileIndexKinds, testing::ValuesIn(kKinds),
                         [](const auto& row) { return row.param.name; });

TEST_F(FileIndex, InnerPacketsAreNotRead) {
    test::CIndexedRecording recording(m_folder / "r.tarin", kHealthy, 1);
    recording.Append(kPackets);
    test::CIndexAnalysis(recording.GetPath(), m_indexes).Scan();
    const SChannelAddress address{recording.GetPath(), EFileKind::tarin, test::kImuNumber, nullptr,
                                  m_indexes.get()};
    const SWindow whole{CDateTimeSpan(0), CDateTimeSpan(recording.GetEnd()),
                        CDateTimeSpan(recording.GetEnd())};
    const auto truth = Reduce(address, whole);
    // A quarter of the way on, far from the ends and the centre of the one slice.
    CIndexCursor cursor(*GetIndex(recording.GetPath()).GetChannel(test::kImuNumber));
    const auto head = cursor.GetHead(0, cursor.GetCount(0) / 4);
    std::fstream file(recording.GetPath(), std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(head->position + 2 * 68 + 40).write("\x7F\x7F\x7F\x7F", 4);
    file.close();
    EXPECT_EQ(Reduce(address, whole), truth);
}

TEST_F(FileIndex, SharedScansMakeTheSameIndex) {
    for (const SOddities& kind : {kHealthy, kKinds[3], kKinds[4]}) {
        SCOPED_TRACE(kind.name);
        test::CIndexedRecording recording(m_folder / (kind.name + std::string(".tarin")), kind, 4);
        recording.Append(kPackets);
        recording.Spoil();
        std::vector<std::shared_ptr<const CFileIndex>> made;
        std::vector<std::uint16_t> channels;
        std::int64_t resume = 0;
        for (const bool isShared : {false, true}) {
            m_isShared = isShared;
            std::filesystem::remove_all(m_folder / "cache");
            m_indexes = MakeIndexes();
            test::CIndexAnalysis analysis(recording.GetPath(), m_indexes);
            analysis.Scan();
            made.push_back(m_indexes->Find(recording.GetPath()));
            if (isShared) {
                EXPECT_EQ(analysis.m_channels, channels);
                EXPECT_EQ(analysis.GetResumePosition().Get(), resume);
            }
            channels = analysis.m_channels;
            resume = analysis.GetResumePosition().Get();
        }
        EXPECT_EQ(made[0]->GetCovered(), made[1]->GetCovered());
        EXPECT_EQ(made[0]->GetGaps().size(), made[1]->GetGaps().size());
        for (const std::uint16_t number : kChannels) {
            const CChannelIndex &one = *made[0]->GetChannel(number), &two = *made[1]->GetChannel(number);
            EXPECT_EQ(one.IsOrderly(), two.IsOrderly()) << number;
            // Where the two halves meet a block more may begin.
            SIndexHead all[2];
            for (const CChannelIndex* channel : {&one, &two}) {
                CIndexCursor cursor(*channel);
                SIndexHead& head = all[channel == &two];
                for (std::size_t i = 0; i < cursor.GetCount(0); ++i) {
                    const SIndexHead next = *cursor.GetHead(0, i);
                    if (i == 0) head = next;
                    if (i > 0) JoinIndexHeads(head, next);
                }
            }
            EXPECT_EQ(all[0].count, all[1].count) << number;
            EXPECT_EQ(all[0].flags, all[1].flags) << number;
            EXPECT_EQ(all[0].lastPosition, all[1].lastPosition) << number;
            EXPECT_LE(two.GetCount(0), one.GetCount(0) + 2) << number;
        }
    }
}

TEST_F(FileIndex, GrowsWithItsFile) {
    for (const SOddities& kind : {kHealthy, kKinds[3]}) {
        m_indexes = MakeIndexes();
        test::CIndexedRecording recording(m_folder / (kind.name + std::string(".tarin")), kind, 5);
        auto analysis = std::make_unique<test::CIndexAnalysis>(recording.GetPath(), m_indexes);
        for (int piece = 0; piece < 12; ++piece) {
            recording.Append(piece % 3 ? 700 : 3000);
            if (piece % 4 != 1) analysis->Scan();
            CompareAnswers(recording.GetPath(), recording.GetEnd(), 8);
            // Another program, later.
            if (piece % 5 != 4) continue;
            m_indexes = MakeIndexes();
            analysis = std::make_unique<test::CIndexAnalysis>(recording.GetPath(), m_indexes);
        }
        analysis->Scan();
        EXPECT_EQ(GetIndex(recording.GetPath()).GetCovered(),
                  static_cast<std::int64_t>(std::filesystem::file_size(recording.GetPath())));
        EXPECT_EQ(analysis->m_channels,
                  (std::vector<std::uint16_t>{test::kImuNumber, test::kDepthNumber, test::kGpsNumber}));
    }
}

TEST_F(FileIndex, TornTailsAreNoDamage) {
    test::CIndexedRecording recording(m_folder / "r.tarin", kHealthy, 3);
    recording.Append(kPackets);
    const auto whole = std::filesystem::file_size(recording.GetPath());
    std::filesystem::resize_file(recording.GetPath(), whole - 9);
    test::CIndexAnalysis analysis(recording.GetPath(), m_indexes);
    analysis.Scan();
    EXPECT_LT(GetIndex(recording.GetPath()).GetCovered(), static_cast<std::int64_t>(whole) - 9);
    EXPECT_FALSE(GetIndex(recording.GetPath()).HasGaps());
    CompareAnswers(recording.GetPath(), recording.GetEnd(), 10);
}

TEST_F(FileIndex, DamageIsNotedAndPassed) {
    SOddities damaged = kHealthy;
    damaged.damage = 5;
    test::CIndexedRecording recording(m_folder / "r.tarin", damaged, 8);
    recording.Append(kPackets);
    recording.Spoil();
    test::CIndexAnalysis analysis(recording.GetPath(), m_indexes);
    analysis.Scan();
    const auto gaps = GetIndex(recording.GetPath()).GetGaps();
    ASSERT_FALSE(gaps.empty());
    EXPECT_EQ(analysis.GetResumePosition().Get(), gaps.front().position);
    EXPECT_EQ(GetIndex(recording.GetPath()).GetCovered(),
              static_cast<std::int64_t>(std::filesystem::file_size(recording.GetPath())));
    // The analysis of another program ends at the same place, and knows of no channel that lies after it.
    m_indexes = MakeIndexes();
    test::CIndexAnalysis later(recording.GetPath(), m_indexes);
    later.Scan();
    EXPECT_EQ(later.GetResumePosition().Get(), gaps.front().position);
    EXPECT_EQ(later.m_channels, analysis.m_channels);
}

TEST_F(FileIndex, OtherContentIsNoticed) {
    using Path = std::filesystem::path;
    struct SChange {
        const char* name;
        std::function<void(const Path& path, const Path& other)> make;
    };
    const SChange changes[] = {
        {"cut", [](const Path& path, const Path&) { std::filesystem::resize_file(path, 300'000); }},
        {"replaced", [](const Path& path, const Path& other) { std::filesystem::rename(other, path); }},
        {"rewritten",
         [](const Path& path, const Path& other) {
             std::filesystem::copy_file(other, path, std::filesystem::copy_options::overwrite_existing);
         }},
        {"rewritten longer", [](const Path& path, const Path& other) {
             std::filesystem::copy_file(other, path, std::filesystem::copy_options::overwrite_existing);
             std::ofstream(path, std::ios::app) << std::string(1000, '\0');
         }}};
    for (const SChange& change : changes) {
        SCOPED_TRACE(change.name);
        test::CIndexedRecording recording(m_folder / "r.tarin", kHealthy, 1);
        test::CIndexedRecording other(m_folder / "other.tarin", kHealthy, 2);
        recording.Append(kPackets);
        other.Append(kPackets);
        m_indexes = MakeIndexes();
        test::CIndexAnalysis(recording.GetPath(), m_indexes).Scan();
        change.make(recording.GetPath(), other.GetPath());
        CompareAnswers(recording.GetPath(), recording.GetEnd(), 4);
        m_indexes = MakeIndexes();
        m_indexes->FindKept(recording.GetPath(), EFileKind::tarin);
        CompareAnswers(recording.GetPath(), recording.GetEnd(), 4);
        std::filesystem::remove(recording.GetPath());
    }
}

// One byte, or the end, of the kept file is not as it was; or it is the file of another recording.
TEST_F(FileIndex, SpoiltKeptFilesAreNotBelieved) {
    test::CIndexedRecording recording(m_folder / "r.tarin", kHealthy, 1);
    recording.Append(kPackets);
    test::CIndexAnalysis(recording.GetPath(), m_indexes).Scan();
    const auto place = GetKept(recording.GetPath());
    std::ifstream whole(place, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(whole), {}};
    ASSERT_GT(bytes.size(), 10'000u);
    for (int i = 0; i < 100 && !HasFatalFailure(); ++i) {
        std::string spoilt = bytes;
        // The tables at the beginning as often as the records.
        const std::size_t at = m_random() % (i % 2 ? bytes.size() : 8192);
        if (i % 10 == 0)
            spoilt.resize(at);
        else
            spoilt[at] = static_cast<char>(spoilt[at] ^ (1 << (i % 8)));
        std::ofstream(place, std::ios::binary) << spoilt;
        m_indexes = MakeIndexes();
        m_indexes->FindKept(recording.GetPath(), EFileKind::tarin);
        CompareAnswers(recording.GetPath(), recording.GetEnd(), 1);
    }
    test::CIndexedRecording other(m_folder / "other.tarin", kHealthy, 2);
    other.Append(kPackets);
    test::CIndexAnalysis(other.GetPath(), m_indexes).Scan();
    std::filesystem::rename(GetKept(other.GetPath()), place);
    EXPECT_FALSE(MakeIndexes()->FindKept(recording.GetPath(), EFileKind::tarin));
    EXPECT_FALSE(std::filesystem::exists(place));
}

TEST_F(FileIndex, FilesUsedLeastLatelyGoFirst) {
    std::vector<std::filesystem::path> paths;
    for (const char* name : {"a.tarin", "b.tarin", "c.tarin"}) {
        test::CIndexedRecording recording(m_folder / name, kHealthy, 1);
        recording.Append(kPackets);
        paths.push_back(recording.GetPath());
        if (paths.size() == 3) m_disk = 5 * std::filesystem::file_size(GetKept(paths[0])) / 2;
        m_indexes = MakeIndexes();
        test::CIndexAnalysis(recording.GetPath(), m_indexes).Scan();
        if (paths.size() != 2) continue;
        // The first one is used again.
        const auto now = std::filesystem::last_write_time(GetKept(paths[0]));
        for (const auto& path : paths)
            std::filesystem::last_write_time(GetKept(path), now - std::chrono::hours(1));
        EXPECT_TRUE(MakeIndexes()->FindKept(paths[0], EFileKind::tarin));
    }
    const auto isKept = [&](std::size_t i) { return std::filesystem::exists(GetKept(paths[i])); };
    EXPECT_TRUE(isKept(0) && !isKept(1) && isKept(2));
    m_disk = 1000;
    test::CIndexAnalysis(paths[1], MakeIndexes()).Scan();
    EXPECT_FALSE(isKept(1)) << "larger than all may be";
}

TEST_F(FileIndex, MemoryIsLimited) {
    m_memory = 30'000;
    m_indexes = MakeIndexes();
    test::CIndexedRecording recording(m_folder / "r.tarin", kHealthy, 1);
    recording.Append(120'000); // two looks at the memory
    test::CIndexAnalysis(recording.GetPath(), m_indexes).Scan();
    EXPECT_EQ(GetIndex(recording.GetPath()).GetCovered(),
              static_cast<std::int64_t>(std::filesystem::file_size(recording.GetPath())));
    EXPECT_LT(GetIndex(recording.GetPath()).GetBytes(), 100'000u);
    CompareAnswers(recording.GetPath(), recording.GetEnd(), 6);
}

TEST_F(FileIndex, NothingIsMadeWhenOff) {
    SIndexSettings settings;
    settings.isOn = false;
    settings.folder = m_folder / "cache";
    settings.leastKept = 0;
    const auto off = std::make_shared<CFileIndexes>(settings);
    test::CIndexedRecording recording(m_folder / "r.tarin", kHealthy, 1);
    recording.Append(1000);
    test::CIndexAnalysis(recording.GetPath(), off).Scan();
    EXPECT_FALSE(off->Find(recording.GetPath()) || off->FindKept(recording.GetPath(), EFileKind::tarin));
    EXPECT_FALSE(std::filesystem::exists(m_folder / "cache"));
}

} // namespace
