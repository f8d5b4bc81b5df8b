// The thread that reads one output of a child.
#pragma once

#include "foundation/descriptor.h"
#include "foundation/thread.h"

#include <chrono>

namespace Communication_Processus {

class CRemoteProcess;

enum EChildOutput { outputStandard, outputError };

// Reads until the output ends or the thread is asked to stop, and hands what it reads to its owner. All
// operations but the body are called from the owner's thread.
class CRemoteProcessReceiverThread : public Outils::CThread {
  public:
    // `owner` must outlive the thread.
    CRemoteProcessReceiverThread(CRemoteProcess& owner, EChildOutput output)
        : m_owner(owner), m_output(output) {}
    ~CRemoteProcessReceiverThread() override { Finish(); }

    // Starts reading `readEnd`, which is the thread's from now on. False when the thread is running already
    // or the system gives no thread or descriptor; `readEnd` is closed then.
    bool Receive(Outils_Fichiers::CDescriptor readEnd);
    // Waits at most until `end` for the body to return; true when it has, or was never started.
    bool WaitUntil(std::chrono::steady_clock::time_point end);
    // Makes the body end, waits for it and closes the read end. What was not read yet is lost. Another
    // process that still holds the write end cannot delay it.
    void Finish();

  protected:
    void Run() override;
    void RequestStop() override;

  private:
    bool WaitForOutput();

    CRemoteProcess& m_owner;
    const EChildOutput m_output;
    Outils_Fichiers::CDescriptor m_readEnd; // closed only while the thread does not run
    Outils_Fichiers::CDescriptor m_wake;    // becomes readable when the body is to end
    Outils::CEvent m_done;
};

} // namespace Communication_Processus
