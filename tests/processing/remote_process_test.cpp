#include "processing/child_processes.h"
#include "processing/command_line.h"
#include "processing/message_line.h"
#include "processing/receivers.h"

#include <gmock/gmock.h>

#include <chrono>
#include <condition_variable>
#include <csignal>
#include <filesystem>
#include <functional>
#include <mutex>
#include <thread>

#include <fcntl.h>
#include <sys/wait.h>

using namespace Communication_Processus;
using testing::ElementsAre;

namespace {

constexpr auto kLong = std::chrono::seconds(60); // only ever reached by a fault

std::string Command(std::initializer_list<const char*> arguments) {
    std::string line = QuoteProgram(TEST_CHILD);
    for (const char* argument : arguments) line += ' ' + QuoteArgument(argument);
    return line;
}

bool Becomes(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + kLong;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::yield();
    }
    return true;
}

// Writes down what the child sends.
class CListener : public CRemoteProcess {
  public:
    ~CListener() override { Close(); }

    bool WaitForLines(std::size_t count) {
        return WaitFor([&] { return lines.size() >= count; });
    }
    bool WaitForError(std::string_view text) {
        return WaitFor([&] { return error == text; });
    }
    // Blocks until the child has ended, and leaves it to be collected.
    bool WaitForEnd() const { return ::waitid(P_PID, ProcessId(), nullptr, WEXITED | WNOWAIT) == 0; }
    // The same with all that follows.
    void Finish() {
        WaitForEnd();
        EXPECT_FALSE(IsRunning());
        EXPECT_NE(ProcessId(), 0u);
        EXPECT_TRUE(Becomes([this] { return WaitForReceivers(); }));
        Close();
        EXPECT_EQ(ProcessId(), 0u);
    }

    std::vector<std::string> lines; // tokens joined by '|'
    std::string error;
    std::atomic<bool> full{false};

  protected:
    void OnCommand(const std::vector<std::string>& tokens) override {
        std::string line;
        for (const std::string& token : tokens) line += (line.empty() ? "" : "|") + token;
        const std::lock_guard lock(m_mutex);
        lines.push_back(line);
        m_changed.notify_all();
    }
    void OnErrorOutput(std::string_view text) override {
        const std::lock_guard lock(m_mutex);
        error += text;
        m_changed.notify_all();
    }
    bool IsSinkFull() const override { return full; }

  private:
    bool WaitFor(const std::function<bool()>& done) {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, kLong, done);
    }
    std::mutex m_mutex;
    std::condition_variable m_changed;
};

std::ptrdiff_t CountEntries(const char* folder) {
    return std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator());
}

// After each test nothing may be left: no descriptor, no thread, no child alive or uncollected.
class RemoteProcess : public testing::Test {
  protected:
    // A sanitizer may start a thread of its own with the program's first: before the threads are counted.
    static void SetUpTestSuite() {
        std::thread([] {}).join();
    }

    void TearDown() override {
        // The system may need a moment to strike off a thread that has been joined or a child that was
        // killed.
        EXPECT_TRUE(Becomes([&] { return CountEntries("/proc/self/task") == m_threads; }));
        EXPECT_EQ(CountEntries("/proc/self/fd"), m_descriptors);
        EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
        EXPECT_EQ(errno, ECHILD);
    }

  private:
    std::ptrdiff_t m_threads = CountEntries("/proc/self/task");
    std::ptrdiff_t m_descriptors = CountEntries("/proc/self/fd");
};

} // namespace

TEST_F(RemoteProcess, ObeysWordsAndReportsLines) {
    CListener child;
    for (int run = 0; run < 2; ++run) { // one object serves one child after the other
        child.lines.clear();
        ASSERT_TRUE(
            child.Open(Command({R"(bytes=progress 5\r\nmessage info "a ""b"" c"\n)", "echo"}), false));
        child.SendCommand("start");
        EXPECT_TRUE(child.WaitForLines(3));
        EXPECT_TRUE(child.IsRunning());
        child.SendCommand("stop");
        child.Finish();
        EXPECT_THAT(child.lines,
                    ElementsAre("progress|5", "message|info|a \"b\" c", "got|start", "got|stop"));
    }
}

TEST_F(RemoteProcess, KeepsAnUnfinishedLineForTheNextChild) {
    CListener child;
    ASSERT_TRUE(child.Open(Command({"out=progr"}), false));
    child.Finish();
    ASSERT_TRUE(child.Open(Command({R"(out=ess 5\n)"}), false));
    child.Finish();
    EXPECT_THAT(child.lines, ElementsAre("progress|5"));
}

TEST_F(RemoteProcess, InheritsNothingButItsChannel) {
    const CDescriptor inheritable(::open("/dev/null", O_RDONLY));
    const auto oldAction = std::signal(SIGPIPE, SIG_IGN);
    sigset_t user1;
    sigemptyset(&user1);
    sigaddset(&user1, SIGUSR1);
    ::pthread_sigmask(SIG_BLOCK, &user1, nullptr);
    CListener child;
    EXPECT_TRUE(child.Open(Command({"state"}), false));
    ::pthread_sigmask(SIG_UNBLOCK, &user1, nullptr);
    std::signal(SIGPIPE, oldAction);
    child.Finish();
    EXPECT_THAT(child.lines, ElementsAre("state|0|1|2|unmasked|default|leader"));
}

