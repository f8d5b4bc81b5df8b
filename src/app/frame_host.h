// What a document finds around it in the main frame: questions, output, progress, clock. UI thread.
#pragma once

#include "app/dialogs.h"
#include "document/document_host.h"
#include "processing/receivers.h"

#include <functional>

namespace Application_Tarvel {

class CTrvOutputWnd;
class CTrvStatusBar;

class CTrvFrameHost final : public IDocumentHost, private Communication_Processus::INotificationWindow {
  public:
    // The wait cursor gives way while a question is asked.
    class CPlainCursor {
      public:
        explicit CPlainCursor(const CTrvFrameHost& host);
        ~CPlainCursor();
        CPlainCursor(const CPlainCursor&) = delete;
        CPlainCursor& operator=(const CPlainCursor&) = delete;

      private:
        const int m_count;
    };

    // `target` and `dialogs` must outlive the host.
    CTrvFrameHost(Outils::IMessageTarget& target, IDialogs& dialogs, std::filesystem::path programFolder,
                  std::filesystem::path userFolder);

    // The parent of all dialogs, and where lines and progress go; null, as at the start, for none. Each must
    // outlive the host or be detached.
    void Attach(QWidget* window, CTrvOutputWnd* output, CTrvStatusBar* statusBar);
    // Calls `onEquipment` with the equipment of each project that opens; an empty function ends that.
    void SetOnEquipment(std::function<void(std::int32_t)> onEquipment) {
        m_onEquipment = std::move(onEquipment);
    }

    EAnswer ShowMessage(const std::string& text, EButtons buttons, EIcon icon) override;
    std::vector<std::filesystem::path> AskPath(const SPathQuestion& question) override;
    // Show the dialogs that make a project; empty, as at the start, for none.
    void SetProjectMakers(std::function<EOutcome(SMadeProject&)> make,
                          std::function<EOutcome(const std::filesystem::path&, SMadeProject&)> makeFrom) {
        m_makeProject = std::move(make);
        m_makeProjectFrom = std::move(makeFrom);
    }
    // The same for the dialogs of the tools.
    using CUpdate = std::function<EOutcome(const std::filesystem::path&)>;
    using CConvert = std::function<EOutcome(const std::vector<std::filesystem::path>&, ERawFormat,
                                            std::filesystem::path&)>;
    void SetTools(CUpdate update, CConvert convert) {
        m_update = std::move(update);
        m_convert = std::move(convert);
    }
    EOutcome MakeProject(SMadeProject& made) override;
    EOutcome MakeProjectFrom(const std::filesystem::path& commandFile, SMadeProject& made) override;
    EOutcome UpdateDataFile(const std::filesystem::path& path) override;
    EOutcome ConvertRawFiles(const std::vector<std::filesystem::path>& files, ERawFormat format,
                             std::filesystem::path& converted) override;
    void AppendOutputText(const SOutputLine& line) override;
    void SetProgress(int percent) override;
    void ShowProgress(bool visible) override;
    void ShowWaitCursor(bool on) override;
    void UpdateMenuForEquipment(std::int32_t equipment) override;
    Communication_Interfaces::IMorvexNotification* GetReceiver() override { return &m_receiver; }
    std::filesystem::path GetProgramFolder() override { return m_programFolder; }
    std::filesystem::path GetUserFolder() override { return m_userFolder; }
    Outils_Temps::CDateTime GetTime() override { return Outils_Temps::CDateTime::Now(); }
    void Sleep(std::chrono::milliseconds time) override;
    std::chrono::milliseconds GetPatience() override { return std::chrono::milliseconds(100); }

  private:
    // Says by name that there is no dialog for this.
    EOutcome Refuse(std::string_view name);

    void OnProgressChanged() override;
    void OnMessageQueued() override;

    IDialogs& m_dialogs;
    const std::filesystem::path m_programFolder, m_userFolder;
    Communication_Processus::CMorvexReceiver m_receiver;
    std::function<void(std::int32_t)> m_onEquipment;
    std::function<EOutcome(SMadeProject&)> m_makeProject;
    std::function<EOutcome(const std::filesystem::path&, SMadeProject&)> m_makeProjectFrom;
    CUpdate m_update;
    CConvert m_convert;
    int m_waitCursors = 0;
    QWidget* m_window = nullptr;          // not owned
    CTrvOutputWnd* m_output = nullptr;    // not owned
    CTrvStatusBar* m_statusBar = nullptr; // not owned
};

} // namespace Application_Tarvel
