#include "model/ini_file.h"
#include "model/ins_web_configuration_file.h"
#include "model/simulation_parameters.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>

using namespace Metier_Tarvel;

namespace {

const std::string kHeader =
    "Settings\r\n--------\r\nany line\r\nVersion Loader DSP 1\r\nVersion Firmware DSP 2\r\n"
    "Version Loader CINT 3\r\nVersion Firmware CINT 4\r\n";

class ConfigurationImportTest : public testing::Test {
  protected:
    ConfigurationImportTest() { Reset(); }

    // A new project, without what is not zero from the first, whose recording has a channel for every sensor.
    void Reset() {
        parameters = std::make_unique<CTrvSimulationParameters>();
        parameters->referencePosition = CPosition(0, 0, 0);
        parameters->heaveSeaState = parameters->nelixConfiguration->type->equipment = 0;
        for (const SSensorKind& kind : GetSensorKinds())
            parameters->mainInputFile->AddChannel(1, "c", std::string(kind.className));
    }
    std::filesystem::path Write(const std::string& text) {
        std::ofstream(folder / "ins.txt", std::ios::binary) << text;
        return folder / "ins.txt";
    }
    bool ImportIni(const std::string& text) { return parameters->ImportIniConfiguration(Write(text)); }
    bool ImportWeb(const std::string& lines) {
        CInsWebConfigurationFile file;
        return file.Open(Write(kHeader + lines)) && parameters->ImportWebConfiguration(file);
    }
    // What an import may change, in its order and without what is zero, a line each.
    std::string Imported() {
        std::ostringstream text;
        const auto add = [&text](const std::string& name, auto... values) {
            if (!(values || ...)) return;
            text << name;
            ((text << ' ' << values), ...) << '\n';
        };
        const auto angles = [&add](const std::string& name, const CMisalignment& a) {
            add(name, a.heading, a.roll, a.pitch);
        };
        const auto arm = [&add](const std::string& name, const CLeverArm& a) {
            add(name, a.xv1, a.xv2, a.xv3);
        };
        const CPosition& position = parameters->referencePosition;
        add("position", position.latitude, position.longitude, position.altitude);
        add("sea", parameters->heaveSeaState);
        const CTrvNelixConfiguration& ins = *parameters->nelixConfiguration;
        angles("factory", *ins.factoryMisalignment);
        angles("fine", *ins.fineMisalignment);
        arm("primary", *ins.primaryLeverArm);
        arm("A", *ins.secondaryLeverArmA);
        arm("B", *ins.secondaryLeverArmB);
        arm("C", *ins.secondaryLeverArmC);
        add("rough", ins.roughMisalignment);
        add("type", ins.type->equipment);
        arm("cog", *ins.cogLeverArm);
        for (const auto& sensor : parameters->sensors) {
            const std::string name(sensor->GetRuntimeClass().name.substr(10));
            text << name << '\n';
            if (sensor->GetLeverArm()) arm(name + " arm", *sensor->GetLeverArm());
            if (sensor->GetMisalignment()) angles(name + " angles", *sensor->GetMisalignment());
            if (sensor->GetScaleFactor()) add(name + " scale", *sensor->GetScaleFactor());
            if (const auto* dvl = dynamic_cast<CTrvSensorDvl*>(sensor.get()))
                add(name + " current", dvl->currentModeling->time, dvl->currentModeling->sigma);
            if (const auto* usbl = dynamic_cast<CTrvSensorUsbl*>(sensor.get()))
                text << usbl->transponderCode << '\n';
        }
        return text.str();
    }
    // The sensors in order, each with the first coordinate of its lever arm.
    std::string Turns() {
        std::ostringstream text;
        for (const auto& sensor : parameters->sensors)
            text << sensor->GetRuntimeClass().name.substr(10) << sensor->GetLeverArm()->xv1 << ' ';
        return text.str();
    }

