// The dialogs of the tools, with shell scripts in the place of the tools.
#include "tool_fixture.h"

#include <fcntl.h>
#include <unistd.h>

using namespace Application_Tarvel;
using namespace Dialogue_Tarvel;
using namespace Outils_Configuration;
using namespace std::chrono_literals;
using Outils_Texte::EText;
using test::Text;
using test::ToolDialogs;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr const char* kMakesTarget =
    "echo 'progress 40'; echo 'message warning \"a fault\"'; echo x > \"$last\"";
constexpr const char* kDeaf = "echo part > \"$last\"; exec sleep 1000";

} // namespace

TEST_F(ToolDialogs, ImportCommandHasTheSwitchesOfItsFormat) {
    using enum EImportField;
    using CWritten = std::pair<EImportField, const char*>;
    const struct {
        ERawFormat format;
        std::vector<std::filesystem::path> sources;
        bool expert;
        std::vector<CWritten> written;
        const char* line;
    } cases[] = {
        {ERawFormat::nmea,
         {"a.log"},
         false,
         {{checksum, "no"}},
         R"("bin/Nmea2Tarin.exe" /remote /verifyChecksum yes a.log "a.tarin")"},
        {ERawFormat::nmea,
         {"c d.log"},
         true,
         {{checksum, "no"}},
         R"("bin/Nmea2Tarin.exe" /remote /verifyChecksum no "c d.log" "c d.tarin")"},
        {ERawFormat::kolt,
         {"a.log"},
         false,
         {{beacon, "127"}},
         R"("bin/Kolt2Tarin.exe" /remote /beacon 127 a.log "a.tarin")"},
        {ERawFormat::rawIns,
         {"a.log"},
         false,
         {{date, "2026-03-01"}},
         R"("bin/PostProNelixDecode.exe" /remote /f tarin /utc 2026-03-01 /decipher yes a.log /o "a.tarin")"},
        {ERawFormat::rawIns,
         {"a.log", "c d.log"},
         true,
         {{date, "2026-3-1"},
          {skip, "5"},
          {stopAt, "60"},
          {decipher, "no"},
          {sort, "none"},
          {clockDrift, "on"}},
         R"("bin/PostProNelixDecode.exe" /remote /f tarin /utc 2026-03-01 /skip 5 /stop 60 /decipher no )"
         R"(/sort none /ccd on a.log "c d.log" /o "a.tarin")"},
        {ERawFormat::decodedIns,
         {"a.log"},
         false,
         {{decodedDate, "2026-12-31"}, {imuOffset, "no"}},
         R"("bin/DecodedNelix2Tarin.exe" /remote /e 9 /utc 2026-12-31 /cycle 86400 /imu5msOffset no a.log "a.tarin")"},
        {ERawFormat::depth, {"a.log"}, true, {}, R"("bin/Depth2Tarin.exe" /remote a.log "a.tarin")"},
    };
    for (const auto& c : cases) {
        auto dialog = Import(c.format, c.sources, c.expert);
        for (const auto& [field, text] : c.written) Write(*dialog, field, text);
        std::string line = Switches(*dialog);
        // Only a path with a blank is in quotes, and the folder of the test has none.
        EXPECT_EQ(line, c.line);
    }
}

