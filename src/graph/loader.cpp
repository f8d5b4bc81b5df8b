#include "graph/loader.h"

#include "config/config_file.h"
#include "graph/default_graphs.h"
#include "graph/hit_test.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>
#include <vector>

namespace Presentation_Tarvel_Graphics {

using namespace Application_Tarvel;
using Outils_Configuration::Cnf;

namespace {

// A factor from the settings, if it is of any use.
double Factor(double value, double otherwise) {
    return std::isfinite(value) && value > 0 ? value : otherwise;
}

bool HasLayers(const CTrvDocument& document, const Outils_Objets::CObject* file) {
    const auto* project = document.GetProject();
    return project && project->dataModel->HasLayers(dynamic_cast<const Metier_Tarvel::CTrvDataFile*>(file));
}

} // namespace

CTrv1DGraphLoader::CTrv1DGraphLoader(CTrvDocument& document, CViewState& viewState,
                                     const Outils_Valeurs::CTrvAdaptors& adaptors,
                                     Outils_Plot2D::CPlot2DSettings& settings)
    : m_document(document),
      m_adaptors(adaptors),
      m_settings(settings),
      m_viewState(viewState),
      m_feed(document, m_stack, viewState, [this] { Changed(false); }),
      m_subscription(viewState.Listen([this](EViewChange change) {
          if (change == EViewChange::view) OnViewChanged();
      })) {
    m_document.AddView(this);
    Reformat();
}

CTrv1DGraphLoader::~CTrv1DGraphLoader() { m_document.RemoveView(this); }

void CTrv1DGraphLoader::SetViewSize(SSize size, double devicePixelRatio, ELayout layout) {
    m_size = size;
    m_layout = layout;
    m_devicePixelRatio = Factor(devicePixelRatio, 1);
    m_stack.Layout(m_size, m_layout);
    m_feed.FollowWidth(m_devicePixelRatio);
}

void CTrv1DGraphLoader::Relayout() {
    m_stack.Layout(m_size, m_layout);
    m_feed.FollowWidth(m_devicePixelRatio);
    Changed(true);
}

bool CTrv1DGraphLoader::IsLoading() const { return m_feed.IsLoading(); }

void CTrv1DGraphLoader::LookForGrowth() {
    const auto* project = m_document.GetProject();
    if (!project || IsLoading() || (m_running && !Config().Get(Cnf<"view1D/displayAutoRefresh">))) return;
    m_feed.Refresh(project->simulationParameters->outputFile.get(), false);
}

double CTrv1DGraphLoader::GetTimeFactor(double steps) const {
    const double in = Factor(Config().Get(Cnf<"view1D/horizontalZoomScaleFactor">), 0.5);
    const double out = Factor(Config().Get(Cnf<"view1D/horizontalUnzoomScaleFactor">), 2);
    return steps > 0 ? std::pow(in, steps) : std::pow(out, -steps);
}

double CTrv1DGraphLoader::GetValueFactor(double steps) const {
    const double in = Factor(Config().Get(Cnf<"view1D/verticalZoomScaleFactor">), 0.5);
    const double out = Factor(Config().Get(Cnf<"view1D/verticalUnzoomScaleFactor">), 2);
    return steps > 0 ? std::pow(in, steps) : std::pow(out, -steps);
}

void CTrv1DGraphLoader::ZoomTime(double steps) {
    const double factor = GetTimeFactor(steps);
    ShowPeriod(steps > 0 ? ZoomIn(m_stack.GetPeriod(), factor) : ZoomOut(m_stack.GetPeriod(), factor));
}

void CTrv1DGraphLoader::ZoomTimeAt(double steps, CDateTimeSpan at) {
    ShowPeriod(ZoomAt(m_stack.GetPeriod(), at, GetTimeFactor(steps)));
}

void CTrv1DGraphLoader::PageTime(int windows) { ShowPeriod(Scroll(m_stack.GetPeriod(), windows)); }

void CTrv1DGraphLoader::ShowBegin() {
    const SPeriod &period = m_stack.GetPeriod(), &all = m_stack.GetFullExtent();
    ShowPeriod(Move(period, static_cast<double>((all.start - period.start).GetTicks())));
}

void CTrv1DGraphLoader::ShowEnd() {
    const SPeriod &period = m_stack.GetPeriod(), &all = m_stack.GetFullExtent();
    ShowPeriod(Move(period, static_cast<double>((all.end - period.end).GetTicks())));
}

void CTrv1DGraphLoader::GoTo(CDateTimeSpan time) {
    const SPeriod& period = m_stack.GetPeriod();
    if (period.IsEmpty()) return;
    if (time < period.start || time > period.end)
        ShowPeriod(Move(period, static_cast<double>((time - period.start).GetTicks()) -
                                    static_cast<double>((period.end - period.start).GetTicks()) / 2));
    m_viewState.SetCursor(ECursor::first, time);
}

void CTrv1DGraphLoader::MoveSelected(int step) {
    auto* project = m_document.GetProject();
    if (!project || !m_stack.GetSelected() || !SaveDefaults()) return;
    auto& graphs = project->graphSettings->graphs;
    const auto place = std::ranges::find(graphs, m_stack.GetSelected()->GetGraph(),
                                         [](const auto& own) { return own.get(); });
    const auto index = place - graphs.begin(), other = index + step;
    if (place == graphs.end() || other < 0 || other >= std::ssize(graphs)) return;
    std::swap(graphs[static_cast<std::size_t>(index)], graphs[static_cast<std::size_t>(other)]);
    m_document.ProjectChanged(hintGraphAdded, graphs[static_cast<std::size_t>(other)].get());
}

void CTrv1DGraphLoader::ShowAlone(bool alone) {
    m_stack.ShowAlone(alone);
    Relayout();
}

void CTrv1DGraphLoader::EqualHeights() {
    for (const auto& portlet : m_stack.GetPortlets()) portlet->SetUserHeight(0);
    Relayout();
}

bool CTrv1DGraphLoader::SaveDefaults() {
    auto* project = m_document.GetProject();
    if (!project) return false;
    if (const auto* saved = SaveDefaultGraphs(*project, m_adaptors))
        m_document.ProjectChanged(hintGraphAdded, saved);
    return !project->graphSettings->graphs.empty();
}

void CTrv1DGraphLoader::ScrollTime(double steps) {
    const double factor = Factor(Config().Get(Cnf<"view1D/horizontalScrollFactor">), 0.25);
    ShowPeriod(Scroll(m_stack.GetPeriod(), factor * steps));
}

void CTrv1DGraphLoader::ViewAll() { ShowPeriod(m_stack.GetFullExtent()); }

void CTrv1DGraphLoader::FitValues() { m_viewState.SetView({m_viewState.GetView().period, {}}); }

void CTrv1DGraphLoader::ZoomValues(double steps) {
    if (const auto* graph = m_stack.GetSelectedMeasure())
        m_viewState.SetRange(graph->GetKey(), Zoom(graph->GetRange(), GetValueFactor(steps)));
}

void CTrv1DGraphLoader::ZoomValuesAt(const CTrv1DGraphMeasurePortlet& graph, double steps, double value) {
    m_viewState.SetRange(graph.GetKey(), ZoomAt(graph.GetRange(), value, GetValueFactor(steps)));
}

void CTrv1DGraphLoader::ScrollValues(double steps) {
    const double factor = Factor(Config().Get(Cnf<"view1D/verticalScrollFactor">), 0.25);
    if (const auto* graph = m_stack.GetSelectedMeasure())
        m_viewState.SetRange(graph->GetKey(), Scroll(graph->GetRange(), steps * factor));
}

void CTrv1DGraphLoader::SetLegendsVisible(bool visible) {
    m_stack.SetLegendsVisible(visible);
    Relayout();
}

void CTrv1DGraphLoader::BeginDrag() {
    m_dragging = true;
    m_viewState.BeginGesture();
}

void CTrv1DGraphLoader::EndDrag(bool accept) {
    if (!std::exchange(m_dragging, false)) return;
    if (accept)
        m_viewState.EndGesture();
    else
        m_viewState.CancelGesture();
    m_feed.FollowPeriod();
}

void CTrv1DGraphLoader::OnViewChanged() {
    m_stack.Show(m_viewState.GetView());
    if (!m_dragging) m_feed.FollowPeriod();
    Changed(false);
}

void CTrv1DGraphLoader::Reformat() {
    m_settings.drawCurve = Config().Get(Cnf<"view1D/drawCurve">);
    m_settings.extremumTransparency =
        static_cast<std::uint8_t>(Config().Get(Cnf<"view1D/extremumTransparency">));
    // What was toggled holds until the setting itself is changed.
    const bool legends = Config().Get(Cnf<"view1D/showGraphLegends">);
    if (std::exchange(m_legendSetting, legends) != legends) m_stack.SetLegendsVisible(legends);
    // Graphs take colours and queries take the sampling when they are made.
    UpdateGraphs();
    m_feed.AskWindows();
}

void CTrv1DGraphLoader::OnUpdate(EHint hint, const Outils_Objets::CObject* object) {
    switch (hint) {
    case hintRefresh:
        m_feed.Forget(nullptr);
        m_stack.Clear();
        m_viewState.Clear();
        UpdateGraphs();
        break;
    case hintDataFileRemoved:
    case hintDataFileTimeOffsetChanged:
    case hintOutputFileNameChanged:
    case hintGraphAdded:
    case hintGraphRemoved:
    case hintCurveAdded:
    case hintCurveRemoved:
    case hintCurveChanged: UpdateGraphs(); break;
    case hintDataLayersRebuilt:
        // A file that cannot be read has no layers: what is shown of it stays.
        if (!m_feed.HasDataOf(object) || HasLayers(m_document, object)) UpdateGraphs();
        break;
    case hintRunStarted:
        m_running = true;
        ForgetResult();
        break;
    case hintRunEnded:
        m_running = false;
        m_feed.Refresh(nullptr, false);
        // A result may end where the former one did and yet be another.
        if (const auto* project = m_document.GetProject())
            m_feed.Refresh(project->simulationParameters->outputFile.get(), true);
        break;
    case hintChannelFound:
    case hintDataFileContentChanged:
        if (m_running && !Config().Get(Cnf<"view1D/displayAutoRefresh">)) break;
        // While a run lasts a file only grows; at other times it may have become another one.
        m_feed.Refresh(object, hint == hintDataFileContentChanged && !m_running);
        break;
    default: break;
    }
}

// Nobody must take the former result for the result of the run that has just started.
void CTrv1DGraphLoader::ForgetResult() {
    const auto* project = m_document.GetProject();
    if (!project) return;
    m_feed.Forget(project->simulationParameters->outputFile.get());
    UpdateGraphs();
}

SSimulationTimeText CTrv1DGraphLoader::MakeTimeText() const {
    SSimulationTimeText text;
    text.mode = Config().Get(Cnf<"adaptors/simulationTime/mode">);
    text.dateTime = m_adaptors.GetDateTime();
    text.dateTime.showTime = true;
    text.span = m_adaptors.GetDateTimeSpan();
    const auto* project = m_document.GetProject();
    if (project && project->simulationParameters->hasUtcReference)
        text.utcReference = project->simulationParameters->utcReference;
    return text;
}

// Brings the graphs in line with the project, object by object: what is shown already stays as it is.
void CTrv1DGraphLoader::UpdateGraphs() {
    std::vector<SGraphDescription> graphs;
    if (const auto* project = m_document.GetProject())
        graphs = DescribeGraphs(*project, m_adaptors, Config().Get(Cnf<"view1D/chronogram/color">).argb);
    std::map<const CTrv1DGraphPortlet*, SGraphKey> before;
    for (const auto& portlet : m_stack.GetPortlets()) before[portlet.get()] = portlet->GetKey();
    m_stack.SetGraphs(graphs, m_settings);
    MoveRanges(before);
    m_stack.SetTimeText(MakeTimeText());
    m_stack.Show(m_viewState.GetView());
    m_stack.Layout(m_size, m_layout);
    m_feed.Update();
    Changed(true);
}

// A default graph that was saved keeps its range. One that has gone does not: a graph to come may get its
// address.
void CTrv1DGraphLoader::MoveRanges(const std::map<const CTrv1DGraphPortlet*, SGraphKey>& before) {
    for (const auto& [portlet, key] : before) {
        const int index = IndexOf(m_stack, portlet);
        if (index < 0)
            m_viewState.ForgetGraph(key);
        else if (const SGraphKey now = m_stack.GetPortlets()[static_cast<std::size_t>(index)]->GetKey();
                 now != key)
            m_viewState.RenameGraph(key, now);
    }
}

bool CTrv1DGraphLoader::UpdateNotices() {
    for (const auto& portlet : m_stack.GetPortlets()) portlet->SetNotice(m_feed.GetNotice(*portlet));
    return m_document.IsAnalysing();
}

void CTrv1DGraphLoader::Changed(bool layout) {
    UpdateNotices();
    if (m_onChanged) m_onChanged(layout);
}

} // namespace Presentation_Tarvel_Graphics
