#include "app/main_frame.h"

#include "app/appearance.h"
#include "app/command_bars.h"
#include "app/graph_commands.h"
#include "app/panel_space.h"
#include "app/status_bar.h"
#include "app/window_middle.h"
#include "dialogs/choosers.h"
#include "dialogs/export_tools.h"
#include "dialogs/file_updater.h"
#include "dialogs/import_tools.h"
#include "dialogs/project_dialogs.h"
#include "dialogs/relink.h"
#include "dialogs/rough_misalignment.h"
#include "dialogs/settings_dialog.h"
#include "document/edits.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "plot/text.h"
#include "views/drop_targets.h"

#include <QCloseEvent>
#include <QDockWidget>
#include <QDragEnterEvent>
#include <QGuiApplication>
#include <QMenuBar>
#include <QMimeData>
#include <QScreen>
#include <QSettings>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace Application_Tarvel {

using Outils_Configuration::Cnf;
using Outils_Fichiers::ToText;
using Outils_Plot2D::Text;
using Outils_Plot2D::ToPath;
using Outils_Plot2D::ToQString;
using Outils_Texte::EText;
using Outils_Texte::FormatText;

namespace {

constexpr int kStateVersion = 2; // of the window's layout: counts up when bars or panels are renamed
constexpr const char* kGeometryKey = "mainFrame/geometry";
constexpr const char* kStateKey = "mainFrame/state";
constexpr const char* kHeightsKey = "graphs/heights";
constexpr QSize kFirstSize(1280, 800);
constexpr QSize kProcessingSize(320, 500);
constexpr QSize kOutputSize(600, 140);
constexpr QSize kVariablesSize(255, 400);
constexpr QSize kValuesSize(255, 300);
constexpr QSize kPlanSize(500, 350);
constexpr const char* kCursorValuesKey = "variables/cursorValues";
constexpr const char* kStatisticsKey = "instantValues/statistics";
constexpr int kNoticeTime = 4000; // milliseconds

// The local files among what is dragged; empty when anything else is.
std::vector<std::filesystem::path> FilesOf(const QMimeData& data) {
    std::vector<std::filesystem::path> files;
    for (const QUrl& link : data.urls()) {
        if (!link.isLocalFile()) return {};
        files.push_back(ToPath(link.toLocalFile()));
    }
    return files;
}

bool IsProject(const std::filesystem::path& path) {
    return ToQString(path).endsWith(Text(EText::projectExtension), Qt::CaseInsensitive);
}

} // namespace

