// The document's surroundings in a script: texts become lines, questions get the answer that goes on.
#pragma once

#include "batch/commands.h"
#include "batch/run_report.h"
#include "document/document_host.h"
#include "foundation/message_target.h"
#include "processing/receivers.h"

namespace Batch {

// A text of several paragraphs as one line.
std::string ToLine(std::string_view text);

class CBatchHost final : public Application_Tarvel::IDocumentHost,
                         private Communication_Processus::INotificationWindow {
  public:
    // What the application shows in its output panel and as progress goes to the report, which must outlive
    // the host.
    CBatchHost(SStreams streams, IReport& report)
        : m_streams(streams), m_report(report), m_receiver(m_queue, this) {}

    Outils::CMessageQueue& GetQueue() { return m_queue; }
    // A child reported an error.
    bool HasFailed() const { return m_failed; }

    Application_Tarvel::EAnswer ShowMessage(const std::string& text, Application_Tarvel::EButtons buttons,
                                            Application_Tarvel::EIcon icon) override;
    std::vector<std::filesystem::path> AskPath(const Application_Tarvel::SPathQuestion& question) override;
    Application_Tarvel::EOutcome MakeProject(Application_Tarvel::SMadeProject&) override;
    Application_Tarvel::EOutcome MakeProjectFrom(const std::filesystem::path&,
                                                 Application_Tarvel::SMadeProject&) override;
    Application_Tarvel::EOutcome UpdateDataFile(const std::filesystem::path& path) override;
    Application_Tarvel::EOutcome ConvertRawFiles(const std::vector<std::filesystem::path>& files,
                                                 Application_Tarvel::ERawFormat,
                                                 std::filesystem::path&) override;
    void AppendOutputText(const Application_Tarvel::SOutputLine& line) override;
    void SetProgress(int percent) override;
    void ShowProgress(bool visible) override;
    void ShowWaitCursor(bool) override {}
    void UpdateMenuForEquipment(std::int32_t) override {}
    Communication_Interfaces::IMorvexNotification* GetReceiver() override { return &m_receiver; }
    std::filesystem::path GetProgramFolder() override;
    std::filesystem::path GetUserFolder() override { return {}; } // a command leaves nothing for a next start
    Outils_Temps::CDateTime GetTime() override { return Outils_Temps::CDateTime::Now(); }
    void Sleep(std::chrono::milliseconds time) override;
    // A command has nothing else to do.
    std::chrono::milliseconds GetPatience() override { return std::chrono::hours(24); }

  private:
    // Says by name that there is no dialog for this.
    Application_Tarvel::EOutcome Refuse(std::string_view name);
    void OnProgressChanged() override { SetProgress(static_cast<int>(m_receiver.LastProgress())); }
    void OnMessageQueued() override;

    SStreams m_streams;
    IReport& m_report;
    Outils::CMessageQueue m_queue;
    Communication_Processus::CMorvexReceiver m_receiver;
    bool m_failed = false;
    bool m_progressShows = false;
    int m_lastPercent = -1;
};

} // namespace Batch