    const std::string kSystem = "[System]\nbias=1,2,3\nAxisor=5\n";
    const std::string kWebIns = "MesaCrt=1,2,3\nLVA=1,2,3,4,5,6,7,8,9,10,11,12\nMesaOrient=24\nCOG=1,2,4\n";

    test::CTemporaryFolder folder;
    std::unique_ptr<CTrvSimulationParameters> parameters;
};

} // namespace

TEST_F(ConfigurationImportTest, IniFileFillsTheProject) {
    ASSERT_TRUE(ImportIni("[Usine]\r\nCRT = 0.1,0.2,0.3\r\n"
                          "[SYSTEM]\r\nposition=48.5,359.5,12\r\nSeaState=2\r\nbias=1,2,3\r\nAxisor=5\r\n"
                          "SecLvArmC=\"3,3,3\"\r\nModeleCourrant=600,0.5\r\n"
                          "[Info]\r\nType=17\r\n[Cog]\r\nLvArm=4,5,6\r\n"
                          "[Dvl]\r\nPort=3\r\nLvArm=1,2,3\r\nMesalign=4,5,6,1.5\r\n"
                          "[Gps]\r\nPort=1\r\nLvArm=7,8,9\r\n[Gps2]\r\nPort=0\r\nLvArm=7,8,9\r\n"
                          "[Usbl1]\r\nPort=2\r\nTpCode=B-12\r\n[Odo]\r\nLvArm=1,1,1\r\n"));
    EXPECT_EQ(Imported(),
              "position 48.5 -0.5 12\nsea 2\nfactory 0.1 0.2 0.3\nfine 1 2 3\nC 3 3 3\nrough 5\ntype 17\ncog "
              "4 5 6\n"
              "Gps\nGps arm 7 8 9\n"
              "Dvl\nDvl arm 1 2 3\nDvl angles 4 5 6\nDvl scale 0.015\nDvl current 600 0.5\nUsbl\nB-12\n");
}

TEST_F(ConfigurationImportTest, WrongIniValuesStopTheImport) {
    parameters->heaveSeaState = 1;
    EXPECT_TRUE(ImportIni(kSystem + "SeaState=4\n"));
    EXPECT_EQ(parameters->heaveSeaState, 1) << "4 is beyond what an INS knows";
    for (const std::string& bad :
         {std::string("[System]\nAxisor=5\n"), std::string("[System]\nbias=1,2,3\n"), std::string(),
          std::string("[System]\nbias=1,2\nAxisor=5\n"), kSystem + "Position=1,2\n",
          kSystem + "Position=1,inf,0\n", kSystem + "[Dvl]\nPort=1\nLvArm=1,2,3\n",
          kSystem + "[Depth]\nPort=1\nLvArm=1,2\n"})
        EXPECT_FALSE(ImportIni(bad)) << bad;
    EXPECT_FALSE(parameters->ImportIniConfiguration(folder / "none.txt"));
}

TEST_F(ConfigurationImportTest, SectionsCountWithoutPorts) {
    ASSERT_TRUE(ImportIni(kSystem +
                          "[Info]\nType=15\n[Gps]\nPort=0\n[Odo]\nMesalign=0,0,0,2\n[Depth]\nLvArm=0,0,0\n"));
    EXPECT_EQ(Imported(), "fine 1 2 3\nrough 5\ntype 15\nGps\nOdometer\nOdometer scale 0.02\n");
    Reset(); // sensors that the recording lacks are passed over
    parameters->mainInputFile->channels.clear();
    EXPECT_TRUE(ImportIni(kSystem + "[Gps]\nPort=1\nLvArm=bad\n"));
    EXPECT_TRUE(parameters->sensors.empty());
}

