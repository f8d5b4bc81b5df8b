// The main window: menus, tool bars, panels, the view of the graphs, and the document they all show. UI
// thread.
#pragma once

#include "app/app.h"
#include "app/commands.h"
#include "app/dialogs.h"
#include "app/recent_files.h"
#include "document/document.h"
#include "foundation/texts.h"
#include "processing/receivers.h"
#include "views/output_wnd.h"
#include "views/view_1d.h"
#include "views/view_processing.h"

#include <QMainWindow>

#include <map>

class QSettings;

namespace Application_Tarvel {

using Outils_Texte::EText;

class CTrvStatusBar;

class CTrvProjectMainFrame final : public QMainWindow,
                                   public IDocumentHost,
                                   public IDocumentView,
                                   private Communication_Processus::INotificationWindow {
    Q_OBJECT

  public:
    // Makes the whole window, not shown yet, over an empty document. `settings` keeps the places of bars and
    // panels and the recent projects. All four must outlive the frame.
    CTrvProjectMainFrame(CTrvApp& application, Outils::IMessageTarget& target, IDialogs& dialogs,
                         QSettings& settings);
    ~CTrvProjectMainFrame() override;

    CTrvDocument& GetDocument() { return m_document; }
    CTrvView1D& GetView() const { return *m_view; }
    CTrvViewProcessing& GetProcessing() const { return *m_processing; }
    CTrvOutputWnd& GetOutput() const { return *m_output; }
    const CRecentFiles& GetRecentFiles() const { return m_recentFiles; }
    // The action of a command; every command of the table has one.
    QAction& GetAction(int command) const { return *m_actions.at(command); }
    bool HasProject() const { return m_document.GetProject() != nullptr; }
    bool IsRunning() const { return m_running; }
    // The equipment of the project opened last, which decides what its menus offer; 0 without one.
    std::int32_t GetEquipment() const { return m_equipment; }

    // What the rows of the command table do.
    void NewProject();
    void AskAndOpen();
    // Opens a project unless a run is under way; false when it did not come to that or failed.
    bool OpenProject(const std::filesystem::path& path);
    void OpenRecent(int index);
    // "&1 mission.tarprj"; empty when the list is shorter.
    QString GetRecentCaption(int index) const;
    bool IsBarShown(int command) const;
    void ToggleBar(int command);
    bool HasUserGuide() const;
    void OpenUserGuide();
    void ContactSupport();
    void ShowAbout();

    // The style and colours of the `appearance` setting; again after a change of it.
    void ApplyAppearance();

    EAnswer ShowMessage(const std::string& text, EButtons buttons, EIcon icon) override;
    std::vector<std::filesystem::path> AskPath(const SPathQuestion& question) override;
    // The dialogs of these have no windows yet.
    EOutcome MakeProject(SMadeProject& made) override;
    EOutcome MakeProjectFrom(const std::filesystem::path& commandFile, SMadeProject& made) override;
    EOutcome UpdateDataFile(const std::filesystem::path& path) override;
    EOutcome ConvertRawFiles(const std::vector<std::filesystem::path>& files, ERawFormat format,
                             std::filesystem::path& converted) override;
    void AppendOutputText(const std::string& line) override;
    void SetProgress(int percent) override;
    void ShowProgress(bool visible) override;
    void ShowWaitCursor(bool on) override;
    void UpdateMenuForEquipment(std::int32_t equipment) override;
    Communication_Interfaces::IMorvexNotification* GetReceiver() override { return &m_receiver; }
    std::filesystem::path GetProgramFolder() override { return m_application.GetProgramFolder(); }
    Outils_Temps::CDateTime GetTime() override { return Outils_Temps::CDateTime::Now(); }
    void Sleep(std::chrono::milliseconds time) override;
    std::chrono::milliseconds GetPatience() override { return std::chrono::milliseconds(100); }

    void OnUpdate(EHint hint, const Outils_Objets::CObject* object) override;

  protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    class CPlainCursor;

    // Says by name that there is no dialog for this.
    EOutcome Refuse(std::string_view name);

    void OnProgressChanged() override;
    void OnMessageQueued() override;

    void MakeActions();
    void MakeMenus();
    QToolBar* MakeToolBar(EBar bar, const char* name, EText title);
    QDockWidget* MakePanel(int command, const char* name, EText title, QWidget* content, QSize size,
                           Qt::DockWidgetArea area);
    void RegisterBar(int command, QWidget* bar);
    void RestoreWindow();
    void StoreWindow();
    void RunCommand(const SCommandRow& row);
    // Brings title, recent projects and the states of all commands in line with the document.
    void UpdateFrame();

    CTrvApp& m_application;
    IDialogs& m_dialogs;
    QSettings& m_settings;
    Communication_Processus::CMorvexReceiver m_receiver; // outlives the document's engine
    CRecentFiles m_recentFiles;
    int m_waitCursors = 0; // before the document, whose end shows one
    CTrvStatusBar* m_statusBar = nullptr;
    CTrvOutputWnd* m_output = nullptr;
    CTrvDocument m_document;
    // The widgets belong to the window.
    CTrvView1D* m_view = nullptr;
    CTrvViewProcessing* m_processing = nullptr;
    std::map<int, QAction*> m_actions;
    std::map<EMenu, QMenu*> m_menus;
    std::map<int, QWidget*> m_bars; // what a toggle command shows and hides
    std::int32_t m_equipment = 0;
    bool m_running = false;
    std::filesystem::path m_knownPath; // of the document, when last looked at
};

} // namespace Application_Tarvel