CTrvProjectMainFrame::CTrvProjectMainFrame(CTrvApp& application, CTrvFrameHost& host, CTrvDocument& document,
                                           Presentation_Tarvel_Graphics::CViewState& viewState,
                                           IDialogs& dialogs, QSettings& settings)
    : m_application(application),
      m_dialogs(dialogs),
      m_settings(settings),
      m_recentFiles(settings),
      m_host(host),
      m_document(document),
      m_viewState(viewState) {
    setObjectName("mainFrame");
    setWindowIcon(GetProductIcon());
    setAcceptDrops(true);
    setDockNestingEnabled(true);
    ApplyAppearance();

    m_view = new CTrvView1D(m_document, m_viewState, application.GetConfiguration(),
                            application.GetAdaptors(), application.GetPlotSettings(), this);
    m_middle = new CWindowMiddle(m_view, m_document, m_recentFiles, application.GetProgramFolder(), this);
    setCentralWidget(m_middle);
    connect(m_middle, &CWindowMiddle::NewRequested, this, &CTrvProjectMainFrame::NewProject);
    connect(m_middle, &CWindowMiddle::OpenRequested, this, &CTrvProjectMainFrame::AskAndOpen);
    connect(m_middle, &CWindowMiddle::ProjectRequested, this, &CTrvProjectMainFrame::OpenProject);
    connect(m_middle, &CWindowMiddle::RecentRequested, this, &CTrvProjectMainFrame::OpenRecent);
    m_processing =
        new CTrvViewProcessing(m_document, application.GetConfiguration(), application.GetAdaptors());
    m_output = new CTrvOutputPanel;
    m_statusBar = new CTrvStatusBar(this);
    setStatusBar(m_statusBar);
    m_host.Attach(this, &GetOutput(), m_statusBar);
    m_host.SetOnEquipment([this](std::int32_t equipment) {
        m_equipment = equipment;
        m_commands->ShowAllMenus();
    });
    m_host.SetProjectMakers(
        [this](SMadeProject& made) { return MakeProject(made, std::exchange(m_dropped, {})); },
        [this](const std::filesystem::path& file, SMadeProject& made) {
            return MakeProjectFrom(file, made);
        });
    m_host.SetTools([this](const std::filesystem::path& path) { return UpdateFile(path); },
                    [this](const auto& files, ERawFormat format, std::filesystem::path& converted) {
                        return ConvertFiles(files, format, converted);
                    });
    // Known from the start on: menus ask for it at each refresh.
    std::error_code error;
    m_hasUserGuide = std::filesystem::is_regular_file(m_application.GetUserGuide(), error);

    m_graphs = std::make_unique<CTrvGraphCommands>(*m_view, m_host, m_dialogs, application.GetConfiguration(),
                                                   application.GetAdaptors());
    m_commands = std::make_unique<CTrvCommandBars>(*this);
    m_commands->ServeGraphs();
    m_commands->ServeProcessing();
    m_bars[commandMenuBar] = menuBar();
    m_bars[commandStandardBar] =
        m_commands->MakeToolBar(EBar::standard, "standardBar", EText::standardBarTitle);
    m_bars[commandToolsBar] = m_commands->MakeToolBar(EBar::tools, "toolsBar", EText::toolsBarTitle);
    for (const int command : {commandStandardBar, commandToolsBar})
        connect(static_cast<QToolBar*>(m_bars[command]), &QToolBar::visibilityChanged, this,
                &CTrvProjectMainFrame::UpdateFrame);
    MakePanel(commandProcessingPanel, "processingPanel", EText::processingTitle, m_processing,
              kProcessingSize, Qt::LeftDockWidgetArea);
    MakePanel(commandOutputPanel, "outputPanel", EText::outputTitle, m_output, kOutputSize,
              Qt::BottomDockWidgetArea);
    GetOutput().addAction(&GetAction(commandClearOutput));
    MakeDataPanels();
    resize(kFirstSize.boundedTo(screen()->availableSize()));
    m_firstLayout = saveState(kStateVersion);
    RestoreWindow();

    connect(&GetOutput(), &CTrvOutputWnd::SubjectRequested, this,
            [this](const Outils_Objets::CObject* subject) { m_processing->ShowObject(subject); });
    connect(m_processing, &CTrvViewProcessing::ShowRequested, this, [this] {
        if (!IsBarShown(commandProcessingPanel)) ToggleBar(commandProcessingPanel);
    });
    connect(m_view, &CTrvView1D::StateChanged, this, &CTrvProjectMainFrame::UpdateFrame);
    connect(m_view, &CTrvView1D::PropertiesRequested, this, [this] { m_graphs->EditCurve(); });
    connect(m_view, &CTrvView1D::RangeRequested, this, [this] { m_graphs->EditRange(); });
    connect(m_view, &CTrvView1D::Notice, this,
            [this](const QString& text) { m_statusBar->showMessage(text, kNoticeTime); });
    connect(m_processing, &CTrvViewProcessing::StateChanged, this, &CTrvProjectMainFrame::UpdateFrame);
    connect(m_processing, &CTrvViewProcessing::DialogRequested, this,
            [this](Presentation_Tarvel_Grid::CHGItem* item) { ChooseValue(*item); });
    connect(m_statusBar, &CTrvStatusBar::NextFaultRequested, m_processing,
            &CTrvViewProcessing::SelectNextFault);
    m_document.AddView(this);
    UpdateFrame();
    m_middle->currentWidget()->setFocus();
}

CTrvProjectMainFrame::~CTrvProjectMainFrame() {
    // The widgets go after this: from here on nothing reaches a window that is half gone.
    m_document.RemoveView(this);
    m_middle->disconnect(this);
    m_view->disconnect(this);
    m_processing->disconnect(this);
    m_host.SetProjectMakers({}, {});
    m_host.SetTools({}, {});
    for (auto& [command, bar] : m_bars) bar->disconnect(this);
    m_host.SetOnEquipment({});
    m_host.Attach(nullptr, nullptr, nullptr);
}