TEST_F(ConfigurationImportTest, EmbeddedConfigurationFillsTheProject) {
    ASSERT_TRUE(
        ImportWeb("MANPOS=48,-4,7\r\nHeaveConf=3,9\r\nMesaCrt=1,2,3\r\nLVA=1,2,3,4,5,6,7,8,9,10,11,12\r\n"
                  "MesaOrient=23\r\nCOG=1,2,4\r\nnoise\r\n=noise\r\n"
                  "ExtSToSerial=0,1,0,0,2,0,0,9,0,3,0,0,4\r\n"
                  "GPSLVA=1,2,3\r\nDVLLVA=4,5,6\r\nDVLCAL=1,2,3,50\r\nDVLTAM=900,0.25\r\nODOLVA=bad\r\n"
                  "USBL0Conf=T5,1\r\n"));
    EXPECT_EQ(Imported(), "position 48 -4 7\nsea 2\nfine 1 2 3\nprimary 1 2 3\nA 4 5 6\nB 7 8 9\nC 10 11 12\n"
                          "rough 23\ncog 1 2 4\nGps\nGps arm 1 2 3\n"
                          "Dvl\nDvl arm 4 5 6\nDvl angles 1 2 3\nDvl scale 0.5\nDvl current 900 0.25\n"
                          "Usbl\nT5\nOdometer\n");
    EXPECT_TRUE(ImportWeb("HeaveConf=2\n" + kWebIns));
    EXPECT_EQ(parameters->nelixConfiguration->roughMisalignment, 23) << "24 is no orientation";
    EXPECT_EQ(parameters->heaveSeaState, 2);
}

// Every row of both tables: a connected sensor, the place of its values and its turn, whatever the order in
// the file.
TEST_F(ConfigurationImportTest, SensorsAreCreatedInOrder) {
    std::string ini = kSystem, web = kWebIns;
    int length = 10;
    for (const auto& [section, key] : {std::pair{"Odo", "ODO"},
                                       {"Depth", "USBL2"},
                                       {"Lbl", "USBL1"},
                                       {"Usbl2", "USBL0"},
                                       {"Usbl1", "LBL"},
                                       {"Usbl0", "LEM"},
                                       {"Dvl", "DVL"},
                                       {"LochEM", "Depth"},
                                       {"Gps2", "GPS2"},
                                       {"Gps", "GPS"}}) {
        const std::string arm = "LVA=" + std::to_string(length--) + ",0,0\n";
        ini += std::string("[") + section + "]\nPort=1\nMesalign=0,0,0,0\nLvArm" + arm.substr(3);
        web += key + arm;
    }
    ASSERT_TRUE(ImportIni(ini));
    EXPECT_EQ(Turns(), "Gps1 Gps2 EMLog3 Dvl4 Usbl5 Usbl6 Usbl7 Lbl8 Depth9 Odometer10 ");
    parameters->sensors.clear();
    ASSERT_TRUE(ImportWeb(web + "ExtSToSerial=0,1,1,1,1,0,1,0,1,1,1,1,1\n"));
    EXPECT_EQ(Turns(), "Gps1 Gps2 Depth3 Dvl4 EMLog5 Lbl6 Usbl7 Usbl8 Usbl9 Odometer10 ");
}

