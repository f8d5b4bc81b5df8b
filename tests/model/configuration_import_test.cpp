#include "model/ini_file.h"
#include "model/ins_web_configuration_file.h"
#include "model/simulation_parameters.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <map>

using namespace Metier_Tarvel;

namespace {

class ConfigurationImportTest : public testing::Test {
  protected:
    ConfigurationImportTest() {
        for (const SSensorKind& kind : GetSensorKinds())
            parameters.mainInputFile->AddChannel(1, "c", std::string(kind.className));
    }

    std::filesystem::path Write(const std::string& text) {
        std::ofstream(folder / "ins.txt", std::ios::binary) << text;
        return folder / "ins.txt";
    }
    bool ImportIni(const std::string& text) { return parameters.ImportIniConfiguration(Write(text)); }
    bool ImportWeb(const std::string& lines) {
        CInsWebConfigurationFile file;
        return file.Open(Write(kHeader + lines)) && parameters.ImportWebConfiguration(file);
    }
    // The lever arms, first coordinate only, of the sensors in order.
    std::vector<double> LeverArms() {
        std::vector<double> lengths;
        for (const auto& sensor : parameters.sensors) lengths.push_back(sensor->GetLeverArm()->xv1);
        return lengths;
    }
    std::string SensorNames() {
        std::string names;
        for (const auto& sensor : parameters.sensors)
            names += std::string(sensor->GetRuntimeClass().name.substr(10)) + " ";
        return names;
    }
    template <class Sensor>
    Sensor& Get(std::size_t index) {
        return dynamic_cast<Sensor&>(*parameters.sensors.at(index));
    }
    const CTrvNelixConfiguration& Ins() { return *parameters.nelixConfiguration; }

    const std::string kHeader =
        "Settings\r\n--------\r\nany line\r\nVersion Loader DSP 1\r\nVersion Firmware DSP 2\r\n"
        "Version Loader CINT 3\r\nVersion Firmware CINT 4\r\n";
    const std::string kSystem = "[System]\nbias=1,2,3\nAxisor=5\n";

    test::CTemporaryFolder folder;
    CTrvSimulationParameters parameters;
};

} // namespace

TEST_F(ConfigurationImportTest, IniFileFillsTheProject) {
    ASSERT_TRUE(ImportIni("[Usine]\r\nCRT = 0.1,0.2,0.3\r\n"
                          "[SYSTEM]\r\nposition=48.5,359.5,12\r\nSeaState=2\r\nbias=1,2,3\r\nAxisor=5\r\n"
                          "PriLvArm=1,1,1\r\nSecLvArmC=\"3,3,3\"\r\nModeleCourrant=600,0.5\r\n"
                          "[Info]\r\nType=17\r\n[Cog]\r\nLvArm=4,5,6\r\n"
                          "[Dvl]\r\nPort=3\r\nLvArm=1,2,3\r\nMesalign=4,5,6,1.5\r\n"
                          "[Gps]\r\nPort=1\r\nLvArm=7,8,9\r\n[Gps2]\r\nPort=0\r\nLvArm=7,8,9\r\n"
                          "[Usbl1]\r\nPort=2\r\nTpCode=B-12\r\n[Odo]\r\nLvArm=1,1,1\r\n"));
    EXPECT_EQ(parameters.referencePosition.latitude, 48.5);
    EXPECT_EQ(parameters.referencePosition.longitude, -0.5);
    EXPECT_EQ(parameters.heaveSeaState, 2);
    EXPECT_EQ(Ins().factoryMisalignment->pitch, 0.3);
    EXPECT_EQ(Ins().fineMisalignment->heading, 1);
    EXPECT_EQ(Ins().roughMisalignment, 5);
    EXPECT_EQ(Ins().primaryLeverArm->xv2, 1);
    EXPECT_EQ(Ins().secondaryLeverArmC->xv3, 3);
    EXPECT_EQ(Ins().type->accelerometers, 6);
    EXPECT_EQ(Ins().cogLeverArm->xv1, 4);
    ASSERT_EQ(SensorNames(), "Gps Dvl Usbl ");
    EXPECT_EQ(Get<CTrvSensorGps>(0).leverArm->xv3, 9);
    EXPECT_EQ(Get<CTrvSensorDvl>(1).misalignment->roll, 5);
    EXPECT_EQ(Get<CTrvSensorDvl>(1).scaleFactor, 0.015);
    EXPECT_EQ(Get<CTrvSensorDvl>(1).currentModeling->time, 600);
    EXPECT_EQ(Get<CTrvSensorUsbl>(2).transponderCode, "B-12");
}

