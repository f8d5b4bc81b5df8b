#include "model/dictionary/file_description.h"
#include "model/dictionary/visibility.h"
#include "model/project.h"
#include "recording/recording_writer.h"
#include "support/temporary_folder.h"
#include "xpf/packets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <set>

using namespace Metier_Tarvel;
using namespace Metier_Tarvel_DataModel;
using namespace Persistance_Xpf;

namespace {

class DataModelTest : public testing::Test {
  protected:
    std::filesystem::path Create(const char* name, std::initializer_list<std::string_view> channels) {
        Enregistrement::CRecordingWriter writer;
        EXPECT_TRUE(writer.Create(folder / name, std::vector<std::string_view>(channels)));
        return folder / name;
    }
    // Overwrites header bytes of a file.
    void Patch(const std::filesystem::path& path, std::streamoff at, std::string_view bytes) {
        std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(at);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }
    static bool HasMeasure(const CTrvDataLayer& layer, std::string_view name) {
        return std::ranges::any_of(layer.m_measures,
                                   [&](const auto& measure) { return measure->m_name == name; });
    }
    const CTrvDataLayer& Layer(std::string_view name) {
        for (const auto& layer : model.m_layers)
            if (layer->m_name == name) return *layer;
        static const CTrvDataLayer none;
        ADD_FAILURE() << name;
        return none;
    }
    std::vector<std::string> Names() {
        std::vector<std::string> names;
        for (const auto& layer : model.m_layers) names.push_back(layer->m_name);
        return names;
    }

    static constexpr std::streamoff kDefinitions = 123 + 84; // of a file with one channel
    static constexpr std::streamoff kFields = kDefinitions + 8;

    test::CTemporaryFolder folder;
    CTrvDataModel model;
};

using List = std::vector<std::string>;

} // namespace

TEST_F(DataModelTest, LayersHoldVisibleFields) {
    CTrvSimulationParameters parameters(Create("a.tarin", {"IMU", "GPS_1", "TEMPERATURE", "NELIX_NAV"}),
                                        Create("a.tarout", {"MORVEX_STD", "MORVEX_MSG", "MORVEX_EXT"}));
    CTrvDataFile& input = *parameters.mainInputFile;
    CTrvDataFile& output = *parameters.outputFile;
    ASSERT_TRUE(model.BuildFromFile(input, false));
    ASSERT_TRUE(model.BuildFromFile(output, false));
    EXPECT_EQ(Names(),
              (List{"IMU", "GPS_1", "TEMPERATURE", "NELIX_NAV", "MORVEX_STD", "MORVEX_MSG", "MORVEX_EXT"}));

    const CTrvDataLayer& gps = Layer("GPS_1");
    const CTrvMeasureDef* latitude = CTrvDataModel::FindMeasure(gps, kGpsLayout.IndexOf("Latitude"));
    ASSERT_TRUE(latitude);
    EXPECT_EQ(latitude->m_nature, natureLatitude);
    EXPECT_EQ(latitude->m_layer, &gps);
    EXPECT_FALSE(CTrvDataModel::FindMeasure(gps, kGpsLayout.IndexOf("Delay")));
    EXPECT_EQ(gps.m_measures.size(), 8u);
    EXPECT_FALSE(gps.m_enums.at(0)->m_literals.empty());

    EXPECT_TRUE(model.SetLayerHasData(&input, gps.m_channelNumber));
    EXPECT_FALSE(model.SetLayerHasData(&input, 999));
    EXPECT_TRUE(gps.m_hasData);
    EXPECT_EQ(Layer("MORVEX_STD").m_enums.size(), 62u);
    for (const bool expert : {false, true}) {
        model.BuildFromFile(input, expert);
        model.BuildFromFile(output, expert);
        EXPECT_EQ(Names().size(), 7u);
        EXPECT_EQ(Layer("TEMPERATURE").m_measures.size(), expert ? 8u : 0u);
        EXPECT_EQ(Layer("MORVEX_EXT").m_measures.size(), expert ? 6u : 0u);
        for (const char* name : {"MORVEX_MSG", "MORVEX_EXT"}) EXPECT_TRUE(Layer(name).m_enums.empty());
    }

    model.RemoveLayers(&input);
    EXPECT_EQ(Names(), (List{"MORVEX_STD", "MORVEX_MSG", "MORVEX_EXT"}));
}