TEST_F(RemoteProcess, GetsItsStandardDescriptorsFromAnywhere) {
    // The ends may lie on the numbers that they have to leave for one another.
    int ends[2];
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    const CDescriptor readEnd(ends[0]);
    CDescriptor writeEnd(ends[1]);
    const CDescriptor oldInput(::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3));
    ::dup3(writeEnd.Get(), STDIN_FILENO, O_CLOEXEC);
    CProcess child;
    EXPECT_TRUE(child.Create(Command({"out=a", "err=b"}), false, -1, STDIN_FILENO, STDIN_FILENO));
    ::dup2(oldInput.Get(), STDIN_FILENO);
    writeEnd.Close();
    char text[8] = {};
    EXPECT_EQ(::read(readEnd.Get(), text, 1) + ::read(readEnd.Get(), text + 1, 1), 2);
    EXPECT_STREQ(text, "ab");
    EXPECT_TRUE(Becomes([&] { return !child.IsRunning(); }));
}

TEST_F(RemoteProcess, DoesNotOpenWhatCannotBeStarted) {
    CListener child;
    for (const char* line :
         {"", " /remote", "/nowhere/Morvex.exe /remote", "\"/tmp\" /remote", "/etc/passwd"}) {
        EXPECT_FALSE(child.Open(line, false)) << line;
        EXPECT_EQ(child.ProcessId(), 0u);
        EXPECT_FALSE(child.IsRunning());
    }
    child.SendCommand("start");
    child.Terminate();
    EXPECT_TRUE(child.WaitForReceivers());
}

TEST_F(RemoteProcess, SurvivesWordsToAChildThatIsGoneOrDeaf) {
    CListener child;
    ASSERT_TRUE(child.Open(Command({}), false));
    child.WaitForEnd();
    child.SendCommand("stop");
    child.Finish();

    ASSERT_TRUE(child.Open(Command({"deaf"}), false));
    for (int i = 0; i < 20000; ++i) child.SendCommand("stop"); // more than any channel holds
    EXPECT_TRUE(child.IsRunning());
    child.Terminate();
    EXPECT_FALSE(child.IsRunning());
    EXPECT_EQ(child.ProcessId(), 0u);
}

TEST_F(RemoteProcess, ReadsErrorsUpToAZeroAndOutputsThatEndEarly) {
    CListener child;
    ASSERT_TRUE(child.Open(Command({R"(out=bye\n)", "closeout", R"(err=abc\0def)", "deaf"}), false));
    EXPECT_TRUE(child.WaitForLines(1));
    EXPECT_TRUE(child.WaitForError("abc"));
    EXPECT_TRUE(child.IsRunning());
    child.Terminate();
}

TEST_F(RemoteProcess, ReadsAFloodOnBothOutputsWhole) {
    CListener child;
    ASSERT_TRUE(child.Open(Command({"flood=5000"}), false));
    EXPECT_TRUE(child.WaitForLines(5000));
    child.Finish();
    EXPECT_EQ(child.lines[4999], "progress|50");
    EXPECT_EQ(child.error.size(), 5000 * std::string_view("noise without an end of line ").size());
}

TEST_F(RemoteProcess, HoldsAChildBackWhileTheSinkIsFull) {
    CListener child;
    child.full = true;
    ASSERT_TRUE(child.Open(Command({R"(out=a\n)"}), false));
    child.WaitForEnd();
    EXPECT_TRUE(child.lines.empty());
    child.Finish(); // the last output is read all the same
    EXPECT_THAT(child.lines, ElementsAre("a"));

    ASSERT_TRUE(child.Open(Command({"flood=100000"}), false));
    child.Close(); // a full sink delays nothing
    EXPECT_EQ(child.lines.size(), 1u);
}

TEST_F(RemoteProcess, AGrandchildWithThePipesDoesNotDelayClose) {
    CListener child;
    ASSERT_TRUE(child.Open(Command({"grandchild"}), false));
    child.WaitForEnd();
    EXPECT_FALSE(child.WaitForReceivers());
    EXPECT_FALSE(child.IsRunning());
    child.Close();
    EXPECT_TRUE(child.WaitForReceivers());
}

TEST_F(RemoteProcess, CloseLeavesAChildRunningAndCollectsItLater) {
    CListener child;
    ASSERT_TRUE(child.Open(Command({"deaf"}), false));
    const auto pid = static_cast<pid_t>(child.ProcessId());
    child.Close();
    EXPECT_FALSE(child.IsRunning());
    EXPECT_EQ(::kill(pid, 0), 0);
    ::kill(pid, SIGKILL);
    EXPECT_TRUE(Becomes([&] { return ::kill(pid, 0) != 0; }));
}

TEST_F(RemoteProcess, TheEngineReportsThroughItsReceiver) {
    Outils::CMessageQueue ui;
    CMorvexReceiver receiver(ui, nullptr);
    CProcessMorvex morvex;
    morvex.SetNotification(&receiver);
    ASSERT_TRUE(morvex.Open(Command({"echo", R"(out=progress 12.5\nmessage 2 77 "no data"\n)"}), false));
    morvex.Start();
    morvex.Stop();
    EXPECT_TRUE(Becomes([&] { return morvex.WaitForReceivers(); }));
    int level = 0;
    int code = 0;
    std::string text;
    EXPECT_TRUE(receiver.TakeMessage(level, code, text));
    EXPECT_EQ(receiver.LastProgress(), 12.5f);
    EXPECT_EQ(FormatMessageLine(level, text), "ERROR : no data");
    EXPECT_EQ(code, 77);
}