QAction& CTrvProjectMainFrame::GetAction(int command) const { return m_commands->GetAction(command); }

void CTrvProjectMainFrame::NewProject() { m_document.CommandNew(); }

void CTrvProjectMainFrame::AskAndOpen() { m_document.CommandOpen(); }

bool CTrvProjectMainFrame::OpenProject(const std::filesystem::path& path) {
    if (!m_document.CommandOpen(path)) return false;
    const auto ask = [this] {
        return m_host.ShowMessage(std::string(Outils_Texte::GetText(EText::relinkQuestion)), EButtons::yesNo,
                                  EIcon::question) == EAnswer::yes;
    };
    if (m_document.GetFiles() && !m_document.GetFiles()->GetMissing().empty() && ask()) Relink();
    return true;
}

void CTrvProjectMainFrame::OpenRecent(int index) {
    const auto& files = m_recentFiles.GetFiles();
    if (index >= static_cast<int>(files.size())) return;
    const auto path = files[static_cast<std::size_t>(index)];
    // The user may have said no to the question about the present project: that says nothing of this file.
    if (!OpenProject(path) && !HasProject()) m_recentFiles.Remove(path);
}

QString CTrvProjectMainFrame::GetRecentCaption(int index) const {
    const auto& files = m_recentFiles.GetFiles();
    if (index >= static_cast<int>(files.size())) return {};
    QString name = ToQString(files[static_cast<std::size_t>(index)].filename());
    name.replace(u'&', QStringLiteral("&&"));
    return QStringLiteral("&%1 %2").arg(index + 1).arg(name);
}

void CTrvProjectMainFrame::OpenUserGuide() {
    if (!m_dialogs.OpenLink(QUrl::fromLocalFile(ToQString(m_application.GetUserGuide()))))
        m_host.ShowMessage(std::string(Outils_Texte::GetText(EText::userGuideFailed)), EButtons::ok,
                           EIcon::exclamation);
}

void CTrvProjectMainFrame::ContactSupport() {
    if (!m_dialogs.OpenLink(QUrl::fromEncoded(QByteArray::fromStdString(GetSupportLink(GetVersionInfo())))))
        m_host.ShowMessage(std::string(Outils_Texte::GetText(EText::mailFailed)), EButtons::ok,
                           EIcon::exclamation);
}

void CTrvProjectMainFrame::ShowAbout() { m_dialogs.ShowAbout(this, GetVersionInfo()); }

void CTrvProjectMainFrame::ShowSettings() {
    Dialogue_Tarvel::CTrvSettingsDlg dialog(m_host, m_application.GetConfiguration(),
                                            m_application.GetAdaptors(), m_application.IsExpertMode());
    if (!m_dialogs.Show(this, dialog)) return;
    ApplyAppearance();
    m_view->Reformat();
    m_processing->Reformat();
    m_variables->Reformat();
    m_values->Reformat();
    m_plan->Reformat();
}

void CTrvProjectMainFrame::ImportConfiguration() {
    const auto chosen = m_host.AskPath({EPathKind::open, EText::wizardConfiguration,
                                        Dialogue_Tarvel::CNewProjectWizard::kConfigurationFilter, "txt"});
    if (chosen.empty()) return;
    auto& configuration = *m_document.GetProject()->simulationParameters->nelixConfiguration;
    m_document.GetEdits().Do(Edits::kChangeNelixConfiguration, configuration,
                             Procedures::CNelixValues::Of(configuration), chosen.front());
}

void CTrvProjectMainFrame::PrepareBatchCommandFile() {
    if (!m_document.PrepareBatchCommandFile()) m_processing->SelectFirstFault();
}

void CTrvProjectMainFrame::Relink() {
    Dialogue_Tarvel::CRelinkDialog dialog(m_document);
    if (dialog.GetRows().empty())
        m_host.ShowMessage(std::string(Outils_Texte::GetText(EText::relinkNoLongerMissing)), EButtons::ok,
                           EIcon::information);
    else
        m_dialogs.Show(this, dialog);
}

