#include "model/simulation_parameters.h"

#include "foundation/files.h"
#include "model/imu_channel.h"
#include "recording/recording_writer.h"
#include "support/temporary_folder.h"
#include "xpf/packets.h"
#include "xpf/records.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

using namespace Metier_Tarvel;
using namespace Persistance_Xpf;

namespace {

class SimulationParametersTest : public testing::Test {
  protected:
    // A recording of `count` IMU packets, `ticks` apart, whose counter starts at `counter` and runs to 5999.
    std::filesystem::path Record(int count, std::int64_t ticks, int counter, std::uint8_t system = 14,
                                 std::uint8_t data = 2) {
        const std::string_view channels[] = {"IMU", "GPS_1", "GPS_2", "SYNCHRO_1", "UTC"};
        Enregistrement::CRecordingWriter writer;
        EXPECT_TRUE(writer.Create(folder / "main.tarin", channels));
        for (int i = 0; i < count; ++i) {
            CXpfTarinImuPacketV2 imu;
            imu.SetDate(0, CDateTimeSpan(5'000'000 + i * ticks));
            imu.SetUInt16(1, static_cast<std::uint16_t>((counter + i) % 6000));
            imu.SetUInt8(2, system);
            imu.SetUInt8(3, data);
            EXPECT_TRUE(writer.Write("IMU", imu));
            EXPECT_TRUE(writer.Write("GPS_1", CXpfTarinGpsPacketV2()));
        }
        EXPECT_TRUE(writer.Close());
        return folder / "main.tarin";
    }

    test::CTemporaryFolder folder;
};

} // namespace

TEST_F(SimulationParametersTest, NewRunListsRecordedChannels) {
    CTrvSimulationParameters parameters(Record(1, 1, 0), folder / "main.tarout");
    std::vector<std::string> found;
    for (const auto& channel : parameters.mainInputFile->channels)
        found.push_back(channel->name + ":" + channel->sensorClass);
    EXPECT_EQ(found, (std::vector<std::string>{"IMU:", "GPS_1:CTrvSensorGps", "GPS_2:CTrvSensorGps",
                                               "SYNCHRO_1:CTrvSensorEventMarker", "UTC:"}));
    EXPECT_EQ(parameters.heaveAlgorithm, 2);
    EXPECT_EQ(parameters.heaveSeaState, 0);

    CTrvSensor* gps = parameters.AddSensor(ESensorKind::gps);
    ASSERT_TRUE(gps);
    EXPECT_EQ(gps->channel, parameters.mainInputFile->FindChannel("GPS_1"));
    EXPECT_EQ(gps->rejectionGroups.at(0)->name, "Horizontal rejections");
    EXPECT_TRUE(gps->GetStdDevInstructions()[0]->isDefault);
    EXPECT_FALSE(parameters.AddSensor(ESensorKind::dvl)) << "the recording has no channel for it";
    EXPECT_TRUE(parameters.sensors.size() == 1 && parameters.RemoveSensor(gps) && parameters.sensors.empty());
    EXPECT_FALSE(parameters.RemoveSensor(gps));
}

TEST_F(SimulationParametersTest, SensorKindsHaveAMaximum) {
    CTrvSimulationParameters parameters;
    const int maxima[kSensorKindCount] = {3, 1, 1, 1, 3, 1, 1, 4, 1};
    for (const SSensorKind& kind : GetSensorKinds()) {
        parameters.mainInputFile->AddChannel(1, "c", std::string(kind.className));
        for (int i = 0; i < maxima[static_cast<int>(kind.kind)]; ++i) {
            CTrvSensor* sensor = parameters.AddSensor(kind.kind);
            ASSERT_TRUE(sensor) << kind.className;
            EXPECT_EQ(sensor->GetRuntimeClass().name, kind.className);
        }
        EXPECT_FALSE(parameters.CanAddSensor(kind.kind));
        EXPECT_FALSE(parameters.AddSensor(kind.kind)) << kind.className;
    }
    EXPECT_EQ(parameters.sensors.size(), 16u);
}

TEST_F(SimulationParametersTest, AltitudeModesDependOnEquipment) {
    CTrvSimulationParameters parameters;
    for (std::int32_t code = 0; code <= 20; ++code) {
        parameters.nelixConfiguration->type->SetFromEquipment(code);
        const bool without = code == 13 || code == 14 || code == 15 || code == 18;
        EXPECT_EQ(parameters.AddAltitudeMode() == nullptr, without) << code;
    }
    const CTrvAltitudeMode* first = parameters.altitudeModes.front().get();
    EXPECT_TRUE(parameters.RemoveAltitudeMode(first));
    EXPECT_FALSE(parameters.RemoveAltitudeMode(first));
}

TEST_F(SimulationParametersTest, UnusedExternalFilesGo) {
    const std::filesystem::path main = Record(1, 1, 0);
    std::filesystem::copy_file(main, folder / "other.tarin");
    CTrvSimulationParameters parameters(main, folder / "main.tarout");
    EXPECT_FALSE(parameters.AddDataFile(folder / "MAIN.tarin")) << "only the case differs";
    EXPECT_FALSE(parameters.AddDataFile(folder / "main.TAROUT"));
    CTrvDataFile* other = parameters.AddDataFile(folder / "other.tarin");
    ASSERT_TRUE(other);
    EXPECT_EQ(other->channels.size(), 5u);
    EXPECT_FALSE(parameters.AddDataFile(folder / "Other.tarin"));
    EXPECT_FALSE(parameters.AddDataFile(folder / "none.tarin"));

    CTrvSensor* gps = parameters.AddSensor(ESensorKind::gps);
    gps->channel = other->FindChannelForSensor(*gps);
    EXPECT_FALSE(parameters.RemoveDataFile(other));
    EXPECT_FALSE(parameters.RemoveDataFile(parameters.mainInputFile.get()));
    gps->channel = parameters.mainInputFile->FindChannelForSensor(*gps);
    EXPECT_TRUE(parameters.RemoveDataFile(other));
    EXPECT_TRUE(parameters.externalFiles.empty());
}

