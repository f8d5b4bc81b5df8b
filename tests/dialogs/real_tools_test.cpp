// The dialogs of the tools with the programs that users have.
#include "tool_fixture.h"

#include "simulator/foreign_writer.h"
#include "simulator/mission_writer.h"
#include "xpf/packets.h"
#include "xpf/table_file.h"

#include <csignal>

#include <unistd.h>

using namespace Dialogue_Tarvel;
using Application_Tarvel::EOutcome;
using Outils_Texte::EText;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr std::uintmax_t kLong = std::uintmax_t{16} << 30; // bytes: no converter is through with them at once

class RealTools : public test::ToolDialogs {
  protected:
    RealTools() {
        m_host.m_programFolder = PROGRAMS;
        Simulation::SMissionOptions options;
        options.duration = 20;
        options.alignmentDuration = 5;
        options.channels = {"IMU", "DEPTH", "GPS_1", "UTC"};
        std::string error;
        EXPECT_TRUE(WriteMission(options, m_folder / "x.tarin", {}, error)) << error;
        EXPECT_TRUE(Simulation::WriteForeign("depth", m_folder / "x.tarin", options.GetUtcOrigin(),
                                             m_folder / "depth.txt", error))
            << error;
    }
    std::size_t CountFiles() const {
        return static_cast<std::size_t>(
            std::distance(std::filesystem::directory_iterator(m_folder.GetPath()), {}));
    }
    std::string ReadText(const std::filesystem::path& path) const {
        std::ifstream file(path);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    // Depths of a recording; 0 for a file that is none.
    static int CountDepths(const std::filesystem::path& recording) {
        const auto file = Persistance_Xpf::OpenXpfFile(recording, Persistance_Xpf::EFileKind::tarin).file;
        auto* const depths = file ? file->FindChannelByName("DEPTH") : nullptr;
        Persistance_Xpf::CXpfTarinDepthPacketV1 packet;
        int count = 0;
        if (depths && depths->SeekFirstPacket(nullptr))
            while (depths->ReadNextPacket(packet)) ++count;
        return count;
    }
};

} // namespace

TEST_F(RealTools, ImportGivesTheRecording) {
    auto dialog = Import(ERawFormat::depth, {"depth.txt"});
    RunToEnd(*dialog);
    EXPECT_EQ(dialog->GetOutcome(), EOutcome::done) << dialog->GetFailure();
    EXPECT_GT(CountDepths(m_folder / "x.tarin"), 0);
    EXPECT_EQ(CountDepths(dialog->GetTarget()), CountDepths(m_folder / "x.tarin"));
    auto wrong = Import(ERawFormat::depth, {"x.tarin"});
    RunToEnd(*wrong);
    EXPECT_EQ(wrong->GetOutcome(), EOutcome::failed);
    EXPECT_THAT(wrong->GetFailure(), testing::Not(IsEmpty()));
    EXPECT_FALSE(std::filesystem::exists(wrong->GetTarget()));
}

TEST_F(RealTools, CancelAndDeathLeaveNothing) {
    std::filesystem::resize_file(m_folder / "depth.txt", kLong);
    const std::size_t files = CountFiles();
    for (const bool dies : {false, true}) {
        auto dialog = Import(ERawFormat::depth, {"depth.txt"});
        ASSERT_TRUE(dialog->Start());
        while (dialog->IsRunning() && dialog->GetProgress() == 0) dialog->Wait(std::chrono::milliseconds(10));
        if (dies) {
            std::ifstream children("/proc/self/task/" + std::to_string(::gettid()) + "/children");
            pid_t child = 0;
            ASSERT_TRUE(children >> child);
            ::kill(child, SIGKILL);
        } else {
            dialog->Cancel();
        }
        while (dialog->IsRunning()) dialog->Wait(std::chrono::milliseconds(10));
        EXPECT_EQ(dialog->GetOutcome(), dies ? EOutcome::failed : EOutcome::cancelled);
        EXPECT_EQ(dialog->GetFailure().find("killed by signal 9") != std::string::npos, dies);
        EXPECT_EQ(CountFiles(), files);
    }
}

TEST_F(RealTools, MissingProgramIsNamed) {
    m_configuration.Set(Outils_Configuration::Cnf<"process/depth2Tarin">, "none.exe");
    auto dialog = Import(ERawFormat::depth, {"depth.txt"});
    EXPECT_FALSE(dialog->Start());
    EXPECT_THAT(m_host.TakeMessages(), ElementsAre(HasSubstr("none.exe")));
    m_configuration.Set(Outils_Configuration::Cnf<"process/depth2Tarin">, "Depth2Tarin.exe");
    RunToEnd(*dialog);
    EXPECT_EQ(dialog->GetOutcome(), EOutcome::done) << "and may come later";
}

TEST_F(RealTools, ExportIsWrittenAndOpened) {
    const std::pair<EExportFormat, const char*> formats[] = {
        {EExportFormat::txt, "DEPTH"}, {EExportFormat::kml, "<kml"}, {EExportFormat::sbet, nullptr}};
    for (const auto& [format, part] : formats) {
        auto dialog = Export(format, "input");
        m_opened.clear();
        if (!part) { // of results only
            EXPECT_FALSE(dialog->Start());
            EXPECT_THAT(m_host.TakeMessages(), ElementsAre(test::Text(EText::sbetOfResult)));
            continue;
        }
        RunToEnd(*dialog);
        EXPECT_EQ(dialog->GetOutcome(), EOutcome::done) << dialog->GetFailure();
        EXPECT_THAT(ReadText(dialog->GetTarget()), HasSubstr(part));
        EXPECT_THAT(m_opened, ElementsAre(dialog->GetTarget().filename()));
        EXPECT_TRUE(dialog->HasEnded());
    }
    // What is no result fails in the tool, whose reason is shown.
    auto dialog = Export(EExportFormat::txt, "output");
    RunToEnd(*dialog);
    EXPECT_EQ(dialog->GetOutcome(), EOutcome::failed);
    EXPECT_THAT(m_host.TakeMessages(), ElementsAre(HasSubstr("r.tarout")));
    EXPECT_FALSE(std::filesystem::exists(dialog->GetTarget()));
    EXPECT_FALSE(dialog->HasEnded()) << "what the tool has said stays in sight";
}

TEST_F(RealTools, UpdaterKeepsWhatItCannotRaise) {
    const std::string before = ReadText(m_folder / "x.tarin");
    const std::size_t files = CountFiles();
    CTrvFileUpdaterDlg present(Services(), {m_folder / "x.tarin"});
    RunToEnd(present);
    EXPECT_EQ(present.GetOutcome(), EOutcome::done) << present.GetFailure();
    CTrvFileUpdaterDlg wrong(Services(), {m_folder / "x.tarin", m_folder / "a.log"});
    RunToEnd(wrong);
    EXPECT_EQ(wrong.GetOutcome(), EOutcome::failed);
    EXPECT_THAT(wrong.GetFailure(), HasSubstr("a.log"));
    EXPECT_EQ(ReadText(m_folder / "x.tarin"), before);
    EXPECT_EQ(CountFiles(), files);
}
