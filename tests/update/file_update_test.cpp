#include "update/file_update.h"

#include "foundation/texts.h"
#include "support/temporary_folder.h"
#include "update/packet_conversion.h"
#include "update/updater_program.h"
#include "xpf/packet_file_builder.h"
#include "xpf/packets.h"

#include <gmock/gmock.h>

#include <csignal>
#include <random>

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace MiseANiveau {
namespace {

using namespace Persistance_Xpf;
using testing::Contains;
using testing::ElementsAre;
namespace fs = std::filesystem;

struct SFormerField {
    std::string name;
    EFieldType type;
    std::uint32_t count = 1;
};

// A former layout: fields of the present one are left out, renamed or retyped, and others are added.
struct SFormerLayout {
    std::uint16_t type;
    std::string_view channel;
    std::vector<std::string> missing;
    std::vector<SFormerField> added;
};
const SFormerLayout kFormerLayouts[] = {
    {typeImu,
     "IMU",
     {"Sensor status"},
     {{"Temperatures", EFieldType::f32, 8},
      {"Status 1", EFieldType::u32},
      {"Status 2", EFieldType::u32},
      {"Status 3", EFieldType::u32}}},
    {typeGps, "GPS_1", {"Geoidal sep"}, {}},
    {typeUtc, "UTC", {"Realtime drift"}, {}},
    {typeOdometer,
     "ODOMETER",
     {"Measure", "Std. dev. measure"},
     {{"Distance", EFieldType::f32}, {"Std. dev. distance", EFieldType::f64}}},
    {typeSynchro, "SYNCHRO_2", {"Counter"}, {}},
    {typeNelixNav,
     "NELIX_NAV",
     {"Algorithm status 1", "Algorithm status 2", "Algorithm status 3", "Roll", "Pitch", "Speed north",
      "Speed east", "Speed up"},
     {{"Speed", EFieldType::f32}}},
    {typeMorvexStd, "MORVEX_STD", {"Sensor", "SensorData"}, {}},
};
constexpr std::size_t kInputLayouts = 6; // the last row is of the result

std::vector<SFormerField> GetFields(const SFormerLayout& former, bool isFormer) {
    std::vector<SFormerField> fields;
    for (const SFieldLayout& field : FindPacketLayout(former.type)->fields)
        if (!isFormer || std::ranges::find(former.missing, field.name) == former.missing.end())
            fields.push_back({std::string(field.name), field.type, field.count});
    if (isFormer) fields.insert(fields.end(), former.added.begin(), former.added.end());
    return fields;
}

// A number that every type holds, different for each field and packet.
int MakeValue(const std::string& name, int packet) {
    unsigned sum = static_cast<unsigned>(packet);
    for (const char c : name) sum = sum * 31 + static_cast<unsigned char>(c);
    return static_cast<int>(sum & 0x7F);
}

Bytes MakePayload(const std::vector<SFormerField>& fields, int packet) {
    Bytes payload;
    for (const SFormerField& field : fields)
        for (std::uint32_t i = 0; i < field.count; ++i) {
            const int value = MakeValue(field.name, packet);
            switch (field.type) {
            case EFieldType::f32: Append(payload, static_cast<float>(value)); break;
            case EFieldType::f64: Append(payload, static_cast<double>(value)); break;
            case EFieldType::date: Append(payload, std::int64_t{packet} * 1000); break;
            default: {
                const std::uint64_t word = static_cast<std::uint64_t>(value);
                const auto* bytes = reinterpret_cast<const std::uint8_t*>(&word);
                payload.insert(payload.end(), bytes, bytes + GetWidth(field.type));
            }
            }
        }
    return payload;
}

class FileUpdate : public testing::Test, protected Compagnon::IRunMonitor {
  protected:
    // A file whose rows with their bit in `former` have the former layout.
    void Make(std::span<const SFormerLayout> rows, unsigned former, int packets) {
        std::vector<CPacketFileBuilder::SChannelRecord> channels;
        Bytes definitions;
        std::vector<std::vector<SFormerField>> fields;
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const bool isFormer = former >> i & 1;
            const SPacketLayout& present = *FindPacketLayout(rows[i].type);
            channels.push_back(
                {static_cast<std::uint16_t>(50 + i), std::string(rows[i].channel), rows[i].type});
            fields.push_back(GetFields(rows[i], isFormer));
            Append(definitions, rows[i].type);
            Append(definitions, isFormer ? present.version - 1 : present.version);
            Append(definitions, static_cast<std::uint16_t>(fields[i].size()));
            for (const SFormerField& field : fields[i]) {
                AppendPadded(definitions, field.name, kFieldNameSize);
                Append(definitions, field.type);
                Append(definitions, field.count);
                AppendPadded(definitions, "", kFieldDescriptionSize);
                Append(definitions, std::uint8_t{0});
            }
        }
        CPacketFileBuilder builder(channels);
        const auto count = static_cast<std::uint16_t>(rows.size());
        std::memcpy(&builder.bytes[kDefinitionCountOffset], &count, sizeof count);
        builder.bytes.insert(builder.bytes.end(), definitions.begin(), definitions.end());
        for (int packet = 0; packet < packets; ++packet)
            for (std::size_t i = 0; i < rows.size(); ++i)
                builder.Add(channels[i].number, MakePayload(fields[i], packet));
        Save(builder.bytes);
    }
    void Save(const Bytes& bytes) const {
        std::ofstream(Path(), std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
    Bytes Load(const fs::path& path) const {
        std::ifstream stream(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    // Every field of every packet is that of the former file, or zero.
    void ExpectRaised(std::span<const SFormerLayout> rows, unsigned former, int packets) const {
        const EFileKind kind = rows[0].type == typeMorvexStd ? EFileKind::tarout : EFileKind::tarin;
        const SOpenedFile opened = OpenXpfFile(Path(), kind);
        ASSERT_EQ(opened.how, EOpening::opened);
        for (std::size_t i = 0; i < rows.size(); ++i) {
            CXpfChannel* channel = opened.file->FindChannelByName(rows[i].channel);
            ASSERT_NE(channel, nullptr);
            const auto packet = channel->CreatePacket();
            for (int k = 0; k < packets; ++k) {
                ASSERT_TRUE(channel->ReadNextPacket(*packet)) << rows[i].channel << k;
                ExpectPacket(*packet, rows[i], former >> i & 1, k);
            }
            EXPECT_FALSE(channel->ReadNextPacket(*packet));
        }
    }
    static void ExpectPacket(const CXpfPacket& packet, const SFormerLayout& row, bool isFormer, int number) {
        const std::map<std::string, std::string> renamed = {{"Measure", "Distance"},
                                                            {"Std. dev. measure", "Std. dev. distance"}};
        for (std::uint32_t field = 0; field < packet.GetFieldCount(); ++field) {
            const SFieldLayout& layout = packet.GetLayout().fields[field];
            double value = 0;
            if (!packet.GetDouble(field, value)) continue;
            std::string name(layout.name);
            const bool isMissing = isFormer && std::ranges::find(row.missing, name) != row.missing.end();
            double expected = layout.type == EFieldType::date ? number * 1000.0 : MakeValue(name, number);
            if (isMissing) expected = renamed.contains(name) ? MakeValue(renamed.at(name), number) : 0;
            EXPECT_EQ(value, expected) << row.channel << ' ' << name;
        }
    }

    fs::path Path() const { return m_folder / "data file.tarin"; }
    fs::path Backup(std::string_view ending = ".bak") const { return Path().string() + std::string(ending); }
    std::vector<std::string> ListFolder() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(m_folder.GetPath()))
            names.push_back(entry.path().filename().string());
        std::ranges::sort(names);
        return names;
    }
    EUpdate Update(bool keepsBackup) {
        codes.clear();
        return CFileUpdate(*this, 0, 100).Run(Path(), keepsBackup);
    }

    void Progress(double) override {}
    void Message(Compagnon::ELevel, EText code, std::string_view) override { codes.push_back(code); }
    bool GoOn() override { return goesOn; }

    bool goesOn = true;
    std::vector<EText> codes;
    test::CTemporaryFolder m_folder;
};

TEST_F(FileUpdate, RaisesEveryMixtureOfLayouts) {
    const std::span input(kFormerLayouts, kInputLayouts), result(kFormerLayouts + kInputLayouts, 1);
    for (unsigned former = 1; former < 1u << kInputLayouts; ++former) {
        Make(input, former, 3);
        ASSERT_EQ(OpenXpfFile(Path(), EFileKind::tarin).how, EOpening::outdated);
        ASSERT_EQ(Update(false), EUpdate::raised) << former;
        ExpectRaised(input, former, 3);
    }
    Make(result, 1, 1000);
    ASSERT_EQ(Update(false), EUpdate::raised);
    ExpectRaised(result, 1, 1000);
    EXPECT_EQ(Update(false), EUpdate::upToDate);
    EXPECT_THAT(ListFolder(), ElementsAre("data file.tarin"));
}

TEST_F(FileUpdate, KeepsEveryBackup) {
    for (const std::string_view ending : {".bak", ".bak2", ".bak3"}) {
        Make({kFormerLayouts, 2}, 3, ending == ".bak" ? 1 : 2);
        const Bytes former = Load(Path());
        ASSERT_EQ(Update(true), EUpdate::raised);
        EXPECT_EQ(Load(Backup(ending)), former);
    }
}

TEST_F(FileUpdate, KeepsAFileThatItCannotRaise) {
    Make({kFormerLayouts, 2}, 3, 20);
    const Bytes former = Load(Path());
    Bytes unknown = former, newer = former, cut(former.begin(), former.begin() + 200), text(100, 'x');
    unknown[kFileHeaderSize + 2] = 'X'; // "XMU"
    newer[kFileHeaderSize + 2 * kChannelRecordSize + 2] = 9;
    const struct {
        Bytes bytes;
        EText text;
    } rows[] = {{unknown, EText::updaterUnknown},
                {newer, EText::updaterNewer},
                {cut, EText::exportSourceDamaged},
                {text, EText::exportSourceForeign},
                {{}, EText::exportSourceForeign}};
    for (const auto& row : rows) {
        Save(row.bytes);
        EXPECT_EQ(Update(true), EUpdate::refused);
        EXPECT_THAT(codes, ElementsAre(row.text));
        EXPECT_EQ(Load(Path()), row.bytes);
    }
    Save(former);
    goesOn = false;
    EXPECT_EQ(Update(true), EUpdate::stopped);
    EXPECT_EQ(Load(Path()), former);
    EXPECT_THAT(ListFolder(), ElementsAre("data file.tarin"));
}

TEST_F(FileUpdate, ADamagedFileKeepsItsFormerVersion) {
    Make({kFormerLayouts, 2}, 3, 20);
    Bytes damaged = Load(Path());
    std::fill(damaged.end() - 900, damaged.end() - 700, std::uint8_t{7});
    Save(damaged);
    ASSERT_EQ(Update(false), EUpdate::raised);
    EXPECT_THAT(codes, Contains(EText::updaterDamaged));
    EXPECT_EQ(Load(Backup()), damaged);
}

TEST_F(FileUpdate, AFullDiskHarmsNothing) {
    Make({kFormerLayouts, 2}, 3, 20'000);
    const Bytes former = Load(Path());
    const rlimit limit{1 << 20, RLIM_INFINITY}, none{RLIM_INFINITY, RLIM_INFINITY};
    const auto signal = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    const EUpdate end = Update(true);
    ::setrlimit(RLIMIT_FSIZE, &none);
    std::signal(SIGXFSZ, signal);
    EXPECT_EQ(end, EUpdate::refused);
    EXPECT_THAT(codes, ElementsAre(EText::exportWriteFailed));
    EXPECT_EQ(Load(Path()), former);
    EXPECT_THAT(ListFolder(), ElementsAre("data file.tarin"));
}

// Ends the program at a random moment of its work.
void RunAndKill(const fs::path& path, std::chrono::nanoseconds after) {
    int output[2];
    ASSERT_EQ(::pipe2(output, O_CLOEXEC), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        ::dup2(output[1], STDOUT_FILENO);
        ::execl(FILE_UPDATER, FILE_UPDATER, "/backup", "yes", path.c_str(), nullptr);
        ::_exit(127);
    }
    ::close(output[1]);
    // The first line of progress shows that it works; its end closes the pipe.
    char line[64];
    EXPECT_GT(::read(output[0], line, sizeof line), 0);
    const timespec time{0, after.count()};
    pollfd nothing{-1, 0, 0};
    ::ppoll(&nothing, 1, &time, nullptr);
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    ::close(output[0]);
}

TEST_F(FileUpdate, AKillAtAnyMomentHarmsNothing) {
    Make({kFormerLayouts, 3}, 7, 500);
    const Bytes former = Load(Path());
    ASSERT_EQ(Update(false), EUpdate::raised);
    const Bytes raised = Load(Path());
    std::mt19937 random(1);
    int whole = 0;
    for (int round = 0; round < 200; ++round) {
        Save(former);
        RunAndKill(Path(), std::chrono::microseconds(random() % 8'000));
        const Bytes left = Load(Path());
        ASSERT_TRUE(left == former || left == raised) << round;
        whole += left == raised;
        ASSERT_TRUE(!fs::exists(Backup()) || Load(Backup()) == former) << round;
        fs::remove(Backup());
    }
    EXPECT_GT(whole, 0);
    EXPECT_LT(whole, 200);
}

TEST(UpdaterProgram, OneBadFileDoesNotKeepTheOthers) {
    test::CTemporaryFolder folder;
    std::ofstream(folder / "a") << "text";
    std::array<int, 2> out{};
    ASSERT_EQ(::pipe(out.data()), 0);
    const int code =
        Compagnon::RunProgram(kFileUpdater, {(folder / "a").string(), (folder / "b").string()}, -1, out[1]);
    ::close(out[1]);
    std::array<char, 4096> text{};
    EXPECT_GT(::read(out[0], text.data(), text.size() - 1), 0);
    ::close(out[0]);
    EXPECT_EQ(code, 1);
    EXPECT_THAT(std::string(text.data()), testing::HasSubstr("not up to date: 2"));
}

} // namespace
} // namespace MiseANiveau