TEST_F(ConfigurationImportTest, IniValuesThatAreMissingOrWrongStopTheImport) {
    EXPECT_TRUE(ImportIni(kSystem + "SeaState=4\n"));
    EXPECT_EQ(parameters.heaveSeaState, 1) << "4 is beyond what an INS knows";
    for (const char* bad :
         {"[System]\nAxisor=5\n", "[System]\nbias=1,2,3\n", "[System]\nbias=1,2\nAxisor=5\n",
          "[System]\nbias=1,2,x\nAxisor=5\n", "[System]\nbias=1,2,3\nAxisor=5\nPosition=1,2\n",
          "[System]\nbias=1,2,3\nAxisor=5\nPosition=1,inf,0\n", ""})
        EXPECT_FALSE(ImportIni(bad)) << bad;
    EXPECT_FALSE(ImportIni(kSystem + "[Dvl]\nPort=1\nLvArm=1,2,3\n")) << "a DVL needs its misalignment";
    EXPECT_FALSE(ImportIni(kSystem + "[Depth]\nPort=1\nLvArm=1,2\n"));
    EXPECT_FALSE(parameters.ImportIniConfiguration(folder / "none.txt"));
}

TEST_F(ConfigurationImportTest, EquipmentWithoutPortsCountsSectionsByContent) {
    ASSERT_TRUE(ImportIni(kSystem +
                          "[Info]\nType=15\n[Gps]\nPort=0\n[Odo]\nMesalign=0,0,0,2\n[Depth]\nLvArm=0,0,0\n"));
    EXPECT_EQ(SensorNames(), "Gps Odometer ");
    EXPECT_EQ(Get<CTrvSensorOdometer>(1).scaleFactor, 0.02);
}

TEST_F(ConfigurationImportTest, SensorsThatTheRecordingLacksArePassedOver) {
    parameters.mainInputFile->channels.clear();
    EXPECT_TRUE(ImportIni(kSystem + "[Gps]\nPort=1\nLvArm=bad\n"));
    EXPECT_EQ(SensorNames(), "");
}

TEST_F(ConfigurationImportTest, EmbeddedConfigurationFillsTheProject) {
    ASSERT_TRUE(
        ImportWeb("MANPOS=48,-4,7\r\nHeaveConf=3,9\r\nMesaCrt=1,2,3\r\nLVA=1,2,3,4,5,6,7,8,9,10,11,12\r\n"
                  "MesaOrient=23\r\nCOG=1,2,4\r\nnoise\r\n=noise\r\n"
                  "ExtSToSerial=0,1,0,0,2,0,0,9,0,3,0,0,4\r\n"
                  "GPSLVA=1,2,3\r\nDVLLVA=4,5,6\r\nDVLCAL=1,2,3,50\r\nDVLTAM=900,0.25\r\nODOLVA=bad\r\n"
                  "USBL0Conf=T5,1\r\n"));
    EXPECT_EQ(parameters.referencePosition.altitude, 7);
    EXPECT_EQ(parameters.heaveSeaState, 2);
    EXPECT_EQ(Ins().secondaryLeverArmB->xv1, 7);
    EXPECT_EQ(Ins().roughMisalignment, 23);
    EXPECT_EQ(Ins().cogLeverArm->xv3, 4);
    ASSERT_EQ(SensorNames(), "Gps Dvl Usbl Odometer ");
    EXPECT_EQ(Get<CTrvSensorDvl>(1).leverArm->xv3, 6);
    EXPECT_EQ(Get<CTrvSensorDvl>(1).scaleFactor, 0.5);
    EXPECT_EQ(Get<CTrvSensorDvl>(1).currentModeling->sigma, 0.25);
    EXPECT_EQ(Get<CTrvSensorUsbl>(2).transponderCode, "T5");
    EXPECT_EQ(Get<CTrvSensorOdometer>(3).leverArm->xv1, 0);

    EXPECT_TRUE(
        ImportWeb("HeaveConf=2\nMesaCrt=1,2,3\nLVA=1,2,3,4,5,6,7,8,9,10,11,12\nMesaOrient=24\nCOG=1,2,4\n"));
    EXPECT_EQ(Ins().roughMisalignment, 23);
    EXPECT_EQ(parameters.heaveSeaState, 2);
    EXPECT_FALSE(ImportWeb("MesaCrt=1,2,3\nLVA=1,2,3,4,5,6,7,8,9,10,11\nMesaOrient=1\nCOG=1,2,4\n"));
}