// Each value in its turn is damaged: what comes before it is taken, it and what follows are not.
TEST_F(ConfigurationImportTest, ValuesBeforeAFailureStay) {
    struct SStep {
        std::string section; // empty in the embedded file
        std::string key;
        std::string good;
        std::string imported;
    };
    const std::vector<SStep> files[] = {
        {{"System", "Position", "1,2,3", "position 1 2 3\n"},
         {"Usine", "CRT", "4,5,6", "factory 4 5 6\n"},
         {"System", "bias", "7,8,9", "fine 7 8 9\n"},
         {"System", "PriLvArm", "1,2,4", "primary 1 2 4\n"},
         {"System", "SecLvArmA", "1,2,5", "A 1 2 5\n"},
         {"System", "SecLvArmB", "1,2,6", "B 1 2 6\n"},
         {"System", "SecLvArmC", "1,2,7", "C 1 2 7\n"},
         {"System", "Axisor", "7", "rough 7\n"},
         {"Cog", "LvArm", "1,2,8", "cog 1 2 8\n"}},
        {{"", "MesaCrt", "7,8,9", "fine 7 8 9\n"},
         {"", "LVA", "1,2,4,1,2,5,1,2,6,1,2,7", "primary 1 2 4\nA 1 2 5\nB 1 2 6\nC 1 2 7\n"},
         {"", "MesaOrient", "7", "rough 7\n"},
         {"", "COG", "1,2,8", "cog 1 2 8\n"}}};
    for (const std::vector<SStep>& steps : files)
        for (std::size_t bad = 0; bad <= steps.size(); ++bad) {
            std::map<std::string, std::string> sections;
            std::string imported;
            for (std::size_t i = 0; i < steps.size(); ++i) {
                sections[steps[i].section] += steps[i].key + "=" + (i == bad ? "x" : steps[i].good) + "\n";
                if (i < bad) imported += steps[i].imported;
            }
            std::string text;
            for (const auto& [section, lines] : sections) text += "[" + section + "]\n" + lines;
            Reset();
            EXPECT_EQ(steps[0].section.empty() ? ImportWeb(sections[""]) : ImportIni(text),
                      bad == steps.size());
            EXPECT_EQ(Imported(), imported) << "with damaged " << bad;
        }
    EXPECT_FALSE(ImportWeb("MesaCrt=1,2,3\nLVA=1,2,3,4,5,6,7,8,9,10,11\nMesaOrient=1\nCOG=1,2,4\n"));
}

TEST_F(ConfigurationImportTest, HeaderMarksEmbeddedFiles) {
    CInsWebConfigurationFile file;
    EXPECT_TRUE(file.Open(Write(kHeader)));
    EXPECT_FALSE(file.Open(Write(kHeader.substr(0, kHeader.find("Version Firmware CINT")))));
    EXPECT_FALSE(file.Open(Write("Settings\n" + kHeader)));
    EXPECT_FALSE(file.Open(folder / "none.txt"));
}

// What the platform's own reader does with each form of a line.
TEST_F(ConfigurationImportTest, IniReaderKeepsTheProfileRules) {
    CIniFile file;
    ASSERT_TRUE(file.Open(
        Write("orphan=1\n;[a]\n [A] rest\n key = v ; w \nkey=second\nq='x y'\n;c=1\nempty=\nn=-12abc\n"
              "lone\nlong=" +
              std::string(400, 'x') + "\n[a]\nlate=1\n[e]\n;only=this\n")));
    EXPECT_EQ(file.GetString("a", "KEY"), "v ; w");
    EXPECT_EQ(file.GetString("a", "q"), "x y");
    EXPECT_EQ(file.GetString("a", "c", "default"), "default");
    EXPECT_EQ(file.GetString("a", "empty", "default"), "");
    EXPECT_EQ(file.GetString("a", "late", "default"), "default") << "the first section of a name counts";
    EXPECT_EQ(file.GetString("a", "long").size(), 255u);
    EXPECT_EQ(file.GetInt("a", "n"), -12);
    EXPECT_EQ(file.GetInt("a", "q"), 0);
    EXPECT_TRUE(file.HasContent("a"));
    EXPECT_FALSE(file.HasContent("e"));

    constexpr std::u16string_view kWide = u"[a]\nk=\u20AC\n[b]\nk=2\n";
    const std::pair<std::string, const char*> encodings[] = {
        {"[a]\nk=\xE9\n[b]\nk=2\n", "\u00E9"},
        {"\xFF\xFE" + std::string(reinterpret_cast<const char*>(kWide.data()), kWide.size() * 2), "\u20AC"},
        // The platform does not know the mark of UTF-8 and takes it as part of the first line.
        {"\xEF\xBB\xBF[a]\nk=1\n[b]\nk=2\n", "none"}};
    for (const auto& [bytes, value] : encodings) {
        ASSERT_TRUE(file.Open(Write(bytes)));
        EXPECT_EQ(file.GetString("a", "k", "none"), value);
        EXPECT_EQ(file.GetString("b", "k"), "2");
    }
}
