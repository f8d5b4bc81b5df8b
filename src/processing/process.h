// One child process: its start, whether it runs, its end.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace Communication_Processus {

// How a child ended.
struct SProcessEnd {
    // `unknown` when the system has collected the child before us.
    enum class EKind { exited, killed, unknown };
    EKind kind = EKind::unknown;
    int number = 0; // the exit code, or the signal

    bool IsSuccess() const { return kind == EKind::exited && number == 0; }
    friend bool operator==(const SProcessEnd&, const SProcessEnd&) = default;
};
// "exit code 3", "killed by signal 9", or "in an unknown way".
std::string ToText(const SProcessEnd& end);

// Not thread-safe: all calls come from one thread, as a rule the UI thread.
//
// No child is left uncollected by the system: the first IsRunning after its end, Close, or Terminate collects
// it. A child that still runs at Close goes on, and a waiter that knows only its number collects it whenever
// it ends. No one joins the waiter: to join it would be to wait, at Close or at exit, for a child that may
// never end; and to end the child instead could leave a half written file.
class CProcess {
  public:
    CProcess() = default;
    // Closes.
    virtual ~CProcess();
    CProcess(const CProcess&) = delete;
    CProcess& operator=(const CProcess&) = delete;

    // Starts the program named first in `commandLine` (see command_line.h; PATH is searched for a name
    // without a slash), with the environment and working directory of this process. The three descriptors
    // become the child's standard ones and remain the caller's; each may be -1, then the child gets the null
    // device. The child inherits no other descriptor, has the default signal actions and a session of its
    // own, so that a Ctrl-C in our terminal does not reach it. `visible` changes nothing: a program here has
    // no console window to show or hide. Closes an earlier child first. False when the program cannot be
    // started.
    virtual bool Create(std::string_view commandLine, bool visible, int standardInput, int standardOutput,
                        int standardError);
    // Forgets the child without ending it. Its end, if it was seen, remains.
    virtual void Close();

    // True while a child exists that has not ended. Cheap: one system call while the child runs, then none.
    bool IsRunning();
    // Kills the child, waits at most a second until the system has ended it, and calls Close.
    void Terminate();
    // How the last child ended. REQUIRES: IsRunning() is false.
    const SProcessEnd& GetEnd() const { return m_end; }

    // Non-zero from a successful Create until Close, also after the child's end.
    std::uint32_t ProcessId() const { return static_cast<std::uint32_t>(m_pid); }

  private:
    pid_t m_pid = 0;
    bool m_ended = false; // the child is collected: its number may belong to another process by now
    SProcessEnd m_end;
};

} // namespace Communication_Processus
