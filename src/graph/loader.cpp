#include "graph/loader.h"

#include "config/config_file.h"
#include "foundation/text_id.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace Presentation_Tarvel_Graphics {

using namespace Application_Tarvel;
using Outils_Configuration::Cnf;
using Outils_Texte::GetText;

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

CTrv1DGraphLoader::CTrv1DGraphLoader(CTrvDocument& document, const Outils_Valeurs::CTrvAdaptors& adaptors,
                                     Outils_Plot2D::CPlot2DSettings& settings)
    : m_document(document),
      m_adaptors(adaptors),
      m_settings(settings),
      m_feed(document, m_stack, [this] { Changed(false); }) {
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

void CTrv1DGraphLoader::ZoomTime(double steps) {
    const double in = Factor(Config().Get(Cnf<"view1D/horizontalZoomScaleFactor">), 0.5);
    const double out = Factor(Config().Get(Cnf<"view1D/horizontalUnzoomScaleFactor">), 2);
    ShowPeriod(steps > 0 ? ZoomIn(m_stack.GetPeriod(), std::pow(in, steps))
                         : ZoomOut(m_stack.GetPeriod(), std::pow(out, -steps)));
}

void CTrv1DGraphLoader::ScrollTime(double steps) {
    const double factor = Factor(Config().Get(Cnf<"view1D/horizontalScrollFactor">), 0.25);
    ShowPeriod(Scroll(m_stack.GetPeriod(), factor * steps));
}

void CTrv1DGraphLoader::ViewAll() {
    if (m_stack.ViewAll())
        PeriodChanged();
    else
        Changed(false);
}

void CTrv1DGraphLoader::ZoomValues(double steps) {
    const double in = Factor(Config().Get(Cnf<"view1D/verticalZoomScaleFactor">), 0.5);
    const double out = Factor(Config().Get(Cnf<"view1D/verticalUnzoomScaleFactor">), 2);
    if (m_stack.ZoomVertical(steps > 0 ? std::pow(in, steps) : std::pow(out, -steps))) Changed(false);
}

void CTrv1DGraphLoader::ScrollValues(double steps) {
    if (m_stack.ScrollVertical(steps * Factor(Config().Get(Cnf<"view1D/verticalScrollFactor">), 0.25)))
        Changed(false);
}

void CTrv1DGraphLoader::SetLegendsVisible(bool visible) {
    m_stack.SetLegendsVisible(visible);
    Relayout();
}

void CTrv1DGraphLoader::ShowPeriod(const SPeriod& period) {
    if (m_stack.SetPeriod(period)) PeriodChanged();
}

void CTrv1DGraphLoader::PeriodChanged() {
    m_feed.AskWindows();
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
    m_stack.SetGraphs(graphs, m_settings);
    m_stack.SetTimeText(MakeTimeText());
    m_stack.Layout(m_size, m_layout);
    m_feed.Update();
    Changed(true);
}

void CTrv1DGraphLoader::UpdateNotices() {
    for (const auto& portlet : m_stack.GetPortlets())
        portlet->SetNotice(std::string(GetText(m_feed.GetNotice(*portlet))));
}

void CTrv1DGraphLoader::Changed(bool layout) {
    UpdateNotices();
    if (m_onChanged) m_onChanged(layout);
}

} // namespace Presentation_Tarvel_Graphics
