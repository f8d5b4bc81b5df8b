// A child that takes command words on its standard input and reports lines on its standard output.
#pragma once

#include "processing/line_protocol.h"
#include "processing/process.h"
#include "processing/remote_process_receiver_thread.h"

#include <atomic>
#include <string>
#include <string_view>
#include <vector>

namespace Communication_Processus {

// Long-lived and reusable: one child after the other. Idle (ProcessId is 0), running (IsRunning), ended
// (ProcessId is not 0, IsRunning is false); nothing announces the end, the owner polls. After the end call
// WaitForReceivers, for the last of the output, and then Close.
//
// All public operations come from one thread. OnCommand and OnErrorOutput run on the receiver threads, so a
// derived class must call Close() in its own destructor, before its part of the object goes.
class CRemoteProcess : public CProcess {
  public:
    CRemoteProcess();
    ~CRemoteProcess() override;

    // Starts the child with its channel (`visible`: see CProcess::Create). Closes an earlier child first.
    // False, with nothing left open, when the child cannot be started or the system has no descriptor or
    // thread to give.
    bool Open(std::string_view commandLine, bool visible);
    // Stops the receivers, drops output not read yet and forgets the child, which goes on if it runs. The
    // bytes of a last line without its end stay, in front of what the next child writes.
    void Close() override;
    // Waits at most 1000 ms until all output is read and both receivers have ended; true when they have.
    // Another process that holds the child's outputs open makes it false. A full sink holds nothing back
    // meanwhile: the caller is the thread that would have to empty it.
    bool WaitForReceivers();

    // Writes one command line to the child. Never blocks and reports nothing: a word to a child that is
    // gone, or that has not read for so long that the channel is full, is lost.
    void SendCommand(std::string_view word);

  protected:
    // A line of at least one token. The token that names the line is the first.
    virtual void OnCommand(const std::vector<std::string>& tokens);
    // A piece of standard error as read, up to 1024 bytes.
    virtual void OnErrorOutput(std::string_view text);
    // True to leave standard output unread for the moment. Asked on the receiver thread before each read.
    virtual bool IsSinkFull() const { return false; }

  private:
    friend class CRemoteProcessReceiverThread;
    void Dispatch(EChildOutput output, std::string_view text);
    bool IsHeldBack(EChildOutput output) const;
    void DispatchLine(std::string_view line);

    Outils_Fichiers::CDescriptor m_command;
    CLineBuffer m_lines; // of the output receiver alone
    std::atomic<bool> m_draining{false};
    CRemoteProcessReceiverThread m_outputReceiver;
    CRemoteProcessReceiverThread m_errorReceiver;
};

} // namespace Communication_Processus
