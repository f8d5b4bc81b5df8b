// The commands that run converters, export tools and the updater, with shell scripts in their place.
#include "batch/batch_fixture.h"

#include "simulator/mission_writer.h"

#include <gmock/gmock.h>

using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class ToolCommands : public test::Batch {
  protected:
    ToolCommands() {
        std::filesystem::create_directory(Path("Qetral"));
        std::ofstream settings(Path("Qetral/VarneNav.conf.xml"));
        settings << "<configuration><process>";
        for (const char* key : {"depth2Tarin", "kolt2Tarin", "decodedNelix2Tarin", "postProNelixDecode",
                                "tarin2Kml", "tarout2Txt", "tarin2Txt", "fileUpdater"})
            settings << '<' << key << '>' << Path("tool.sh") << "</" << key << '>';
        settings << "</process><simpleImporter><kolt><beaconNumber>77</beaconNumber></kolt></simpleImporter>"
                    "</configuration>";
        Install("echo made > \"$last\"; echo 'progress 50'; echo 'message info done'");
        std::ofstream(Path("depth.txt")) << "DEPTH TO VARNE NAV EXTERNAL DATA\n";
        std::ofstream(Path("b.log")) << "$PTSAG\n";
    }
    // A tool that writes down its arguments, waits for "start", and does as the script says.
    void Install(const std::string& script) {
        std::ofstream(Path("tool.sh")) << "#!/bin/sh\nprintf '%s ' \"$@\" > " << Path("arguments")
                                       << "\nfor last; do :; done\nread word\n"
                                       << script << '\n';
        std::filesystem::permissions(Path("tool.sh"), std::filesystem::perms::owner_all);
    }
    // What the tool was given, without the folder of the test.
    std::string TakeArguments() {
        std::string text = TextOf("arguments");
        for (std::size_t at; (at = text.find(Path(""))) != text.npos;) text.erase(at, Path("").size());
        std::filesystem::remove(Path("arguments"));
        return text;
    }
    void MakeProject() {
        Simulation::SMissionOptions options;
        options.duration = 10;
        options.alignmentDuration = 5;
        options.channels = {"IMU", "GPS_1", "USBL_1", "UTC"};
        std::string error;
        ASSERT_TRUE(WriteMission(options, Path("m.tarin"), {}, error)) << error;
        Succeed("create /m.tarin /m.tarprj");
    }
};

} // namespace

TEST_F(ToolCommands, ImportRunsTheConverterOfTheKind) {
    const struct {
        const char* line;
        const char* arguments;
    } cases[] = {
        {"import auto /depth.txt /o.tarin", "/remote depth.txt o.tarin "},
        // A script does the same on every desk: what the dialog remembers is no default.
        {"import KOLT /b.log /o.tarin --overwrite", "/remote /beacon 1 b.log o.tarin "},
        {"import kolt /b.log /o.tarin --beacon 5 --overwrite", "/remote /beacon 5 b.log o.tarin "},
        {"import ins /b.log /depth.txt /o.tarin --utc 2026-03-01 --skip 3 --overwrite",
         "/remote /f tarin /utc 2026-03-01 /skip 3 /decipher yes /sort alpha b.log depth.txt /o o.tarin "},
        {"import ins /b.log /o.tarin --utc 2026-03-01 --ccd on --overwrite",
         "/remote /f tarin /utc 2026-03-01 /decipher yes /ccd on b.log /o o.tarin "},
        {"import decoded /b.log /o.tarin --e 14 --utc 2026-03-01 --overwrite",
         "/remote /e 14 /utc 2026-03-01 /cycle 86400 /imu5msOffset yes b.log o.tarin "},
    };
    for (const auto& c : cases) {
        Succeed(c.line);
        EXPECT_EQ(TakeArguments(), c.arguments) << c.line;
        EXPECT_EQ(TextOf("o.tarin"), "made\n");
        EXPECT_THAT(m_out, testing::AllOf(HasSubstr("INFO"), HasSubstr("done")));
        EXPECT_THAT(m_error, testing::AnyOf(IsEmpty(), HasSubstr("will be overwritten"))) << c.line;
    }
}