// The header says how many channels follow; the file may end anywhere.
TEST_F(SimulationParametersTest, CutHeaderKeepsItsFirstChannels) {
    const std::filesystem::path whole = Record(1, 1, 0);
    for (const auto& [size, channels] :
         {std::pair{0, 0}, {122, 0}, {123, 0}, {123 + 83, 0}, {123 + 84, 1}, {123 + 4 * 84 + 1, 4}}) {
        const std::filesystem::path cut = folder / "cut.tarin";
        std::filesystem::copy_file(whole, cut, std::filesystem::copy_options::overwrite_existing);
        std::filesystem::resize_file(cut, static_cast<std::uintmax_t>(size));
        CTrvSimulationParameters parameters(cut, folder / "cut.tarout");
        EXPECT_EQ(parameters.mainInputFile->channels.size(), static_cast<std::size_t>(channels)) << size;
        CTrvSimulationParameters other;
        EXPECT_FALSE(other.AddDataFile(cut)) << size;
    }
}

TEST_F(SimulationParametersTest, MeasuresTheImuFrequency) {
    struct SCase {
        int packets;
        std::int64_t ticks; // between packets
        int counter;
        bool valid;
        int frequency;
    };
    for (const SCase& test : {SCase{150, 50'000, 0, true, 200}, SCase{101, 100'000, 5990, true, 100},
                              SCase{101, 500'000, 5999, true, 20}, SCase{101, 270'270, 0, false, 37},
                              SCase{100, 50'000, 0, false, 0}, SCase{101, 0, 0, false, 0}}) {
        std::int32_t frequency = -1;
        const auto path = Record(test.packets, test.ticks, test.counter);
        EXPECT_EQ(MeasureImuFrequency(path, frequency), test.valid) << test.ticks;
        EXPECT_EQ(frequency, test.frequency) << test.ticks;
    }

    // Packets whose damaged numbers all are the first one's: no more of them are read than of whole ones.
    const std::filesystem::path damaged = Record(300, 50'000, 0);
    auto bytes = *Outils_Fichiers::ReadWholeFile(damaged, 1 << 24);
    for (std::size_t at = 0; at + kPacketHeaderSize < bytes.size(); ++at) {
        SPacketHeader header;
        std::memcpy(&header, &bytes[at], sizeof header);
        if (header.Check())
            std::memset(&bytes[at + offsetof(SPacketHeader, number)], 0, sizeof header.number);
    }
    ASSERT_TRUE(Outils_Fichiers::WriteWholeFile(damaged, bytes));
    std::int32_t frequency = 0;
    EXPECT_TRUE(MeasureImuFrequency(damaged, frequency));
    EXPECT_EQ(frequency, 200);
}

TEST_F(SimulationParametersTest, ReadsSpanEquipmentAndCipher) {
    const auto path = Record(31, 50'000, 0, 14, 2);
    CTrvSimulationParameters parameters(path, folder / "o.tarout");
    CDateTimeSpan first, last;
    std::int32_t code = 0;
    ASSERT_TRUE(parameters.ReadTimeSpan(first, last));
    EXPECT_EQ(first.GetTicks(), 5'000'000);
    EXPECT_EQ(last.GetTicks(), 6'500'000);
    ASSERT_TRUE(parameters.ReadEquipmentCode(code));
    EXPECT_EQ(code, 14);
    EXPECT_EQ(ReadImuCipherMode(path), 2);

    Record(1, 1, 0, 9, 3);
    EXPECT_EQ(ReadImuCipherMode(path), 0);
    Outils::CEvent given;
    given.Set();
    EXPECT_FALSE(parameters.ReadEquipmentCode(code, &given));
    Record(0, 1, 0);
    EXPECT_FALSE(parameters.ReadTimeSpan(first, last));
    EXPECT_FALSE(parameters.ReadEquipmentCode(code));
    EXPECT_EQ(last.GetTicks(), 6'500'000);
}

TEST(NelixType, UnknownCodesHaveTheirText) {
    CTrvNelixType type;
    type.SetFromEquipment(18);
    EXPECT_EQ(type.housing, 8);
    EXPECT_EQ(type.algorithm, 2);
    EXPECT_EQ(type.GetFieldText(CTrvNelixType::fieldSaturation), "air");
    type.SetFromEquipment(20);
    EXPECT_EQ(type.equipment, 0);
    EXPECT_EQ(type.GetFieldText(CTrvNelixType::fieldAlgorithm), "Unknow (0000h)");
    type.housing = -1;
    EXPECT_EQ(type.GetFieldText(CTrvNelixType::fieldHousing), "Unknow (FFFFFFFFh)");
    for (const SWordList& list : GetWordLists()) {
        EXPECT_EQ(&GetWordList(list.list), &list);
        for (int value = 0; value <= list.count; ++value)
            EXPECT_EQ(GetWord(list.list, value) == "?", value == list.count) << list.name;
    }
}