TEST_F(ToolDialogs, ImportChecksInTheGivenOrder) {
    using enum EImportField;
    auto dialog = Import(ERawFormat::rawIns, {"a.log"});
    const auto refuse = [&](EText text, EImportField focus) {
        EXPECT_FALSE(dialog->Start());
        EXPECT_THAT(m_host.TakeMessages(), ElementsAre(HasSubstr(Text(text).substr(0, 20))));
        ASSERT_TRUE(dialog->GetFaultItem()) << Text(text);
        EXPECT_EQ(dialog->GetFaultItem()->GetTitle(),
                  Text(GetImportFields()[static_cast<std::size_t>(focus)].title));
    };
    Write(*dialog, skip, "-1");
    Write(*dialog, stopAt, "x");
    dialog->WritePaths(static_cast<int>(sources), {m_folder / "missing.log"});
    refuse(EText::toolPositiveInteger, skip);
    Write(*dialog, skip, "9");
    refuse(EText::toolPositiveInteger, stopAt);
    Write(*dialog, stopAt, "9");
    refuse(EText::toolValidDate, date);
    Write(*dialog, date, "2026-02-30");
    refuse(EText::toolValidDate, date);
    Write(*dialog, date, "2026-02-28");
    refuse(EText::toolSourceMissing, sources);
    dialog->WritePaths(static_cast<int>(sources), {m_folder / "a.log"});
    dialog->WritePaths(static_cast<int>(target), {});
    refuse(EText::toolTargetEmpty, target);
    dialog->WritePaths(static_cast<int>(target), {m_folder.GetPath()});
    refuse(EText::toolTargetIsFolder, target);
    dialog->WritePaths(static_cast<int>(target), {m_folder / "a.log"});
    refuse(EText::toolTargetIsSource, target);
    dialog->WritePaths(static_cast<int>(target), {m_folder / "nowhere" / "a.tarin"});
    refuse(EText::toolFolderReadOnly, target);
    dialog->WritePaths(static_cast<int>(target), {m_folder / "b.log"});
    m_host.m_answers = {EAnswer::cancel};
    refuse(EText::toolTargetExists, target);
    m_host.m_answers = {EAnswer::ok};
    EXPECT_FALSE(dialog->Start());
    EXPECT_THAT(m_host.TakeMessages(),
                ElementsAre(Text(EText::toolTargetExists), Text(EText::stopBeforeSkip)));
    EXPECT_TRUE(std::filesystem::exists(m_folder / "b.log")) << "a refused target stays";

    for (const auto& [format, field, text, bad, good] :
         {std::tuple(ERawFormat::kolt, beacon, EText::beaconRange, "0", "1"),
          std::tuple(ERawFormat::kolt, beacon, EText::beaconRange, "128", "127"),
          std::tuple(ERawFormat::decodedIns, clockCycle, EText::clockCyclePositive, "0", "60")}) {
        dialog = Import(format, {"missing.log"});
        Write(*dialog, decodedDate, "2026-02-28");
        Write(*dialog, field, bad);
        refuse(text, field);
        Write(*dialog, field, good);
        refuse(EText::toolSourceMissing, sources);
    }
}

TEST_F(ToolDialogs, RefusesATargetThatIsOpen) {
    auto dialog = Import(ERawFormat::nmea, {"a.log"});
    dialog->WritePaths(static_cast<int>(EImportField::target), {m_folder / "b.log"});
    const int file = ::open((m_folder / "b.log").c_str(), O_RDONLY);
    EXPECT_FALSE(dialog->Start());
    ::close(file);
    EXPECT_THAT(m_host.TakeMessages(), ElementsAre(HasSubstr("open in another program")));
}

TEST_F(ToolDialogs, TargetFollowsTheSourceUntilChosen) {
    auto dialog = Import(ERawFormat::nmea, {"a.log"});
    EXPECT_EQ(dialog->GetTarget(), m_folder / "a.tarin");
    dialog->WritePaths(static_cast<int>(EImportField::sources), {m_folder / "x.tarin"});
    EXPECT_EQ(dialog->GetTarget(), m_folder / "x.tarin.tarin");
    dialog->WritePaths(static_cast<int>(EImportField::target), {m_folder / "mine.tarin"});
    dialog->WritePaths(static_cast<int>(EImportField::sources), {m_folder / "b.log"});
    EXPECT_EQ(dialog->GetTarget(), m_folder / "mine.tarin");
}

TEST_F(ToolDialogs, ImportEndsWithItsFile) {
    Install("Nmea2Tarin.exe", kMakesTarget);
    auto dialog = Import(ERawFormat::nmea, {"a.log"});
    RunToEnd(*dialog);
    EXPECT_TRUE(dialog->HasEnded());
    EXPECT_EQ(dialog->GetOutcome(), EOutcome::done);
    EXPECT_TRUE(std::filesystem::exists(dialog->GetTarget()));
    EXPECT_THAT(m_messages.lines, ElementsAre("1 a fault"));
    EXPECT_THAT(m_host.m_output, ElementsAre("WARNING : a fault"));
    EXPECT_EQ(dialog->GetProgress(), 0);
}

