#include "common/child_program.h"

#include "common/fault_counter.h"
#include "common/target_file.h"
#include "foundation/files.h"
#include "foundation/texts.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <stdexcept>

#include <sys/signalfd.h>
#include <unistd.h>

using namespace Compagnon;

namespace {

constexpr SSwitchRow kSwitches[] = {{"/beacon", ESwitchValue::integer, "N", EText::switchHelp, 1, 9}};

// Ends as the number of its switch says; a 9 throws.
ERunEnd RunAsAsked(const CArguments& arguments, IRunMonitor& monitor) {
    const int end = static_cast<int>(arguments.GetNumber("/beacon", 0));
    if (end == 9) throw std::runtime_error("nine");
    monitor.Progress(50.0);
    return monitor.GoOn() ? static_cast<ERunEnd>(end) : ERunEnd::stopped;
}

constexpr SProgram kTool{"Tool.exe", EText::switchHelp, "SOURCE", 1,         1,
                         kSwitches,  EDialect::tool,    true,     RunAsAsked};
constexpr SProgram kEngine{"Engine.exe", EText::switchHelp, "SOURCE", 1,         1,
                           kSwitches,    EDialect::engine,  false,    RunAsAsked};

// The exit code and all that the program writes when it is given these commands.
std::pair<int, std::string> RunWith(const SProgram& program, const std::vector<std::string>& arguments,
                                    std::string_view commands = {}, int signals = -1) {
    std::array<int, 2> in{}, out{};
    EXPECT_TRUE(pipe(in.data()) == 0 && pipe(out.data()) == 0);
    EXPECT_EQ(write(in[1], commands.data(), commands.size()), static_cast<ssize_t>(commands.size()));
    const int code = RunProgram(program, arguments, in[0], out[1], signals);
    close(out[1]);
    std::string text;
    std::array<char, 4096> buffer;
    for (ssize_t size; (size = read(out[0], buffer.data(), buffer.size())) > 0;)
        text.append(buffer.data(), static_cast<std::size_t>(size));
    for (const int descriptor : {in[0], in[1], out[0]}) close(descriptor);
    return {code, text};
}

} // namespace

TEST(ChildProgram, LineAndCommandsDecideTheEnd) {
    struct SRow {
        const SProgram& program;
        std::vector<std::string> arguments;
        std::string_view commands;
        int code;
        std::string_view part; // of the output
    } const rows[] = {
        {kTool, {"x"}, "", 0, "50.0 %"},
        {kTool, {"/REMOTE", "x"}, "start\n", 0, "progress 50.0\n"},
        {kTool, {"/remote", "x"}, "stop\n", 1, ""},
        {kTool, {"x", "/beacon", "2"}, "", 1, "50.0 %"},
        {kEngine, {"x", "/beacon", "2"}, "", 2, "50.0 %"},
        {kEngine, {"/remote", "/autostart", "off", "x"}, "stop\n", 2, ""},
        {kEngine, {"/remote", "x"}, "", 0, "progress 50.0\n"},
        {kEngine, {"/remote", "x", "/beacon", "9"}, "", 1, "message 2 10921 \"Unexpected failure: nine\"\n"},
        {kTool, {"/beacon", "10", "x"}, "", 1, "Usage: Tool.exe"},
        {kTool, {"/remote", "/beacon", "10", "x"}, "", 1, "message error \"/beacon cannot be"},
        {kTool, {}, "", 1, "Give the files SOURCE"},
        {kTool, {"x", "y"}, "", 1, "Give the files SOURCE"},
        {kTool, {"-h"}, "", 0, "/beacon N"},
        {kTool, {"--version"}, "", 0, "Tool.exe 2."},
    };
    for (const SRow& row : rows) {
        const auto [code, text] = RunWith(row.program, row.arguments, row.commands);
        EXPECT_EQ(code, row.code) << testing::PrintToString(row.arguments) << text;
        EXPECT_NE(text.find(row.part), std::string::npos) << testing::PrintToString(row.arguments) << text;
    }
}

TEST(ChildProgram, ASignalStopsTheRun) {
    std::array<int, 2> signals{};
    ASSERT_EQ(pipe(signals.data()), 0);
    ASSERT_EQ(write(signals[1], "x", 1), 1);
    EXPECT_EQ(RunWith(kTool, {"/remote", "x"}, "", signals[0]).first, 1) << "it would wait for the start";
    for (const int descriptor : signals) close(descriptor);
}

TEST(FaultCounter, NamesTheFirstThreePlaces) {
    struct CMonitor : IRunMonitor {
        std::vector<std::string> texts;
        void Progress(double) override {}
        void Message(ELevel, EText, std::string_view text) override { texts.emplace_back(text); }
        bool GoOn() override { return true; }
    } monitor;
    CFaultCounter faults;
    for (const std::uint64_t line : {5u, 7u, 8u, 20u}) faults.Add(EText::stopped, line);
    faults.Add(EText::noUtc, 1);
    EXPECT_EQ(faults.GetCount(), 5u);
    EXPECT_EQ(faults.GetCount(EText::stopped), 4u);
    faults.Report(monitor, EText::faultsByLine);
    ASSERT_EQ(monitor.texts.size(), 2u);
    EXPECT_NE(monitor.texts[0].find(": 4 (first at line 5, 7, 8, ...)"), std::string::npos)
        << monitor.texts[0];
    EXPECT_NE(monitor.texts[1].find(": 1 (first at line 1)"), std::string::npos) << monitor.texts[1];
}

TEST(TargetFile, AppearsWholeOrNotAtAll) {
    test::CTemporaryFolder folder;
    const std::filesystem::path target = folder / std::string(255, 'o'), source = folder / "in";
    std::ofstream(source) << "source";
    const auto names = [&] {
        return std::distance(std::filesystem::directory_iterator(folder / ""),
                             std::filesystem::directory_iterator());
    };
    const std::filesystem::path sources[] = {source};
    EXPECT_EQ(CTargetFile().Open(source, sources), EText::targetIsSource);
    EXPECT_EQ(CTargetFile().Open(folder / "", sources), EText::targetIsFolder);
    EXPECT_EQ(CTargetFile().Open(folder / "none/out", sources), EText::targetNotWritable);
    {
        CTargetFile discarded;
        ASSERT_EQ(discarded.Open(target, sources), EText::none);
        std::ofstream(discarded.GetPath()) << "half";
    }
    EXPECT_EQ(names(), 1);
    for (const std::string text : {"first", "second"}) {
        CTargetFile file;
        ASSERT_EQ(file.Open(target, sources), EText::none);
        std::ofstream(file.GetPath()) << text;
        ASSERT_TRUE(file.Commit());
        const auto bytes = *Outils_Fichiers::ReadWholeFile(target, 100);
        EXPECT_EQ(std::string(bytes.begin(), bytes.end()), text);
        EXPECT_EQ(names(), 2);
    }
}