void CTrvProjectMainFrame::MoveFile() {
    using namespace Dialogue_Tarvel;
    CDataFileChooser chooser(*m_document.GetProject()->simulationParameters, 0);
    if (!m_dialogs.Show(this, chooser)) return;
    const SDataFileRow* row = chooser.OnOK();
    if (!row) return;
    const bool isOutput = row->role == EDataFileRole::output;
    const auto chosen = m_host.AskPath({isOutput ? EPathKind::save : EPathKind::open, EText::fileChooserTitle,
                                        isOutput ? EText::batchOutputFilter : EText::batchInputFilter,
                                        isOutput ? "tarout" : "tarin", row->file->path});
    if (chosen.empty()) return;
    m_document.GetEdits().Do(Edits::kMoveDataFiles, Edits::CMoves{{row->file, chosen.front()}});
}

void CTrvProjectMainFrame::ResetLayout() { restoreState(m_firstLayout, kStateVersion); }

EOutcome CTrvProjectMainFrame::MakeProject(SMadeProject& made, std::vector<std::filesystem::path> files) {
    Dialogue_Tarvel::CNewProjectWizard dialog(m_host, m_application.GetConfiguration(),
                                              m_document.GetFileLooks());
    if (!files.empty()) dialog.ChooseInputFiles(files);
    if (!m_dialogs.Show(this, dialog)) return EOutcome::cancelled;
    made = {dialog.TakeProject(), dialog.GetProjectPath()};
    return EOutcome::done;
}

EOutcome CTrvProjectMainFrame::MakeProjectFrom(const std::filesystem::path& commandFile, SMadeProject& made) {
    Dialogue_Tarvel::CNewFromBatchParametersDlg dialog(m_host, m_application.GetConfiguration(),
                                                       m_document.GetFileLooks());
    if (!dialog.Load(commandFile)) return EOutcome::failed;
    if (!m_dialogs.Show(this, dialog)) return EOutcome::cancelled;
    made = {dialog.TakeProject(), dialog.GetProjectPath()};
    return EOutcome::done;
}

Dialogue_Tarvel::SToolServices CTrvProjectMainFrame::GetToolServices() {
    return {m_host, m_application.GetConfiguration(), m_document.GetFileLooks(), m_application.GetAdaptors(),
            m_application.IsExpertMode()};
}

EOutcome CTrvProjectMainFrame::UpdateFile(const std::filesystem::path& path) {
    Dialogue_Tarvel::CTrvFileUpdaterDlg dialog(GetToolServices(), {path});
    m_dialogs.Show(this, dialog);
    if (dialog.HasEnded() && dialog.GetOutcome() == EOutcome::failed)
        m_host.ShowMessage(FormatText(EText::updateFailed, {ToText(path), dialog.GetFailure()}), EButtons::ok,
                           EIcon::exclamation);
    return dialog.GetOutcome();
}

EOutcome CTrvProjectMainFrame::ConvertFiles(const std::vector<std::filesystem::path>& files,
                                            ERawFormat format, std::filesystem::path& converted) {
    std::vector<std::filesystem::path> own;
    if (const auto* project = m_document.GetProject())
        for (const auto* file : project->simulationParameters->GetDataFiles()) own.push_back(file->path);
    Dialogue_Tarvel::CTrvSimpleImporterDlg dialog(GetToolServices(), format, files, own);
    m_dialogs.Show(this, dialog);
    converted = dialog.GetTarget();
    if (dialog.HasEnded() && dialog.GetOutcome() == EOutcome::failed)
        m_host.ShowMessage(
            FormatText(EText::dataFileFailedToConvert, {ToText(files.front()), dialog.GetFailure()}),
            EButtons::ok, EIcon::exclamation);
    if (dialog.GetOutcome() == EOutcome::done) m_convertedFormat = format;
    return dialog.GetOutcome();
}