TEST_F(ToolDialogs, ImportWithoutAFileSaysWhy) {
    const struct {
        const char* script;
        const char* cause;
    } cases[] = {
        {"echo 'message error \"no position in it\"'; exit 1", "no position in it"},
        {"kill -9 $$", "killed by signal 9"},
        {"exit 0", "has made no file"},
    };
    for (const auto& c : cases) {
        Install("Nmea2Tarin.exe", c.script);
        auto dialog = Import(ERawFormat::nmea, {"a.log"});
        RunToEnd(*dialog);
        EXPECT_EQ(dialog->GetOutcome(), EOutcome::failed) << c.script;
        EXPECT_TRUE(dialog->HasEnded()) << "the caller reports it";
        EXPECT_THAT(dialog->GetFailure(), HasSubstr(c.cause));
    }
    std::filesystem::remove(m_host.m_programFolder / "Nmea2Tarin.exe");
    auto dialog = Import(ERawFormat::nmea, {"a.log"});
    EXPECT_FALSE(dialog->Start());
    EXPECT_THAT(m_host.TakeMessages(),
                ElementsAre(testing::AllOf(testing::StartsWith("Launching of the child process Failed\n\n"),
                                           HasSubstr("Nmea2Tarin.exe"))));
    EXPECT_FALSE(dialog->HasEnded());
}

TEST_F(ToolDialogs, CancelLeavesNoTarget) {
    for (const bool isFrozen : {false, true}) {
        Install("Nmea2Tarin.exe",
                isFrozen ? kDeaf : "echo part > \"$last\"; echo 'message info up'; read word; exit 1");
        auto dialog = Import(ERawFormat::nmea, {"a.log"});
        ASSERT_TRUE(dialog->Start());
        EXPECT_FALSE(dialog->Start()) << "one run at a time";
        while (!std::filesystem::exists(dialog->GetTarget())) dialog->Wait(10ms);
        EXPECT_FALSE(dialog->Close());
        EXPECT_THAT(m_host.TakeMessages(), ElementsAre(Text(EText::stopToolFirst)));
        dialog->Cancel();
        if (isFrozen) {
            m_host.Sleep(6s);
            m_host.m_answers = {EAnswer::cancel, EAnswer::ok};
            dialog->Cancel();
            EXPECT_TRUE(dialog->IsRunning());
            dialog->Cancel();
            EXPECT_THAT(m_host.TakeMessages(), ElementsAre(Text(EText::toolFrozen), Text(EText::toolFrozen)));
        }
        while (dialog->IsRunning()) dialog->Wait(10ms);
        EXPECT_EQ(dialog->GetOutcome(), EOutcome::cancelled);
        EXPECT_FALSE(dialog->HasEnded());
        EXPECT_FALSE(std::filesystem::exists(dialog->GetTarget()));
        EXPECT_TRUE(dialog->Close());
    }
}

TEST_F(ToolDialogs, CancelledExportLeavesNoTarget) {
    Install("Tarout2Txt.exe", "echo part > \"$last\"; read word; exit 1");
    auto dialog = Export(EExportFormat::txt, "output");
    ASSERT_TRUE(dialog->Start());
    while (!std::filesystem::exists(dialog->GetTarget())) dialog->Wait(10ms);
    dialog->Cancel();
    while (dialog->IsRunning()) dialog->Wait(10ms);
    EXPECT_EQ(dialog->GetOutcome(), EOutcome::cancelled);
    EXPECT_FALSE(std::filesystem::exists(dialog->GetTarget()));
    EXPECT_THAT(m_opened, IsEmpty());
    EXPECT_FALSE(dialog->HasEnded());
}

