// One child process: its start, whether it runs, its end.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string_view>

namespace Communication_Processus {

// Not thread-safe: all calls come from one thread, as a rule the UI thread.
//
// No child is left uncollected by the system: its end is taken note of by the first IsRunning that sees it,
// by Close and by Terminate. A child that still runs at Close goes on, and a waiter that knows nothing but
// its number collects it whenever it ends. The waiter is the one thread of the program that nobody joins: to
// join it would be to wait, at Close or at exit, for a child that may never end; and to end the child
// instead could leave a half written file.
class CProcess {
  public:
    CProcess() = default;
    // Closes.
    virtual ~CProcess();
    CProcess(const CProcess&) = delete;
    CProcess& operator=(const CProcess&) = delete;

    // Starts the program named first in `commandLine` (see command_line.h; a name without a slash is looked
    // for along PATH), with the environment and working directory of this process. The three descriptors
    // become the child's standard ones and stay the caller's; each may be -1, then the child gets the null
    // device. The child inherits no other descriptor, has the default signal actions and a session of its
    // own, so that a Ctrl-C in our terminal does not reach it. `visible` is taken for the sake of the tools'
    // callers and changes nothing: a program here has no console window to show or hide. Closes an earlier
    // child first. False when the program cannot be started.
    virtual bool Create(std::string_view commandLine, bool visible, int standardInput, int standardOutput,
                        int standardError);
    // Forgets the child without ending it.
    virtual void Close();

    // True while a child exists that has not ended. Cheap: one system call while the child runs, then none.
    bool IsRunning();
    // Ends the child the hard way, waits at most a second until the system has ended it, and calls Close.
    void Terminate();

    // Non-zero from a successful Create until Close, also when the child has ended meanwhile.
    std::uint32_t ProcessId() const { return static_cast<std::uint32_t>(m_pid); }

  private:
    pid_t m_pid = 0;
    bool m_ended = false; // the child has been collected: its number may belong to another process by now
};

} // namespace Communication_Processus