// Every row of both tables: a connected sensor, the place of its values and its turn, whatever the order in
// the file.
TEST_F(ConfigurationImportTest, EverySensorIsCreatedInItsTurn) {
    std::string ini = kSystem;
    int length = 10;
    for (const char* section :
         {"Odo", "Depth", "Lbl", "Usbl2", "Usbl1", "Usbl0", "Dvl", "LochEM", "Gps2", "Gps"})
        ini += std::string("[") + section + "]\nPort=1\nMesalign=0,0,0,0\nLvArm=" + std::to_string(length--) +
               ",0,0\n";
    const std::vector<double> turns{1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    ASSERT_TRUE(ImportIni(ini));
    EXPECT_EQ(SensorNames(), "Gps Gps EMLog Dvl Usbl Usbl Usbl Lbl Depth Odometer ");
    EXPECT_EQ(LeverArms(), turns);

    parameters.sensors.clear();
    std::string web = "MesaCrt=1,2,3\nLVA=1,2,3,4,5,6,7,8,9,10,11,12\nMesaOrient=1\nCOG=1,2,4\n";
    length = 10;
    for (const char* key : {"ODO", "USBL2", "USBL1", "USBL0", "LBL", "LEM", "DVL", "Depth", "GPS2", "GPS"})
        web += std::string(key) + "LVA=" + std::to_string(length--) + ",0,0\n";
    ASSERT_TRUE(ImportWeb(web + "ExtSToSerial=0,1,1,1,1,0,1,0,1,1,1,1,1\n"));
    EXPECT_EQ(SensorNames(), "Gps Gps Depth Dvl EMLog Lbl Usbl Usbl Usbl Odometer ");
    EXPECT_EQ(LeverArms(), turns);
}

// Each value in its turn is damaged: what comes before it is taken, it and what follows are not.
TEST_F(ConfigurationImportTest, WhatWasReadBeforeAFailureStays) {
    using Value = std::function<double(const CTrvSimulationParameters&)>;
    struct SStep {
        std::string section; // empty in the embedded file
        std::string key;
        std::string good;
        Value get; // 7 once it has been read
    };
    const auto ins = [](auto member) {
        return [member](const CTrvSimulationParameters& p) { return member(*p.nelixConfiguration); };
    };
    using Ins = const CTrvNelixConfiguration&;
    const Value factory = ins([](Ins i) { return i.factoryMisalignment->heading; });
    const Value fine = ins([](Ins i) { return i.fineMisalignment->heading; });
    const Value primary = ins([](Ins i) { return i.primaryLeverArm->xv1; });
    const Value armC = ins([](Ins i) { return i.secondaryLeverArmC->xv1; });
    const Value rough = ins([](Ins i) { return static_cast<double>(i.roughMisalignment); });
    const Value centre = ins([](Ins i) { return i.cogLeverArm->xv1; });
    const std::vector<SStep> files[] = {
        {{"System", "Position", "7,7,7", [](const auto& p) { return p.referencePosition.latitude; }},
         {"Usine", "CRT", "7,7,7", factory},
         {"System", "bias", "7,7,7", fine},
         {"System", "PriLvArm", "7,7,7", primary},
         {"System", "SecLvArmA", "7,7,7", ins([](Ins i) { return i.secondaryLeverArmA->xv1; })},
         {"System", "SecLvArmB", "7,7,7", ins([](Ins i) { return i.secondaryLeverArmB->xv1; })},
         {"System", "SecLvArmC", "7,7,7", armC},
         {"System", "Axisor", "7", rough},
         {"Cog", "LvArm", "7,7,7", centre}},
        {{"", "MesaCrt", "7,7,7", fine},
         {"", "LVA", "7,7,7,7,7,7,7,7,7,7,7,7", armC},
         {"", "MesaOrient", "7", rough},
         {"", "COG", "7,7,7", centre}},
    };
    for (const std::vector<SStep>& steps : files) {
        for (std::size_t bad = 0; bad <= steps.size(); ++bad) {
            std::map<std::string, std::string> sections;
            for (std::size_t i = 0; i < steps.size(); ++i)
                sections[steps[i].section] += steps[i].key + "=" + (i == bad ? "x" : steps[i].good) + "\n";
            CTrvSimulationParameters fresh;
            if (const auto embedded = sections.find(""); embedded != sections.end()) {
                CInsWebConfigurationFile file;
                ASSERT_TRUE(file.Open(Write(kHeader + embedded->second)));
                EXPECT_EQ(fresh.ImportWebConfiguration(file), bad == steps.size()) << bad;
            } else {
                std::string text;
                for (const auto& [section, lines] : sections) text += "[" + section + "]\n" + lines;
                EXPECT_EQ(fresh.ImportIniConfiguration(Write(text)), bad == steps.size()) << bad;
            }
            for (std::size_t i = 0; i < steps.size(); ++i)
                EXPECT_EQ(steps[i].get(fresh) == 7, i < bad) << steps[i].key << " with damaged " << bad;
        }
    }
}

TEST_F(ConfigurationImportTest, EmbeddedFileIsKnownByItsHeader) {
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

    struct SEncoding {
        std::string bytes;
        const char* first;
        const char* second;
    };
    constexpr std::u16string_view kWide = u"[a]\nk=\u20AC\n[b]\nk=2\n";
    const SEncoding encodings[] = {
        {"[a]\nk=\xE9\n[b]\nk=2\n", "\u00E9", "2"},
        {"\xFF\xFE" + std::string(reinterpret_cast<const char*>(kWide.data()), kWide.size() * 2), "\u20AC",
         "2"},
        // The platform does not know the mark of UTF-8 and takes it as part of the first line.
        {"\xEF\xBB\xBF[a]\nk=1\n[b]\nk=2\n", "none", "2"},
    };
    for (const SEncoding& test : encodings) {
        ASSERT_TRUE(file.Open(Write(test.bytes)));
        EXPECT_EQ(file.GetString("a", "k", "none"), test.first);
        EXPECT_EQ(file.GetString("b", "k", "none"), test.second);
    }
}