TEST_F(ToolDialogs, ExportCommandHasTheSwitchesOfItsFormat) {
    using enum EExportField;
    m_parameters->mainInputFile->timeOffset =
        Metier_Tarvel::ToStoredTime(Outils_Temps::CDateTimeSpan::FromSeconds(-1.5));
    using CWritten = std::pair<EExportField, const char*>;
    const struct {
        EExportFormat format;
        const char* source;
        bool hasUtc;
        std::vector<CWritten> written;
        const char* line;
    } cases[] = {
        {EExportFormat::txt,
         "input",
         false,
         {},
         R"("bin/Tarin2Txt.exe" /remote /header on "x.tarin" "x.csv")"},
        {EExportFormat::txt,
         "output",
         false,
         {{header, "off"}, {imuFrames, "on"}, {from, "60"}, {to, "90.5"}},
         R"("bin/Tarout2Txt.exe" /remote /header off /imu on /from 60.000 /to 90.500 "r.tarout" "r.csv")"},
        {EExportFormat::kml,
         "output",
         true,
         {{kmlTime, "simulation"}},
         R"("bin/Tarout2Kml.exe" /remote /c NELIX_NAV /showTime on /track off /lv 0 "r.tarout" "r.kml")"},
        {EExportFormat::kml,
         "input",
         true,
         {{kmlChannel, "USBL_2"},
          {showTime, "off"},
          {kmlTime, "simulation"},
          {track, "on"},
          {trackColor, "#80FF0000"},
          {pointColorMode, "user"},
          {kmlLeverArm, "2"},
          {clamp, "off"},
          {altitudeScale, "-1,5"},
          {altitudeOffset, "20"},
          {kmlDecimate, "on"},
          {kmlDecimation, "7"}},
         R"("bin/Tarin2Kml.exe" /remote /c USBL_2 /showTime off /toffset -1.5000000 /utc 2026-03-01T12:30:15.2500000 )"
         R"(/track on /trackColor 80FF0000 /pointColor FFFFAA55 /lv 2 /clampToGround off /asf -1.500000 )"
         R"(/ao 20.000000 /dec 7 "x.tarin" "x.kml")"},
        {EExportFormat::geo,
         "input",
         false,
         {{geoTime, "simulation"}, {geoFormat, "MapInfo File"}, {motion, "yes"}},
         R"("bin/Tarin2Geo.exe" /remote /c GPS_1 /lv 0 /f "MapInfo File" /toffset -1.5000000 /25d no /motion yes )"
         R"(/speed no /orientation no "x.tarin" "x.tab")"},
        {EExportFormat::sbet,
         "output",
         false,
         {{accuracy, "yes"}, {timestamp, "day"}},
         R"("bin/Tarout2Sbet.exe" /remote /lv 0 /tr day /a "r.tarout" "r.out")"},
        {EExportFormat::udt,
         "output",
         false,
         {{exportTemplate, "t.tarudt"}},
         R"("bin/udtExporter.exe" /remote /t "t.tarudt" "r.tarout" "r.txt")"},
    };
    for (const auto& c : cases) {
        m_parameters->hasUtcReference = c.hasUtc;
        m_parameters->utcReference.SetDateTime(2026, 3, 1, 12, 30, 15, 2'500'000);
        auto dialog = Export(c.format, c.source);
        m_parameters->hasUtcReference = c.hasUtc && c.format != EExportFormat::txt;
        for (const auto& [field, text] : c.written) Write(*dialog, field, text);
        EXPECT_EQ(Switches(*dialog), c.line);
    }
}

TEST_F(ToolDialogs, ExportChecksInTheGivenOrder) {
    using enum EExportField;
    const struct {
        EExportFormat format;
        const char* source;
        std::vector<std::pair<EExportField, const char*>> written;
        EText text;
        EExportField focus;
    } cases[] = {
        {EExportFormat::udt,
         "output",
         {{exportTemplate, "/no/such.tarudt"}},
         EText::toolTemplateMissing,
         exportTemplate},
        {EExportFormat::sbet, "input", {}, EText::sbetOfResult, source},
        {EExportFormat::kml,
         "output",
         {{kmlDecimate, "on"}, {kmlDecimation, "0"}},
         EText::toolResultMissing,
         source},
        {EExportFormat::txt, "input", {}, EText::toolSourceMissing, source},
    };
    std::filesystem::remove(m_folder / "r.tarout");
    std::filesystem::remove(m_folder / "x.tarin");
    for (const auto& c : cases) {
        auto dialog = Export(c.format, c.source);
        for (const auto& [field, text] : c.written) Write(*dialog, field, text);
        EXPECT_FALSE(dialog->Start());
        EXPECT_THAT(m_host.TakeMessages(), ElementsAre(Text(c.text)));
        ASSERT_TRUE(dialog->GetFaultItem());
        EXPECT_EQ(dialog->GetFaultItem()->GetTitle(),
                  Text(GetExportFields()[static_cast<std::size_t>(c.focus)].title));
    }
    std::ofstream(m_folder / "r.tarout") << "x";
    auto dialog = Export(EExportFormat::kml, "output");
    Write(*dialog, kmlDecimate, "on");
    Write(*dialog, kmlDecimation, "0");
    dialog->WritePaths(static_cast<int>(target), {m_folder / "b.log"});
    EXPECT_FALSE(dialog->Start());
    EXPECT_THAT(m_host.TakeMessages(),
                ElementsAre(Text(EText::toolTargetExists), Text(EText::decimationPositive)));
}