void CTrvProjectMainFrame::AddDataFile(const std::filesystem::path& path) {
    m_convertedFormat.reset();
    auto edits = m_document.GetEdits();
    const bool added =
        path.empty() ? edits.Do(Edits::kAddDataFile) : edits.Do(Edits::kAddGivenDataFile, path);
    if (!added || !m_convertedFormat) return;
    // A second recording of an INS has sensors of its own unit: which of them are meant is not known.
    if (*m_convertedFormat == ERawFormat::rawIns || *m_convertedFormat == ERawFormat::decodedIns) return;
    m_document.AddSensorsOf(*m_document.GetProject()->simulationParameters->externalFiles.back());
}

void CTrvProjectMainFrame::Export() {
    using namespace Dialogue_Tarvel;
    CTrvSimpleExporterDlg dialog(
        GetToolServices(), GetExportProject(*m_document.GetProject()->simulationParameters),
        [this](const auto& file) { return m_dialogs.OpenLink(QUrl::fromLocalFile(ToQString(file))); });
    m_dialogs.Show(this, dialog);
}

// A value that is chosen from what the project has.
void CTrvProjectMainFrame::ChooseValue(const Presentation_Tarvel_Grid::CHGItem& item) {
    auto& run = *m_document.GetProject()->simulationParameters;
    if (auto* sensor = m_processing->GetTree().FindSensor(&item)) {
        Dialogue_Tarvel::CDataFileChannelChooser chooser(run, *sensor);
        if (!m_dialogs.Show(this, chooser)) return;
        if (const auto* row = chooser.OnOK())
            m_document.GetEdits().Do(Edits::kChangeSensorDataFileChannel, *sensor, *row->data);
        return;
    }
    auto& configuration = *run.nelixConfiguration;
    Dialogue_Tarvel::CRoughMisalignmentChooser chooser(configuration.roughMisalignment,
                                                       configuration.type->equipment);
    if (!m_dialogs.Show(this, chooser)) return;
    auto values = Procedures::CNelixValues::Of(configuration);
    values.Get<&Metier_Tarvel::CTrvNelixConfiguration::roughMisalignment>() = chooser.GetCode();
    m_document.GetEdits().Do(Edits::kChangeNelixConfiguration, configuration, values,
                             std::filesystem::path());
}

QDockWidget* CTrvProjectMainFrame::MakePanel(int command, const char* name, EText title, QWidget* content,
                                             QSize size, Qt::DockWidgetArea area) {
    auto* panel = new QDockWidget(Text(title), this);
    panel->setObjectName(QString::fromLatin1(name));
    panel->setAccessibleName(Text(title));
    content->setAccessibleName(Text(title));
    // A floating panel cannot be put back on Wayland.
    if (QGuiApplication::platformName().startsWith(QStringLiteral("wayland")))
        panel->setFeatures(QDockWidget::DockWidgetClosable | QDockWidget::DockWidgetMovable);
    panel->setWidget(new CPanelSpace(content, size));
    addDockWidget(area, panel);
    m_bars[command] = panel;
    connect(panel, &QDockWidget::visibilityChanged, this, &CTrvProjectMainFrame::UpdateFrame);
    return panel;
}

// What looks into the data beside the graphs.
void CTrvProjectMainFrame::MakeDataPanels() {
    const auto& adaptors = m_application.GetAdaptors();
    m_variables = new CTrvViewMetadata(m_document, m_viewState, adaptors);
    m_values = new CTrvViewValue(m_document, m_viewState, m_application.GetConfiguration(), adaptors);
    m_plan = new CTrvPlanView(m_document, m_viewState, adaptors);
    MakePanel(commandVariablesPanel, "variablesPanel", EText::variablesTitle, m_variables, kVariablesSize,
              Qt::RightDockWidgetArea);
    MakePanel(commandValuesPanel, "valuesPanel", EText::instantValuesTitle, m_values, kValuesSize,
              Qt::RightDockWidgetArea);
    MakePanel(commandPlanPanel, "planPanel", EText::planTitle, m_plan, kPlanSize, Qt::BottomDockWidgetArea)
        ->hide(); // until it is asked for
    m_variables->SetReceivers(*m_view, m_values->GetValues());
    m_variables->AddTarget(std::make_unique<CGraphsDropTarget>(*m_view));
    m_variables->AddTarget(std::make_unique<CValuesDropTarget>(*m_values));
}