// Each block of the two tables: how many of all known fields it hides and shows. Hidden are those that serve
// the system itself, and the states of the engine.
TEST(Visibility, BlocksHoldAllFields) {
    using enum EFileKind;
    const std::tuple<EFileKind, std::uint16_t, std::uint32_t, std::size_t, std::size_t> blocks[] = {
        {tarin, typeImu, 2, 4, 7},          {tarin, typeImu, 1, 7, 7},
        {tarin, typeDvl, 1, 3, 9},          {tarin, typeEMLog, 1, 3, 2},
        {tarin, typeGps, 2, 5, 8},          {tarin, typeGps, 1, 5, 7},
        {tarin, typeDepth, 1, 3, 2},        {tarin, typeUsbl, 1, 5, 8},
        {tarin, typeLbl, 1, 4, 5},          {tarin, typeUtc, 2, 3, 6},
        {tarin, typeUtc, 1, 3, 6},          {tarin, typeOdometer, 2, 3, 2},
        {tarin, typeOdometer, 1, 3, 2},     {tarin, typeSynchro, 2, 3, 1},
        {tarin, typeSynchro, 1, 3, 0},      {tarin, typeNelixNav, 2, 4, 9},
        {tarin, typeNelixNav, 1, 1, 5},     {tarin, typeTemperature, 1, 1, 0},
        {tarout, typeMorvexStd, 2, 12, 40}, {tarin, typePlatformOrientation, 1, 1, 3},
        {tarout, typeMorvexStd, 1, 10, 40}, {tarout, typeMorvexMsg, 1, 3, 0},
        {tarout, typeMorvexExt, 1, 65, 0},  {tarout, typeMorvexSta, 1, 5, 0}};
    const std::string hideable =
        "|Date|Delay|Rejection|Horizontal rejection|Vertical rejection|GPS mode|Beacon|FrameCounter|System "
        "type"
        "|Data type|Algorithm status 1|Algorithm status 2|Algorithm status 3|Sensor|SensorData|UTC Year|UTC "
        "Month"
        "|UTC Day|UTC Hour|UTC Minute|UTC Second|Level|Text|Vector size|Vector|Matrix size|Matrix|";
    std::set<std::string_view> names{"Temperatures", "Distance",    "Std. dev. distance",
                                     "Speed",        "Vector size", "Vector",
                                     "Matrix size",  "Matrix",      "Novelty"};
    for (std::uint16_t type = typeImu; type <= typePlatformOrientation; ++type)
        if (const SPacketLayout* layout = FindPacketLayout(type))
            for (const SFieldLayout& field : layout->fields) names.insert(field.name);

    for (const auto& [kind, type, version, hiddenCount, visibleCount] : blocks) {
        SCOPED_TRACE(testing::Message() << type << " version " << version);
        std::size_t hidden = 0, visible = 0;
        for (const std::string_view name : names) {
            const EVisibility visibility = GetVisibility(kind, type, version, name);
            visible += visibility == EVisibility::visible;
            if (visibility != EVisibility::hidden) continue;
            ++hidden;
            EXPECT_TRUE(hideable.find("|" + std::string(name) + "|") != std::string::npos ||
                        (type == typeMorvexExt && name.find("bias") == std::string_view::npos))
                << name;
        }
        EXPECT_EQ(hidden, hiddenCount);
        EXPECT_EQ(visible, visibleCount);
        EXPECT_EQ(GetVisibility(kind, type, 3, "Date"), EVisibility::expertOnly);
    }
}