TEST_F(ToolDialogs, ExportOpensWhatItMadeAndCloses) {
    Install("Tarout2Txt.exe", kMakesTarget);
    for (const auto& [opens, closes] : {std::pair(true, true), std::pair(false, false)}) {
        m_opens = opens;
        m_configuration.Set(Cnf<"simpleExporter/general/closeAtEnd">, closes);
        auto dialog = Export(EExportFormat::txt, "output");
        RunToEnd(*dialog);
        EXPECT_EQ(dialog->HasEnded(), closes);
        EXPECT_THAT(m_opened, ElementsAre("r.csv"));
        if (opens)
            EXPECT_THAT(m_host.TakeMessages(), IsEmpty());
        else
            EXPECT_THAT(m_host.TakeMessages(),
                        ElementsAre(Text(EText::toolTargetExists), Text(EText::openResultFailed)));
        m_opened.clear();
    }
}

TEST_F(ToolDialogs, TemplateGivesExtensionAndChannel) {
    const struct {
        const char* text;
        const char* extension;
        const char* channel;
    } cases[] = {
        {"<exportTemplate><recommendedExtension>.p190</recommendedExtension>"
         "<primaryInput primaryChannel=\"USBL_2\"/></exportTemplate>",
         "p190", "USBL_2"},
        {"<exportTemplate/>", "", ""},
        {"<exportTemplate><recommendedExtension>../../x</recommendedExtension></exportTemplate>", "", ""},
        {"no xml", "", ""},
    };
    for (const auto& c : cases) {
        std::ofstream(m_folder / "t.tarudt") << c.text;
        const auto metadata = ReadTemplateMetadata(m_folder / "t.tarudt");
        EXPECT_EQ(metadata.extension, c.extension) << c.text;
        EXPECT_EQ(metadata.channel, c.channel) << c.text;
    }
    EXPECT_EQ(ReadTemplateMetadata(m_folder / "missing").channel, "");
    std::ofstream(m_folder / "t.tarudt") << cases[0].text;
    auto dialog = Export(EExportFormat::udt, "input");
    dialog->WritePaths(static_cast<int>(EExportField::exportTemplate), {m_folder / "t.tarudt"});
    EXPECT_EQ(dialog->GetTarget(), m_folder / "x.p190");
    EXPECT_EQ(dialog->GetFields().Get(static_cast<int>(EExportField::kmlChannel)), "USBL_2");
}

TEST_F(ToolDialogs, EveryFieldKeepsItsLastValue) {
    // One word, number or text for each kind of setting.
    const std::pair<EExportField, const char*> written[] = {
        {EExportField::format, "kml"},    {EExportField::source, "output"},
        {EExportField::header, "off"},    {EExportField::trackColor, "#12345678"},
        {EExportField::kmlLeverArm, "3"}, {EExportField::altitudeScale, "2.5"},
        {EExportField::geoFormat, "DGN"}, {EExportField::geoDecimation, "12"},
        {EExportField::from, "3600.25"},  {EExportField::exportTemplate, "/a/t.tarudt"},
    };
    {
        auto dialog = Export(EExportFormat::txt, "input");
        m_parameters->hasUtcReference = false;
        for (const auto& [field, text] : written)
            if (field != EExportField::from) Write(*dialog, field, text);
        Write(*dialog, EExportField::from, "01:00:00.25");
        EXPECT_TRUE(dialog->Close());
    }
    CTrvSimpleExporterDlg dialog(Services(), GetExportProject(*m_parameters), {});
    for (const auto& [field, text] : written)
        EXPECT_EQ(dialog.GetFields().Get(static_cast<int>(field)), text) << static_cast<int>(field);
    EXPECT_EQ(m_configuration.Get(Cnf<"simpleExporter/geo/idxFileFormat">), 7);
    EXPECT_EQ(m_configuration.Get(Cnf<"simpleExporter/kml/leverArm">), 3);
    auto importer = Import(ERawFormat::decodedIns, {"a.log"}, true);
    Write(*importer, EImportField::equipment, "14");
    EXPECT_EQ(
        importer->GetGrid().GetRoot().GetChild(static_cast<std::size_t>(EImportField::equipment))->GetValue(),
        "INS model 14");
    Write(*importer, EImportField::clockDrift, "off");
    EXPECT_TRUE(importer->Close());
    EXPECT_EQ(m_configuration.Get(Cnf<"simpleImporter/decodedNelix/equipmentType">), 14);
    EXPECT_EQ(m_configuration.Get(Cnf<"simpleImporter/postproNelix/insClockDriftCompensation">),
              EClockDriftCompensation::off);
}