bool CTrvProjectMainFrame::IsBarShown(int command) const { return !m_bars.at(command)->isHidden(); }

void CTrvProjectMainFrame::ToggleBar(int command) {
    QWidget* bar = m_bars.at(command);
    bar->setVisible(bar->isHidden());
}

void CTrvProjectMainFrame::RestoreWindow() {
    // What cannot be restored, after a change of the panels or a damaged file, leaves the first layout.
    restoreGeometry(m_settings.value(kGeometryKey).toByteArray());
    restoreState(m_settings.value(kStateKey).toByteArray(), kStateVersion);
    m_variables->ShowValues(m_settings.value(kCursorValuesKey).toBool());
    m_values->ShowStatistics(m_settings.value(kStatisticsKey).toBool());
    std::map<std::string, float> heights;
    const QVariantMap kept = m_settings.value(kHeightsKey).toMap();
    for (auto row = kept.begin(); row != kept.end(); ++row)
        heights[row.key().toStdString()] = row.value().toFloat();
    m_view->GetStack().SetHeights(std::move(heights));
}

void CTrvProjectMainFrame::StoreWindow() {
    m_settings.setValue(kGeometryKey, saveGeometry());
    m_settings.setValue(kStateKey, saveState(kStateVersion));
    m_settings.setValue(kCursorValuesKey, m_variables->AreValuesShown());
    m_settings.setValue(kStatisticsKey, m_values->AreStatisticsShown());
    QVariantMap heights;
    for (const auto& [title, height] : m_view->GetStack().GetHeights()) heights[ToQString(title)] = height;
    m_settings.setValue(kHeightsKey, heights);
}

void CTrvProjectMainFrame::ApplyAppearance() {
    ApplyPalette(m_application.GetConfiguration().Get(Cnf<"general/appearance">));
}

void CTrvProjectMainFrame::UpdateFrame() {
    const auto& path = m_document.GetPathName();
    if (path != m_knownPath) {
        m_knownPath = path;
        if (!path.empty()) m_recentFiles.Add(path);
    }
    QString name = path.empty() ? Text(EText::untitled) : ToQString(path.stem());
    name.replace(QStringLiteral("[*]"), QStringLiteral("[*][*]")); // no mark, but a name
    setWindowTitle(QStringLiteral("%1[*] - %2").arg(name, Text(EText::product)));
    setWindowModified(m_document.IsModified());
    m_statusBar->SetMessage(Text(m_running ? EText::running : EText::ready));
    m_statusBar->SetFaults(m_processing->GetTree().GetFaultCount());
    m_commands->Update();
    m_middle->Update();
}

void CTrvProjectMainFrame::OnUpdate(EHint hint, const Outils_Objets::CObject*) {
    if (hint == hintRunStarted || hint == hintRunEnded) m_running = hint == hintRunStarted;
    UpdateFrame();
}

void CTrvProjectMainFrame::closeEvent(QCloseEvent* event) {
    if (!m_document.CanCloseFrame()) return event->ignore();
    StoreWindow();
    event->accept();
}

void CTrvProjectMainFrame::dragEnterEvent(QDragEnterEvent* event) {
    const auto files = FilesOf(*event->mimeData());
    // One project is opened; recordings join the open project, or a project is made of them.
    if (files.empty() || (files.size() > 1 && std::ranges::any_of(files, IsProject))) return;
    event->acceptProposedAction();
}

void CTrvProjectMainFrame::dropEvent(QDropEvent* event) {
    const auto files = FilesOf(*event->mimeData());
    if (files.empty()) return;
    event->acceptProposedAction();
    // Later: the program the file was dragged from waits until this returns, and opening may ask questions.
    QTimer::singleShot(0, this, [this, files] { Take(files); });
}

void CTrvProjectMainFrame::Take(const std::vector<std::filesystem::path>& files) {
    if (IsProject(files.front())) {
        OpenProject(files.front());
    } else if (HasProject()) {
        for (const auto& file : files) m_processing->Add([&] { AddDataFile(file); });
    } else {
        m_dropped = files;
        NewProject();
        m_dropped.clear();
    }
}

} // namespace Application_Tarvel
