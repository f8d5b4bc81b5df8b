// The main window: menus, tool bars, panels, the view of the graphs, and the document they all show. UI
// thread.
#pragma once

#include "app/app.h"
#include "app/commands.h"
#include "app/frame_host.h"
#include "app/recent_files.h"
#include "dialogs/tool_dialog.h"
#include "document/document.h"
#include "foundation/text_id.h"
#include "views/output_panel.h"
#include "views/output_wnd.h"
#include "views/plan_view.h"
#include "views/view_1d.h"
#include "views/view_metadata.h"
#include "views/view_processing.h"
#include "views/view_value.h"

#include <QMainWindow>

#include <map>
#include <memory>
#include <optional>
#include <vector>

class QSettings;

namespace Application_Tarvel {

using Outils_Texte::EText;

class CTrvCommandBars;
class CWindowMiddle;
class CTrvGraphCommands;

class CTrvProjectMainFrame final : public QMainWindow, public IDocumentView {
    Q_OBJECT

  public:
    // Makes the whole window, not shown yet, over the document. `host` is that of the document; `settings`
    // keeps the places of bars and panels and the recent projects; `viewState` is what all panels share. All
    // six must outlive the frame.
    CTrvProjectMainFrame(CTrvApp& application, CTrvFrameHost& host, CTrvDocument& document,
                         Presentation_Tarvel_Graphics::CViewState& viewState, IDialogs& dialogs,
                         QSettings& settings);
    ~CTrvProjectMainFrame() override;

    CTrvDocument& GetDocument() const { return m_document; }
    // Displayed time, ranges, cursors: for every panel that shows values.
    Presentation_Tarvel_Graphics::CViewState& GetViewState() const { return m_viewState; }
    CTrvView1D& GetView() const { return *m_view; }
    CTrvGraphCommands& GetGraphs() const { return *m_graphs; }
    CTrvViewProcessing& GetProcessing() const { return *m_processing; }
    CTrvOutputWnd& GetOutput() const { return m_output->GetLines(); }
    CTrvViewMetadata& GetVariables() const { return *m_variables; }
    CTrvViewValue& GetValues() const { return *m_values; }
    CTrvPlanView& GetPlan() const { return *m_plan; }
    const CRecentFiles& GetRecentFiles() const { return m_recentFiles; }
    // The action of a command; every command of the table has one.
    QAction& GetAction(int command) const;
    bool HasProject() const { return m_document.GetProject() != nullptr; }
    bool IsRunning() const { return m_running; }
    // The equipment of the project, which decides what its menus offer; 0 without one.
    std::int32_t GetEquipment() const { return HasProject() ? m_equipment : 0; }

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
    // As found at the start.
    bool HasUserGuide() const { return m_hasUserGuide; }
    void OpenUserGuide();
    void ContactSupport();
    void ShowAbout();
    void ShowSettings();
    void ImportConfiguration();
    // The dialog for data files that are not in their place; says so when there are none.
    void PrepareBatchCommandFile();
    void Relink();
    void MoveFile();
    // Puts panels and tool bars back to their first places.
    void ResetLayout();
    void Export();
    // Asks for the file when `path` is empty. A recording of a sensor that was converted for it gets its
    // sensor.
    void AddDataFile(const std::filesystem::path& path = {});

    // The style and colours of the `appearance` setting; again after a change of it.
    void ApplyAppearance();

    // Brings title, recent projects and the states of all commands in line with the document.
    void UpdateFrame();
    void OnUpdate(EHint hint, const Outils_Objets::CObject* object) override;

  protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    EOutcome MakeProject(SMadeProject& made, std::vector<std::filesystem::path> files);
    EOutcome MakeProjectFrom(const std::filesystem::path& commandFile, SMadeProject& made);
    EOutcome UpdateFile(const std::filesystem::path& path);
    EOutcome ConvertFiles(const std::vector<std::filesystem::path>& files, ERawFormat format,
                          std::filesystem::path& converted);
    Dialogue_Tarvel::SToolServices GetToolServices();
    // What was dropped on the window.
    void Take(const std::vector<std::filesystem::path>& files);
    void ChooseValue(const Presentation_Tarvel_Grid::CHGItem& item);
    QDockWidget* MakePanel(int command, const char* name, EText title, QWidget* content, QSize size,
                           Qt::DockWidgetArea area);
    void MakeDataPanels();
    void RestoreWindow();
    void StoreWindow();

    CTrvApp& m_application;
    IDialogs& m_dialogs;
    QSettings& m_settings;
    CRecentFiles m_recentFiles;
    CTrvFrameHost& m_host;
    CTrvDocument& m_document;
    Presentation_Tarvel_Graphics::CViewState& m_viewState;
    std::vector<std::filesystem::path> m_dropped; // recordings for the next new project
    std::optional<ERawFormat> m_convertedFormat;  // of the last conversion
    // The widgets belong to the window.
    CTrvStatusBar* m_statusBar = nullptr;
    CTrvOutputPanel* m_output = nullptr;
    CWindowMiddle* m_middle = nullptr;
    CTrvView1D* m_view = nullptr;
    CTrvViewProcessing* m_processing = nullptr;
    CTrvViewMetadata* m_variables = nullptr;
    CTrvViewValue* m_values = nullptr;
    CTrvPlanView* m_plan = nullptr;
    std::unique_ptr<CTrvGraphCommands> m_graphs;
    std::unique_ptr<CTrvCommandBars> m_commands;
    std::map<int, QWidget*> m_bars; // what a toggle command shows and hides
    std::int32_t m_equipment = 0;
    bool m_running = false;
    bool m_hasUserGuide = false;
    std::filesystem::path m_knownPath; // of the document, when last looked at
    QByteArray m_firstLayout;
};

} // namespace Application_Tarvel
