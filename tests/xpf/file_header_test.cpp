#include "packet_file_builder.h"
#include "xpf/packet.h"

#include <sys/stat.h>

namespace Persistance_Xpf {
namespace {

using Builder = CPacketFileBuilder;

using FileHeader = PacketFileTest;

TEST_F(FileHeader, GivesRecordsInFileOrder) {
    Builder builder(
        {{13, "UTC", typeUtc}, {7, "PLATFORM_ORIENT", typePlatformOrientation, std::string(64, 'd')}},
        {{typeUtc, 2, 10}, {200, 77, 0}});
    const auto file = Open(builder.bytes);
    ASSERT_TRUE(file);
    EXPECT_EQ(file->GetDataStart().Get(), builder.dataStart);
    EXPECT_EQ(file->GetFileSize(), builder.dataStart);
    ASSERT_EQ(file->GetChannels().size(), 2u);
    const CXpfChannel* utc = file->FindChannelByNumber(13);
    ASSERT_EQ(utc, file->GetChannels()[0].get());
    EXPECT_EQ(utc, file->FindChannelByName("UTC"));
    EXPECT_EQ(utc->CreatePacket()->GetPayloadSize(), 31u);
    EXPECT_EQ(file->GetChannels()[1]->GetDescription(), std::string(64, 'd'));
    EXPECT_EQ(file->FindChannelByName("IMU"), nullptr);
    EXPECT_EQ(file->FindChannelByNumber(0), nullptr);
    ASSERT_EQ(file->GetDefinitions().size(), 2u);
    const CXpfFieldDefinition& field = file->GetDefinitions()[0]->fields.at(9);
    EXPECT_EQ(field.GetName(), "Realtime drift");
    EXPECT_EQ(field.GetTypeCode(), static_cast<std::uint8_t>(EFieldType::f64));
    EXPECT_EQ(field.GetCount(), 1u);
    EXPECT_EQ(field.GetDescription(), "about it");
}

TEST_F(FileHeader, DecodesNoInternalStates) {
    Builder builder({{5, "MORVEX_STA", typeMorvexSta}, {5, "MORVEX_MSG", typeMorvexMsg}},
                    {{typeMorvexSta, 1, 0}});
    Save(builder.bytes);
    const auto file = OpenXpfFile(m_path, EFileKind::tarout).file;
    ASSERT_TRUE(file);
    EXPECT_EQ(file->GetChannels()[0]->CreatePacket(), nullptr);
    EXPECT_EQ(file->FindChannelByNumber(5), file->GetChannels()[1].get())
        << "the later record takes the number";
}

TEST_F(FileHeader, TellsFormerLayoutsFromDamage) {
    const Builder whole({{0, "IMU", typeImu}}, {{typeImu, 2, 11}});
    Builder junk = whole;
    junk.bytes[kFileHeaderSize + 2 + 10] = 'x'; // after the terminator, within the 16 bytes
    const auto cut = [&whole](std::int64_t size) {
        return Bytes(whole.bytes.begin(), whole.bytes.begin() + size);
    };
    struct {
        const char* what;
        Bytes bytes;
        EFileKind kind;
        EOpening how;
        bool isFlagged = false; // by the reading of the header itself
    } const rows[] = {
        {"whole", whole.bytes, EFileKind::tarin, EOpening::opened},
        {"other kind", whole.bytes, EFileKind::tarout, EOpening::outdated, true},
        {"empty", {}, EFileKind::tarin, EOpening::foreign},
        {"cut header", cut(122), EFileKind::tarin, EOpening::damaged},
        {"cut channel record", cut(150), EFileKind::tarin, EOpening::damaged, true},
        {"junk in name", junk.bytes, EFileKind::tarin, EOpening::damaged, true},
        {"unknown name", Builder({{0, "IMU2", typeImu}}).bytes, EFileKind::tarin, EOpening::outdated, true},
        {"full width name", Builder({{0, "0123456789ABCDEF", 0}}).bytes, EFileKind::tarin, EOpening::outdated,
         true},
        {"wrong type", Builder({{0, "IMU", typeDvl}}).bytes, EFileKind::tarin, EOpening::outdated, true},
        {"repeated", Builder({{0, "GPS_1", 3}, {1, "GPS_1", 3}}).bytes, EFileKind::tarin, EOpening::damaged,
         true},
        {"old version", Builder({{0, "IMU", 0}}, {{0, 1, 11}}).bytes, EFileKind::tarin, EOpening::outdated,
         true},
        {"old result", Builder({}, {{typeMorvexStd, 1, 0}}).bytes, EFileKind::tarout, EOpening::outdated,
         true},
        {"old states", Builder({}, {{typeMorvexSta, 2, 0}}).bytes, EFileKind::tarout, EOpening::outdated,
         true},
        {"no mark", Bytes(300, 'x'), EFileKind::tarin, EOpening::foreign, true},
        {"unknown name in a current file", Builder({{0, "IMV", typeImu}}, {{typeImu, 2, 11}}).bytes,
         EFileKind::tarin, EOpening::damaged, true},
        {"unreadable name", Builder({{0, "I\x01U", typeImu}}).bytes, EFileKind::tarin, EOpening::damaged,
         true},
        {"type of the other kind", Builder({}, {{typeMorvexStd, 1, 0}}).bytes, EFileKind::tarin,
         EOpening::opened},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Save(row.bytes);
        const SOpenedFile opened = OpenXpfFile(m_path, row.kind);
        EXPECT_EQ(opened.how, row.how);
        EXPECT_EQ(opened.file != nullptr, row.how == EOpening::opened);
        bool outdated = !row.isFlagged;
        CXpfFile::HeaderBuffer buffer;
        CXpfTableFile file(row.kind);
        EXPECT_TRUE(file.Open(m_path));
        file.ReadFileHeader(outdated, buffer);
        EXPECT_EQ(outdated, row.isFlagged);
    }
}

TEST_F(FileHeader, CutHeaderKeepsWholeRecords) {
    const Builder whole({{0, "IMU", typeImu}, {8, "DEPTH", typeDepth}},
                        {{typeImu, 2, 11}, {typeDepth, 1, 5}});
    std::size_t ends[5] = {kFileHeaderSize + kChannelRecordSize, kFileHeaderSize + 2 * kChannelRecordSize};
    ends[2] = ends[1] + kDefinitionRecordSize + 11 * kFieldRecordSize;
    ends[3] = ends[2] + kDefinitionRecordSize + 5 * kFieldRecordSize;
    for (std::size_t size = kFileHeaderSize; size < whole.bytes.size(); ++size) {
        Save(Bytes(whole.bytes.begin(), whole.bytes.begin() + static_cast<std::ptrdiff_t>(size)));
        CXpfTarinFileV3 file;
        CXpfFile::HeaderBuffer buffer;
        bool outdated = false;
        ASSERT_TRUE(file.Open(m_path));
        EXPECT_FALSE(file.ReadFileHeader(outdated, buffer));
        EXPECT_TRUE(std::equal(buffer.begin(), buffer.end(), whole.bytes.begin()));
        ASSERT_EQ(file.GetChannels().size(), (size >= ends[0]) + std::size_t{size >= ends[1]}) << size;
        ASSERT_EQ(file.GetDefinitions().size(), (size >= ends[2]) + std::size_t{size >= ends[3]}) << size;
        EXPECT_FALSE(file.GetDataStart().IsKnown());
        EXPECT_EQ(OpenXpfFile(m_path, EFileKind::tarin).how, EOpening::damaged);
        // A read that the end of the file cuts gives the bytes before it.
        Bytes tail(50, 0xEE);
        ASSERT_TRUE(file.Seek(static_cast<std::int64_t>(size) - 20));
        ASSERT_EQ(file.Read(tail.data(), tail.size()), 20u);
        EXPECT_EQ(Bytes(tail.begin(), tail.begin() + 20),
                  Bytes(&whole.bytes[size - 20], &whole.bytes[size - 20] + 20));
        EXPECT_EQ(tail[20], 0xEE);
    }
}

TEST_F(FileHeader, OpensOnlyRegularFiles) {
    CXpfFile file;
    EXPECT_FALSE(file.Open(m_path));
    EXPECT_FALSE(file.Open(m_path.parent_path()));
    EXPECT_FALSE(file.Open("/dev/zero"));
    ASSERT_EQ(mkfifo(m_path.c_str(), 0600), 0);
    EXPECT_FALSE(file.Open(m_path)); // does not wait for a writer
    EXPECT_EQ(OpenXpfFile(m_path, EFileKind::tarin).how, EOpening::unreadable);
    EXPECT_FALSE(file.Seek(0));
    EXPECT_EQ(file.GetFileSize(), 0);
    EXPECT_FALSE(file.GetDataStart().IsKnown());
    std::filesystem::remove(m_path);
    Save(Builder({}).bytes);
    EXPECT_TRUE(file.Open(m_path));
    EXPECT_FALSE(file.Seek(-1));
    EXPECT_TRUE(file.Seek(100));
    EXPECT_EQ(file.GetDataStart().Get(), 123);
    EXPECT_EQ(file.GetPosition(), 100) << "GetDataStart moved the pointer";
    Bytes bytes(100);
    EXPECT_EQ(file.Read(bytes.data(), bytes.size()), 23u);
    EXPECT_EQ(file.GetPosition(), 123);
}

} // namespace
} // namespace Persistance_Xpf