TEST_F(ToolDialogs, RowsAreThoseOfTheFormat) {
    auto dialog = Import(ERawFormat::rawIns, {"a.log"});
    const auto shown = [](CToolDialog& own) {
        std::vector<std::string> titles;
        for (std::size_t i = 0; const auto* row = own.GetGrid().GetRoot().GetChild(i); ++i)
            if (row->IsVisible()) titles.push_back(row->GetTitle());
        return titles;
    };
    EXPECT_THAT(shown(*dialog), ElementsAre("Format", "Source files", "Target file", "Date (year-month-day)",
                                            "Skip (s)", "Stop at (s)", "Ciphered IMU data", "Sort by name"));
    auto* format = dialog->GetGrid().GetRoot().GetChild(0);
    EXPECT_EQ(format->GetValue(), "INS post-processing raw data");
    EXPECT_EQ(format->Write("Kolt"), "");
    EXPECT_THAT(shown(*dialog), ElementsAre("Format", "Source files", "Target file", "Beacon number"));
    EXPECT_EQ(format->Write("Telex"), Text(EText::invalidValue));
    EXPECT_THAT(shown(*Import(ERawFormat::nmea, {"a.log"}, true)),
                ElementsAre("Format", "Source files", "Target file", "Checksum"));
    EXPECT_THAT(shown(*Export(EExportFormat::sbet, "output")),
                ElementsAre("Format", "Source file", "Target file", "Lever arm", "Timestamp reference",
                            "Accuracy file", "Decimate", "From", "To", "Open at end", "Close at end"));
}

TEST_F(ToolDialogs, UpdaterReportsHowItEnded) {
    const struct {
        const char* script;
        EOutcome outcome;
    } cases[] = {{"exit 0", EOutcome::done},
                 {"echo 'message error \"disk full\"'; exit 1", EOutcome::failed}};
    for (const auto& c : cases) {
        Install("FileUpdater.exe", c.script);
        CTrvFileUpdaterDlg dialog(Services(), {m_folder / "x.tarin", m_folder / "c d.log"});
        Write(dialog, EUpdateField::backup, "no");
        EXPECT_EQ(Switches(dialog), R"("bin/FileUpdater.exe" /remote /backup no "x.tarin" "c d.log")");
        RunToEnd(dialog);
        EXPECT_TRUE(dialog.HasEnded());
        EXPECT_EQ(dialog.GetOutcome(), c.outcome);
        EXPECT_EQ(dialog.GetFailure().find("disk full") != std::string::npos, c.outcome == EOutcome::failed);
    }
    CTrvFileUpdaterDlg missing(Services(), {m_folder / "x.tarin", m_folder / "none.tarin"});
    EXPECT_FALSE(missing.Start());
    EXPECT_THAT(m_host.TakeMessages(), ElementsAre(Text(EText::toolSourceMissing)));
    Install("FileUpdater.exe", kDeaf);
    std::filesystem::remove(m_host.m_programFolder / "FileUpdater.exe");
    CTrvFileUpdaterDlg unable(Services(), {m_folder / "x.tarin"});
    EXPECT_FALSE(unable.Start());
    EXPECT_THAT(m_host.TakeMessages(),
                ElementsAre(testing::StartsWith("Launching of the child process failed\n\n")));
}
