#include "dialogs/tool_run.h"

#include "foundation/texts.h"
#include "processing/child_processes.h"
#include "processing/receivers.h"

namespace Dialogue_Tarvel {

using namespace Communication_Interfaces;
using namespace Communication_Processus;
using Outils_Texte::EText;

namespace {

constexpr std::chrono::milliseconds kEndPatience(1000); // of a dialog that goes while its tool runs

} // namespace

std::chrono::seconds EstimateTimeLeft(std::chrono::steady_clock::duration elapsed, int percent) {
    return std::chrono::round<std::chrono::seconds>(elapsed * (100 - percent) / percent);
}

template <class TProcess, class TNotification>
struct CToolRun::TChild final : IChild {
    TChild(Outils::IMessageTarget& target, INotificationWindow* window) : receiver(target, window) {
        process.SetNotification(&receiver);
    }
    CRemoteProcess& GetProcess() override { return process; }
    CNotificationQueue& GetQueue() override { return receiver; }

    CToolReceiver<TNotification> receiver;
    TProcess process; // goes first: its threads report to the receiver
};

std::unique_ptr<CToolRun::IChild> CToolRun::MakeChild(EToolKind kind) {
    INotificationWindow* const window = this;
    using CImporter = TChild<CProcessSimpleImporter, ISimpleImporterNotification>;
    using CExporter = TChild<CProcessSimpleExporter, ISimpleExporterNotification>;
    using CUpdater = TChild<CProcessFileUpdater, IFileUpdaterNotification>;
    switch (kind) {
    case EToolKind::importer: return std::make_unique<CImporter>(m_messages, window);
    case EToolKind::exporter: return std::make_unique<CExporter>(m_messages, window);
    default: return std::make_unique<CUpdater>(m_messages, window);
    }
}

CToolRun::CToolRun(EToolKind kind, Application_Tarvel::IDocumentHost& host, COnMessage onMessage)
    : m_host(host),
      m_onMessage(std::move(onMessage)),
      m_child(MakeChild(kind)),
      m_run(m_child->GetProcess(), *this) {}

CToolRun::~CToolRun() { m_run.StopNow(kEndPatience); }

bool CToolRun::Start(const std::string& commandLine) {
    m_messages.RunPending();
    m_child->GetQueue().StoreProgress(0);
    m_error.clear();
    m_start = std::chrono::steady_clock::now();
    return m_run.Start(commandLine);
}

CToolRun::ERunState CToolRun::Poll() { return Report(m_run.Poll()); }

CToolRun::ERunState CToolRun::Wait(std::chrono::milliseconds time) {
    m_messages.RunOne(time);
    return Poll();
}

CToolRun::ERunState CToolRun::Stop() { return Report(m_run.Stop()); }

// After an end all output is in the queue.
CToolRun::ERunState CToolRun::Report(ERunState state) {
    m_messages.RunPending();
    return state;
}

int CToolRun::GetProgress() const {
    return IsActive() ? static_cast<int>(m_child->GetQueue().LastProgress()) : 0;
}

std::optional<std::chrono::seconds> CToolRun::GetTimeLeft() const {
    const int percent = GetProgress();
    if (percent <= 0) return std::nullopt;
    return EstimateTimeLeft(std::chrono::steady_clock::now() - m_start, percent);
}

void CToolRun::OnMessageQueued() {
    int level = 0, code = 0;
    std::string text;
    if (!m_child->GetQueue().TakeMessage(level, code, text)) return;
    if (level == levelError && m_error.empty()) m_error = text;
    m_onMessage(level, text);
}

bool CToolRun::AskToTerminate() {
    using namespace Application_Tarvel;
    return m_host.ShowMessage(std::string(Outils_Texte::GetText(EText::toolFrozen)), EButtons::okCancel,
                              EIcon::exclamation) == EAnswer::ok;
}

} // namespace Dialogue_Tarvel
