#include "processing/process.h"

#include "foundation/descriptor.h"
#include "processing/command_line.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace Communication_Processus {

namespace {

using Outils_Fichiers::CDescriptor;

constexpr int kFirstFree = 3; // behind the standard descriptors

class CSpawnActions {
  public:
    CSpawnActions() { m_good = posix_spawn_file_actions_init(&m_actions) == 0; }
    ~CSpawnActions() {
        if (m_good) posix_spawn_file_actions_destroy(&m_actions);
    }
    CSpawnActions(const CSpawnActions&) = delete;
    CSpawnActions& operator=(const CSpawnActions&) = delete;

    // `source` is behind the standard descriptors, so that no step overwrites the source of another; -1 gives
    // the null device.
    bool SetStandard(int number, int source) {
        if (!m_good) return false;
        if (source < 0)
            return posix_spawn_file_actions_addopen(&m_actions, number, "/dev/null", O_RDWR, 0) == 0;
        return posix_spawn_file_actions_adddup2(&m_actions, source, number) == 0;
    }
    // Libraries open descriptors too, and not all of them mark these as not to be inherited.
    bool CloseOthers() { return posix_spawn_file_actions_addclosefrom_np(&m_actions, kFirstFree) == 0; }
    const posix_spawn_file_actions_t* Get() const { return &m_actions; }

  private:
    posix_spawn_file_actions_t m_actions;
    bool m_good = false;
};

class CSpawnAttributes {
  public:
    CSpawnAttributes() {
        if (posix_spawnattr_init(&m_attributes) != 0) return;
        m_initialised = true;
        sigset_t all;
        sigset_t none;
        sigfillset(&all);
        sigemptyset(&none);
        constexpr short flags = POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSID;
        m_good = posix_spawnattr_setsigdefault(&m_attributes, &all) == 0 &&
                 posix_spawnattr_setsigmask(&m_attributes, &none) == 0 &&
                 posix_spawnattr_setflags(&m_attributes, flags) == 0;
    }
    ~CSpawnAttributes() {
        if (m_initialised) posix_spawnattr_destroy(&m_attributes);
    }
    CSpawnAttributes(const CSpawnAttributes&) = delete;
    CSpawnAttributes& operator=(const CSpawnAttributes&) = delete;

    bool IsGood() const { return m_good; }
    const posix_spawnattr_t* Get() const { return &m_attributes; }

  private:
    posix_spawnattr_t m_attributes;
    bool m_initialised = false;
    bool m_good = false;
};

// 0 when the program did not start.
pid_t Spawn(std::vector<std::string> arguments, const std::array<int, 3>& standard) {
    CSpawnActions actions;
    const CSpawnAttributes attributes;
    std::array<CDescriptor, 3> lifted; // copies of descriptors that stand in the way of the standard ones
    for (int number = 0; number < 3; ++number) {
        int source = standard[static_cast<std::size_t>(number)];
        if (source >= 0 && source < kFirstFree) {
            auto& copy = lifted[static_cast<std::size_t>(number)];
            copy = CDescriptor(::fcntl(source, F_DUPFD_CLOEXEC, kFirstFree));
            if (!copy.IsOpen()) return 0;
            source = copy.Get();
        }
        if (!actions.SetStandard(number, source)) return 0;
    }
    if (!actions.CloseOthers() || !attributes.IsGood()) return 0;

    std::vector<char*> argv;
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    pid_t pid = 0;
    // Also tells of a program that cannot be executed, not only of a process that cannot be made.
    if (::posix_spawnp(&pid, argv[0], actions.Get(), attributes.Get(), argv.data(), environ) != 0) return 0;
    return pid;
}

enum EWait { waitNot, waitForEnd };

// True when the child has ended; it is collected then. A child that is not ours to collect has ended too:
// someone has set up this process so that the system collects children by itself.
bool Collect(pid_t pid, EWait wait) {
    for (;;) {
        const pid_t result = ::waitpid(pid, nullptr, wait == waitNot ? WNOHANG : 0);
        if (result == 0) return false;
        if (result > 0 || errno != EINTR) return true;
    }
}

void CollectLater(pid_t pid) {
    try {
        std::thread([pid] { Collect(pid, waitForEnd); }).detach();
    } catch (const std::system_error&) {
        // No thread to be had: the system collects the child when this process ends.
    }
}

} // namespace

CProcess::~CProcess() { CProcess::Close(); }

bool CProcess::Create(std::string_view commandLine, bool /*visible*/, int standardInput, int standardOutput,
                      int standardError) {
    CProcess::Close();
    std::vector<std::string> arguments = SplitCommandLine(commandLine);
    if (arguments.front().empty()) return false;
    m_pid = Spawn(std::move(arguments), {standardInput, standardOutput, standardError});
    m_ended = false;
    return m_pid != 0;
}

void CProcess::Close() {
    if (IsRunning()) CollectLater(m_pid);
    m_pid = 0;
    m_ended = false;
}

bool CProcess::IsRunning() {
    if (m_pid != 0 && !m_ended) m_ended = Collect(m_pid, waitNot);
    return m_pid != 0 && !m_ended;
}

void CProcess::Terminate() {
    if (IsRunning()) {
        // Readable once the child has ended. The library has no usable declaration of this call.
        const CDescriptor end(static_cast<int>(::syscall(SYS_pidfd_open, m_pid, 0)));
        ::kill(m_pid, SIGKILL);
        // A child in the middle of a disk access may take its time; the UI thread does not wait for that.
        constexpr int longestWait = 1000; // ms
        pollfd poll{end.Get(), POLLIN, 0};
        if (end.IsOpen()) ::poll(&poll, 1, longestWait);
    }
    Close();
}

} // namespace Communication_Processus
