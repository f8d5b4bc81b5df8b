#include "processing/remote_process_receiver_thread.h"

#include "processing/remote_process.h"

#include <algorithm>
#include <cerrno>
#include <exception>
#include <iterator>
#include <string_view>
#include <utility>

#include <poll.h>
#include <sys/eventfd.h>

namespace Communication_Processus {

namespace {

constexpr std::size_t kPiece = 1024; // bytes read at a time
constexpr int kHeldBackPause = 10;   // ms until a full sink is asked again

} // namespace

bool CRemoteProcessReceiverThread::Receive(Outils_Fichiers::CDescriptor readEnd) {
    if (IsAlive()) return false;
    Finish();
    m_wake = Outils_Fichiers::CDescriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    if (!readEnd.IsOpen() || !m_wake.IsOpen()) return false;
    m_readEnd = std::move(readEnd);
    m_done.Reset();
    if (Start()) return true;
    Finish();
    return false;
}

bool CRemoteProcessReceiverThread::WaitUntil(std::chrono::steady_clock::time_point end) {
    using std::chrono::milliseconds;
    const auto left = std::chrono::ceil<milliseconds>(end - std::chrono::steady_clock::now());
    if (IsAlive() && !m_done.Wait(std::max(left, milliseconds(0)))) return false;
    Join(); // what is left of the thread takes no time
    return true;
}

void CRemoteProcessReceiverThread::Finish() {
    Kill();
    m_readEnd.Close();
    m_wake.Close();
}

void CRemoteProcessReceiverThread::RequestStop() {
    if (!m_wake.IsOpen()) return;
    ::eventfd_write(m_wake.Get(), 1); // fails only if it is readable already
}

// Waits until there is something to read, or the output has ended. False when the body is to end.
bool CRemoteProcessReceiverThread::WaitForOutput() {
    for (;;) {
        const bool heldBack = m_owner.IsHeldBack(m_output);
        pollfd polls[] = {{m_wake.Get(), POLLIN, 0}, {heldBack ? -1 : m_readEnd.Get(), POLLIN, 0}};
        if (::poll(polls, std::size(polls), heldBack ? kHeldBackPause : -1) < 0 && errno != EINTR)
            return false;
        if (polls[0].revents != 0) return false;
        if (polls[1].revents != 0) return true;
    }
}

void CRemoteProcessReceiverThread::Run() {
    char piece[kPiece];
    while (WaitForOutput()) {
        const ssize_t count = ::read(m_readEnd.Get(), piece, sizeof piece);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        try {
            m_owner.Dispatch(m_output, std::string_view(piece, static_cast<std::size_t>(count)));
        } catch (const std::exception&) {
            // Out of memory: this piece is lost. The child must not take the program with it.
        }
    }
    m_done.Set();
}

} // namespace Communication_Processus
