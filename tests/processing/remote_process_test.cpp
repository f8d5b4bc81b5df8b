#include "processing/child_processes.h"
#include "processing/command_line.h"

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
using Outils_Fichiers::CDescriptor;
using testing::ElementsAre;
using testing::StartsWith;

namespace {

constexpr auto kLong = std::chrono::seconds(60); // only ever reached by a fault

// A child that does what a script says.
std::string Shell(std::string_view script) { return "/bin/sh -c " + QuoteArgument(script); }
constexpr const char* kDeaf = "exec sleep 1000";
// Two streams at once, a line and a noise without an end of line each time.
std::string Flood(int count) {
    return "i=0; while [ $i -lt " + std::to_string(count) +
           " ]; do echo progress $i; printf noise >&2; i=$((i+1)); done";
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
        ASSERT_TRUE(child.Open(Shell(R"(printf progress; printf ' 5\r\nmessage info "a ""b"" c"\n'
                                        while read word; do echo got $word; [ $word = stop ] && exit; done)"),
                               false));
        child.SendCommand("start");
        EXPECT_TRUE(child.WaitForLines(3));
        EXPECT_TRUE(child.IsRunning());
        child.SendCommand("stop");
        child.Finish();
        EXPECT_THAT(child.lines,
                    ElementsAre("progress|5", "message|info|a \"b\" c", "got|start", "got|stop"));
    }
    // An unfinished line is kept for the next child.
    for (const char* script : {"printf progr", "printf 'ess 5\\n'"}) {
        child.lines.clear();
        ASSERT_TRUE(child.Open(Shell(script), false));
        child.Finish();
    }
    EXPECT_THAT(child.lines, ElementsAre("progress|5"));
}

TEST_F(RemoteProcess, InheritsNothingButItsChannel) {
    const CDescriptor inheritable(::open("/dev/null", O_RDONLY));
    const auto oldAction = std::signal(SIGPIPE, SIG_IGN);
    sigset_t user1;
    sigemptyset(&user1);
    sigaddset(&user1, SIGUSR1);
    ::pthread_sigmask(SIG_BLOCK, &user1, nullptr);
    CListener state, signals; // of which a shell would restore its own
    EXPECT_TRUE(
        state.Open(Shell("ls /proc/$$/fd; read id name state parent group session rest < /proc/$$/stat;"
                         " [ $session = $$ ] && echo leader"),
                   false));
    EXPECT_TRUE(signals.Open("/bin/grep Sig[BI] /proc/self/status", false));
    ::pthread_sigmask(SIG_UNBLOCK, &user1, nullptr);
    std::signal(SIGPIPE, oldAction);
    state.Finish();
    signals.Finish();
    EXPECT_THAT(state.lines, ElementsAre("0", "1", "2", "leader"));
    ASSERT_THAT(signals.lines, ElementsAre(StartsWith("SigBlk:|"), StartsWith("SigIgn:|")));
    const auto bitOf = [&](std::size_t line, int signal) {
        return std::stoull(signals.lines[line].substr(8), nullptr, 16) >> (signal - 1) & 1;
    };
    EXPECT_EQ(bitOf(0, SIGUSR1), 0u);
    EXPECT_EQ(bitOf(1, SIGPIPE), 0u);
}

TEST_F(RemoteProcess, TakesStandardDescriptorsFromAnywhere) {
    // The ends may lie on the numbers that they have to leave for one another.
    int ends[2];
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    const CDescriptor readEnd(ends[0]);
    CDescriptor writeEnd(ends[1]);
    const CDescriptor oldInput(::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3));
    ::dup3(writeEnd.Get(), STDIN_FILENO, O_CLOEXEC);
    CProcess child;
    EXPECT_TRUE(child.Create(Shell("printf a; printf b >&2"), false, -1, STDIN_FILENO, STDIN_FILENO));
    ::dup2(oldInput.Get(), STDIN_FILENO);
    writeEnd.Close();
    char text[8] = {};
    EXPECT_EQ(::read(readEnd.Get(), text, 1) + ::read(readEnd.Get(), text + 1, 1), 2);
    EXPECT_STREQ(text, "ab");
    EXPECT_TRUE(Becomes([&] { return !child.IsRunning(); }));
}

TEST_F(RemoteProcess, RefusesWhatCannotStart) {
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

TEST_F(RemoteProcess, SurvivesWordsToADeafChild) {
    CListener child;
    ASSERT_TRUE(child.Open(Shell("exit"), false));
    child.WaitForEnd();
    child.SendCommand("stop");
    child.Finish();

    ASSERT_TRUE(child.Open(Shell(kDeaf), false));
    for (int i = 0; i < 20000; ++i) child.SendCommand("stop"); // more than any channel holds
    EXPECT_TRUE(child.IsRunning());
    child.Terminate();
    EXPECT_FALSE(child.IsRunning());
    EXPECT_EQ(child.ProcessId(), 0u);
}

TEST_F(RemoteProcess, ReadsErrorsUpToAZero) {
    CListener child;
    ASSERT_TRUE(
        child.Open(Shell("echo bye; exec >&-; printf 'abc\\0def' >&2; " + std::string(kDeaf)), false));
    EXPECT_TRUE(child.WaitForLines(1));
    EXPECT_TRUE(child.WaitForError("abc"));
    EXPECT_TRUE(child.IsRunning());
    child.Terminate();
}

TEST_F(RemoteProcess, FullSinkHoldsTheFlood) {
    CListener child;
    ASSERT_TRUE(child.Open(Shell(Flood(5000)), false));
    EXPECT_TRUE(child.WaitForLines(5000));
    child.Finish();
    EXPECT_EQ(child.lines[4999], "progress|4999");
    EXPECT_EQ(child.error.size(), 5000 * std::string_view("noise").size());

    child.lines.clear();
    child.full = true;
    ASSERT_TRUE(child.Open(Shell("echo a"), false));
    child.WaitForEnd();
    EXPECT_TRUE(child.lines.empty());
    child.Finish(); // the last output is read all the same
    EXPECT_THAT(child.lines, ElementsAre("a"));

    ASSERT_TRUE(child.Open(Shell(Flood(100000)), false));
    child.Close(); // a full sink delays nothing
    EXPECT_EQ(child.lines.size(), 1u);
}

TEST_F(RemoteProcess, GrandchildDelaysNoClose) {
    CListener child;
    ASSERT_TRUE(child.Open(Shell("exit"), false)); // its end is not taken for that of the next
    child.Finish();
    ASSERT_TRUE(child.Open(Shell("exec 3<&0; cat <&3 &"), false));
    child.WaitForEnd();
    EXPECT_FALSE(child.WaitForReceivers());
    EXPECT_FALSE(child.IsRunning());
    child.Close();
    EXPECT_TRUE(child.WaitForReceivers());
}

TEST_F(RemoteProcess, CloseLeavesAChildRunning) {
    CListener child;
    ASSERT_TRUE(child.Open(Shell(kDeaf), false));
    const auto pid = static_cast<pid_t>(child.ProcessId());
    child.Close();
    EXPECT_FALSE(child.IsRunning());
    EXPECT_EQ(::kill(pid, 0), 0);
    ::kill(pid, SIGKILL);
    EXPECT_TRUE(Becomes([&] { return ::kill(pid, 0) != 0; }));
}