TEST_F(ToolCommands, ImportRefusesWhatMakesNoSense) {
    std::ofstream(Path("taken.tarin")) << "precious";
    std::ofstream(Path("odd.bin")) << "nothing known";
    const struct {
        const char* line;
        int status;
        const char* error;
    } cases[] = {
        {"import auto /odd.bin /o.tarin", 1, "no kind that a converter reads"},
        {"import telex /b.log /o.tarin", 2, "use one of nmea, kolt"},
        {"import depth /depth.txt /taken.tarin", 1, "there is a file of this name already"},
        {"import depth /missing.txt /o.tarin", 1, "missing.txt"},
        {"import depth /depth.txt", 2, "varnenav-batch import KIND|auto SOURCE... TARGET"},
        {"import depth /depth.txt /b.log /o.tarin", 1, "one file"},
        {"import depth /depth.txt /depth.txt --overwrite", 1, "the source itself"},
        {"import depth /depth.txt /o.tarin --beacon 5", 2, "the format depth has no option --beacon"},
        {"import kolt /b.log /o.tarin --beacon 128", 1, "Beacon number must be an integer between 1 and 127"},
        {"import ins /b.log /o.tarin", 1, "Please enter a valid date"},
        {"import ins /b.log /o.tarin --decipher perhaps", 2, "--decipher"},
        {"import nmea /b.log /o.tarin", 1, "Launching of the child process Failed"}, // none is installed
    };
    std::ofstream(Path("Qetral/VarneNav.conf.xml"))
        << "<configuration><process><nmea2Tarin>none.exe</nmea2Tarin></process></configuration>";
    for (const auto& c : cases) {
        EXPECT_EQ(Run(c.line), c.status) << c.line;
        EXPECT_THAT(m_error, HasSubstr(c.error)) << c.line;
        EXPECT_FALSE(std::filesystem::exists(Path("o.tarin"))) << c.line;
    }
    EXPECT_EQ(TextOf("taken.tarin"), "precious");
}

TEST_F(ToolCommands, FailedToolFailsTheCommand) {
    const std::pair<const char*, const char*> scripts[] = {
        {"echo 'message error \"no depth in it\"'; exit 1", "no depth in it"},
        {"echo x > \"$last\"; kill -9 $$", ""},
        {"exit 0", "has made no file"},
    };
    for (const auto& [script, error] : scripts) {
        Install(script);
        EXPECT_EQ(Run("import depth /depth.txt /o.tarin --overwrite"), 1) << script;
        EXPECT_THAT(m_error, HasSubstr(error)) << script;
    }
}

TEST_F(ToolCommands, ExportTakesAProjectOrAFile) {
    MakeProject();
    std::filesystem::copy_file(Path("m.tarin"), Path("m.tarout")); // the script does not read it
    const struct {
        const char* line;
        const char* arguments;
    } cases[] = {
        {"export txt /m.tarprj /o.csv", "/remote /header on /imu off m.tarout o.csv "},
        {"export txt /m.tarprj /o.csv --source main --header off --from 2 --overwrite",
         "/remote /header off /from 2.000 m.tarin o.csv "},
        {"export txt /m.tarprj /o.csv --source m.tarin --to 3.5 --overwrite",
         "/remote /header on /to 3.500 m.tarin o.csv "},
        {"export kml /m.tarin /o.csv --c usbl_1 --trackColor FF00FF00 --dec 5 --overwrite",
         "/remote /c USBL_1 /showTime on /track on /trackColor FF00FF00 /lv 0 /dec 5 m.tarin o.csv "},
    };
    for (const auto& c : cases) {
        Succeed(c.line);
        EXPECT_EQ(TakeArguments(), c.arguments) << c.line;
        EXPECT_EQ(TextOf("o.csv"), "made\n");
    }
    const struct {
        const char* line;
        int status;
        const char* error;
    } refusals[] = {
        {"export pdf /m.tarin /n.pdf", 2, "use one of txt, kml, geo, udt, sbet"},
        {"export sbet /m.tarin /n.out", 1, "restricted to post-processing result files"},
        {"export udt /m.tarin /n.out --t /none.tarudt", 1, "Template file does not exist"},
        {"export txt /m.tarin /n.csv --imu on", 2, "the format txt has no option --imu"},
        {"export kml /m.tarin /n.kml --c GPS_3", 2, "use one of GPS_1, USBL_1"},
        {"export kml /m.tarin /n.kml --dec 0", 1, "Decimation value must be a positive integer"},
        {"export txt /m.tarprj /n.csv --source x.tarin", 2, "m.tarin"},
        {"export txt /depth.txt /n.csv", 1, "depth.txt"},
        {"export txt /m.tarin /o.csv", 1, "there is a file of this name already"},
    };
    for (const auto& c : refusals) {
        EXPECT_EQ(Run(c.line), c.status) << c.line << m_error;
        EXPECT_THAT(m_error, HasSubstr(c.error)) << c.line;
    }
}

TEST_F(ToolCommands, UpdateTakesSeveralFiles) {
    std::ofstream(Path("a.tarin")) << "x";
    Install("echo 'message info fine'");
    Succeed("update /a.tarin /b.log");
    EXPECT_EQ(TakeArguments(), "/remote /backup yes a.tarin b.log ");
    Succeed("update /a.tarin --backup no");
    EXPECT_EQ(TakeArguments(), "/remote /backup no a.tarin ");
    EXPECT_EQ(Run("update /a.tarin /missing.tarin"), 1);
    EXPECT_THAT(TakeArguments(), IsEmpty());
    Install("exit 1");
    EXPECT_EQ(Run("update /a.tarin"), 1);
}