TEST_F(DataModelTest, ExpertsSeeFieldsOfNoTable) {
    const auto path = Create("a.tarin", {"IMU"});
    Patch(path, kDefinitions + 2, "\1"); // the first layout, which had no natures
    const auto rename = [&](int field, std::string_view name) {
        Patch(path, kFields + field * 100, std::string(name) + '\0');
    };
    // Natures of "Fog 1" to "Fog 3": none; none of a field of another type; a foreign one.
    for (int field = 4; field < 7; ++field)
        Patch(path, kFields + field * 100 + 99, field < 6 ? std::string_view("\0", 1) : "\3");
    Patch(path, kFields + 5 * 100 + 30, "\2");
    rename(7, "Temperatures");
    rename(8, "Novelty");
    rename(9, "Novel list");
    Patch(path, kFields + 9 * 100 + 31, std::string_view("\4\0\0\0", 4)); // elements
    rename(10, "Former status word");
    CTrvSimulationParameters parameters(path, folder / "a.tarout");
    for (const bool expert : {false, true}) {
        model.BuildFromFile(*parameters.mainInputFile, expert);
        EXPECT_EQ(HasMeasure(Layer("IMU"), "Temperatures"), expert);
        EXPECT_EQ(HasMeasure(Layer("IMU"), "Novelty"), expert);
        EXPECT_FALSE(HasMeasure(Layer("IMU"), "Novel list")) << "several elements are no measure";
        EXPECT_FALSE(HasMeasure(Layer("IMU"), "Former status word"));
        EXPECT_EQ(CTrvDataModel::FindMeasure(Layer("IMU"), 4)->m_nature, natureRawFog);
        EXPECT_EQ(CTrvDataModel::FindMeasure(Layer("IMU"), 5)->m_nature, natureUnknown);
        EXPECT_EQ(CTrvDataModel::FindMeasure(Layer("IMU"), 6)->m_nature, naturePositionStdDev);
    }
    Patch(path, 123 + 2, "SUB"); // the name of the channel
    model.BuildFromFile(*parameters.mainInputFile, true);
    EXPECT_EQ(CTrvDataModel::FindMeasure(Layer("SUB"), 4)->m_nature, natureUnknown);
}

TEST_F(DataModelTest, RefreshKeepsTheLayersThatStay) {
    CTrvSimulationParameters parameters(Create("a.tarin", {"IMU", "GPS_1"}), folder / "a.tarout");
    CTrvDataFile& file = *parameters.mainInputFile;
    const auto refresh = [&] {
        SFileDescription description;
        ReadFileDescription(file.path, description);
        return model.Refresh(file, description, false);
    };
    model.BuildFromFile(file, false);
    const CTrvDataLayer* gps = &Layer("GPS_1");
    CTrvDataLayer& foreign = *model.m_layers.emplace_back(std::make_unique<CTrvDataLayer>());
    foreign.m_name = "LBL";
    foreign.m_dataFile = parameters.outputFile.get();
    EXPECT_FALSE(refresh());
    Create("a.tarin", {"GPS_1", "DEPTH"});
    EXPECT_TRUE(refresh());
    EXPECT_EQ(Names(), (List{"GPS_1", "LBL", "DEPTH"}));
    EXPECT_EQ(&Layer("GPS_1"), gps);

    // Of layers with one name the first stays.
    CTrvDataLayer& twin = *model.m_layers.emplace_back(std::make_unique<CTrvDataLayer>());
    twin.m_name = "GPS_1";
    twin.m_dataFile = &file;
    EXPECT_TRUE(refresh());
    EXPECT_EQ(Names(), (List{"GPS_1", "LBL", "DEPTH"}));
    EXPECT_EQ(&Layer("GPS_1"), gps);
    std::filesystem::remove(file.path);
    EXPECT_TRUE(refresh());
    EXPECT_EQ(Names(), (List{"LBL"}));
}

TEST_F(DataModelTest, CutHeaderGivesWholeRecords) {
    const auto path = Create("a.tarin", {"IMU", "GPS_1"});
    CTrvSimulationParameters parameters(path, folder / "a.tarout");
    std::vector<List> names; // from the end on
    for (auto size = std::filesystem::file_size(path); size-- > 0;) {
        std::filesystem::resize_file(path, size);
        EXPECT_FALSE(model.BuildFromFile(*parameters.mainInputFile, true)) << size;
        if (names.empty() || names.back() != Names()) names.push_back(Names());
    }
    EXPECT_EQ(names, (std::vector<List>{{"IMU"}, {}})) << "a layer needs the description of its packets";
}

// Thousands of channels and definitions of one type, each pair of which would be a layer's worth of fields.
TEST_F(DataModelTest, MultiplyingHeadersAreCutOff) {
    const auto path = Create("a.tarin", {"GPS_1"});
    std::ifstream in(path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), {});
    std::string header = bytes.substr(0, 123);
    header[119] = header[120] = header[121] = header[122] = '\x7F';
    std::ofstream out(folder / "b.tarin", std::ios::binary);
    out << header;
    for (int i = 0; i < 0x7F7F; ++i) out << bytes.substr(123, 84);
    for (int i = 0; i < 0x7F7F; ++i) out << std::string_view("\3\0\2\0\0\0\0\0", 8);
    out.close();
    CTrvSimulationParameters parameters(folder / "b.tarin", folder / "b.tarout");
    EXPECT_FALSE(model.BuildFromFile(*parameters.mainInputFile, false));
    EXPECT_LT(model.m_layers.size(), 1000u);
}
