#include "processing/remote_process.h"

#include "foundation/text.h"

#include <chrono>
#include <exception>
#include <utility>

#include <fcntl.h>
#include <sys/socket.h>

namespace Communication_Processus {

namespace {

using Outils_Fichiers::CDescriptor;

struct SEnds {
    CDescriptor ours;
    CDescriptor childs;

    bool AreOpen() const { return ours.IsOpen() && childs.IsOpen(); }
};

// A socket and not a pipe: a write to a child that is gone then fails without a signal.
SEnds MakeCommandChannel() {
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) return {};
    return {CDescriptor(ends[0]), CDescriptor(ends[1])};
}

SEnds MakeOutputChannel() {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) return {};
    return {CDescriptor(ends[0]), CDescriptor(ends[1])};
}

} // namespace

CRemoteProcess::CRemoteProcess()
    : m_outputReceiver(*this, outputStandard), m_errorReceiver(*this, outputError) {}

CRemoteProcess::~CRemoteProcess() { CRemoteProcess::Close(); }

bool CRemoteProcess::Open(std::string_view commandLine, bool visible) {
    Close();
    SEnds command = MakeCommandChannel();
    SEnds output = MakeOutputChannel();
    SEnds error = MakeOutputChannel();
    if (!command.AreOpen() || !output.AreOpen() || !error.AreOpen()) return false;
    if (!Create(commandLine, visible, command.childs.Get(), output.childs.Get(), error.childs.Get()))
        return false;
    m_command = std::move(command.ours);
    if (m_outputReceiver.Receive(std::move(output.ours)) && m_errorReceiver.Receive(std::move(error.ours)))
        return true;
    Terminate(); // a child that nobody listens to would only fill its pipes and stop
    return false;
}

void CRemoteProcess::Close() {
    CProcess::Close();
    m_outputReceiver.Finish();
    m_errorReceiver.Finish();
    m_command.Close();
}

bool CRemoteProcess::WaitForReceivers() {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(1000);
    m_draining.store(true, std::memory_order_release);
    const bool outputEnded = m_outputReceiver.WaitUntil(end);
    const bool errorEnded = m_errorReceiver.WaitUntil(end);
    m_draining.store(false, std::memory_order_release);
    return outputEnded && errorEnded;
}

void CRemoteProcess::SendCommand(std::string_view word) {
    if (!m_command.IsOpen()) return;
    const std::string line = FormatCommand(word);
    [[maybe_unused]] const auto sent =
        ::send(m_command.Get(), line.data(), line.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
}

void CRemoteProcess::OnCommand(const std::vector<std::string>& /*tokens*/) {}

void CRemoteProcess::OnErrorOutput(std::string_view /*text*/) {}

bool CRemoteProcess::IsHeldBack(EChildOutput output) const {
    return output == outputStandard && !m_draining.load(std::memory_order_acquire) && IsSinkFull();
}

void CRemoteProcess::Dispatch(EChildOutput output, std::string_view text) {
    // A piece counts as text that ends at a zero: what stands behind one is lost, up to the end of the piece.
    text = Outils_Texte::TrimAtZero(text);
    if (output == outputError)
        OnErrorOutput(text);
    else
        m_lines.Append(text, [this](std::string_view line) { DispatchLine(line); });
}

void CRemoteProcess::DispatchLine(std::string_view line) {
    try {
        const std::vector<std::string> tokens = SplitTokens(line);
        if (!tokens.empty()) OnCommand(tokens);
    } catch (const std::exception&) {
        // Caught for each line, so that the lines behind it in the same piece are still read.
    }
}

} // namespace Communication_Processus
