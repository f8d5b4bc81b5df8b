#include "graph/loader.h"

#include "config/config_file.h"
#include "foundation/texts.h"
#include "graph/stack_builder.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Presentation_Tarvel_Graphics {

using namespace Application_Tarvel;
using Outils_Configuration::Cnf;
using Outils_Texte::EText;
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
      m_self(std::make_shared<CTrv1DGraphLoader*>(this)) {
    m_document.AddView(this);
    Reformat();
}

CTrv1DGraphLoader::~CTrv1DGraphLoader() {
    *m_self = nullptr;
    m_document.RemoveView(this);
    for (auto& [key, channel] : m_channels) Withdraw(channel);
}

void CTrv1DGraphLoader::SetViewSize(SSize size, double devicePixelRatio, ELayout layout) {
    m_size = size;
    m_layout = layout;
    m_devicePixelRatio = Factor(devicePixelRatio, 1);
    m_stack.Layout(m_size, m_layout);
    AskIfWidthChanged();
}

void CTrv1DGraphLoader::AskIfWidthChanged() {
    // A little coarser or finer than asked for cannot be seen, and a window is dragged in many small steps.
    const double width = static_cast<double>(m_stack.GetPlotWidth()) * m_devicePixelRatio;
    if (m_stack.HasPeriod() && std::abs(width - m_askedWidth) > m_askedWidth * 0.1) AskAllWindows();
}

void CTrv1DGraphLoader::Relayout() {
    m_stack.Layout(m_size, m_layout);
    AskIfWidthChanged();
    Changed(true);
}

bool CTrv1DGraphLoader::IsLoading() const {
    return std::any_of(m_channels.begin(), m_channels.end(), [](const auto& entry) {
        const SChannel& channel = entry.second;
        return channel.extentQuery || channel.windowQuery || channel.refresh;
    });
}

void CTrv1DGraphLoader::ZoomHorizontal() {
    if (m_stack.ZoomIn(Factor(Config().Get(Cnf<"view1D/horizontalZoomScaleFactor">), 0.5))) PeriodChanged();
}

void CTrv1DGraphLoader::UnzoomHorizontal() {
    if (m_stack.ZoomOut(Factor(Config().Get(Cnf<"view1D/horizontalUnzoomScaleFactor">), 2))) PeriodChanged();
}

void CTrv1DGraphLoader::ScrollLeft() {
    if (m_stack.Scroll(-Factor(Config().Get(Cnf<"view1D/horizontalScrollFactor">), 0.25))) PeriodChanged();
}

void CTrv1DGraphLoader::ScrollRight() {
    if (m_stack.Scroll(Factor(Config().Get(Cnf<"view1D/horizontalScrollFactor">), 0.25))) PeriodChanged();
}

void CTrv1DGraphLoader::ViewAll() {
    if (m_stack.ViewAll())
        PeriodChanged();
    else
        Changed(false);
}

void CTrv1DGraphLoader::ZoomVertical() {
    if (m_stack.ZoomVertical(Factor(Config().Get(Cnf<"view1D/verticalZoomScaleFactor">), 0.5)))
        Changed(false);
}

void CTrv1DGraphLoader::UnzoomVertical() {
    if (m_stack.ZoomVertical(Factor(Config().Get(Cnf<"view1D/verticalUnzoomScaleFactor">), 2)))
        Changed(false);
}

void CTrv1DGraphLoader::ScrollUp() {
    if (m_stack.ScrollVertical(Factor(Config().Get(Cnf<"view1D/verticalScrollFactor">), 0.25)))
        Changed(false);
}

void CTrv1DGraphLoader::ScrollDown() {
    if (m_stack.ScrollVertical(-Factor(Config().Get(Cnf<"view1D/verticalScrollFactor">), 0.25)))
        Changed(false);
}

void CTrv1DGraphLoader::ToggleLegends() {
    m_stack.SetLegendsVisible(!m_stack.AreLegendsVisible());
    Relayout();
}

void CTrv1DGraphLoader::ShowPeriod(const SPeriod& period) {
    if (period.IsEmpty()) return;
    m_stack.SetPeriod(period);
    PeriodChanged();
}

void CTrv1DGraphLoader::PeriodChanged() {
    AskAllWindows();
    Changed(false);
}

void CTrv1DGraphLoader::Reformat() {
    m_settings.drawCurve = Config().Get(Cnf<"view1D/drawCurve">);
    m_settings.extremumTransparency =
        static_cast<std::uint8_t>(Config().Get(Cnf<"view1D/extremumTransparency">));
    // What the user toggled stands until the setting itself is changed.
    const bool legends = Config().Get(Cnf<"view1D/showGraphLegends">);
    if (std::exchange(m_legendSetting, legends) != legends) m_stack.SetLegendsVisible(legends);
    // Colours and sampling are taken while portlets and questions are made.
    Rebuild(false);
    AskAllWindows();
}

void CTrv1DGraphLoader::OnUpdate(EHint hint, const Outils_Objets::CObject* object) {
    switch (hint) {
    case hintRefresh: Rebuild(true); break;
    case hintDataFileRemoved:
    case hintDataFileTimeOffsetChanged:
    case hintOutputFileNameChanged:
    case hintGraphAdded:
    case hintGraphRemoved:
    case hintCurveAdded:
    case hintCurveRemoved:
    case hintCurveChanged: Rebuild(false); break;
    case hintDataLayersRebuilt:
        // A file that cannot be read has no layers: what is shown of it stays.
        if (!ShowsDataOf(object) || HasLayers(m_document, object)) Rebuild(false);
        break;
    case hintRunStarted:
        m_running = true;
        ForgetResult();
        break;
    case hintRunEnded:
        m_running = false;
        Refresh(nullptr, false);
        // A result may end where the former one did and yet be another.
        if (const auto* project = m_document.GetProject())
            Refresh(project->simulationParameters->outputFile.get(), true);
        break;
    case hintChannelFound:
    case hintDataFileContentChanged:
        if (m_running && !Config().Get(Cnf<"view1D/displayAutoRefresh">)) break;
        // While a run lasts a file only grows; at other times it may have become another one.
        Refresh(object, hint == hintDataFileContentChanged && !m_running);
        break;
    default: break;
    }
}

bool CTrv1DGraphLoader::ShowsDataOf(const Outils_Objets::CObject* file) const {
    return std::any_of(m_channels.begin(), m_channels.end(), [file](const auto& entry) {
        return entry.first.file == file && entry.second.dataset;
    });
}

// The result of a run that was started anew must not be taken for that of the run.
void CTrv1DGraphLoader::ForgetResult() {
    const auto* project = m_document.GetProject();
    if (!project) return;
    for (auto& [key, channel] : m_channels)
        if (key.file == project->simulationParameters->outputFile.get()) {
            Withdraw(channel);
            channel = {};
        }
    Rebuild(false);
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

void CTrv1DGraphLoader::Rebuild(bool forget) {
    if (forget) {
        for (auto& [key, channel] : m_channels) Withdraw(channel);
        m_channels.clear();
        m_stack.Clear();
        m_stack.ForgetPeriod();
        m_stack.Select(0);
    }
    AddPortlets();
    m_stack.SetTimeText(MakeTimeText());
    m_stack.Layout(m_size, m_layout);
    UpdateChannels();
    for (const auto& [key, channel] : m_channels) m_stack.SetDataset(key, channel.dataset);
    if (UpdateFullExtent()) AskAllWindows();
    Changed(true);
}

namespace {

// What the user did to a portlet and would miss after the portlets are made anew. Default graphs have no
// object: they are known by their title.
struct SPortletState {
    Metier_Tarvel_Graphics::CTrv1DGraph* graph;
    std::string title;
    float height;
    bool hasRange = false;
    double minimum = 0, maximum = 0;
};

std::vector<SPortletState> SaveStates(const CTrv1DGraphStack& stack) {
    std::vector<SPortletState> states;
    for (const auto& portlet : stack.GetPortlets()) {
        SPortletState state{portlet->GetGraph(), portlet->GetTitle(), portlet->GetUserHeight()};
        const auto* measure = dynamic_cast<const CTrv1DGraphMeasurePortlet*>(portlet.get());
        if (measure && !measure->IsRangeAutomatic()) {
            state.hasRange = true;
            state.minimum = measure->GetMinimum();
            state.maximum = measure->GetMaximum();
        }
        states.push_back(std::move(state));
    }
    return states;
}

void Restore(CTrv1DGraphPortlet& portlet, const std::vector<SPortletState>& states) {
    for (const SPortletState& state : states) {
        if (state.graph != portlet.GetGraph() || (!state.graph && state.title != portlet.GetTitle()))
            continue;
        portlet.SetUserHeight(state.height);
        auto* measure = dynamic_cast<CTrv1DGraphMeasurePortlet*>(&portlet);
        if (measure && state.hasRange) measure->SetRange(state.minimum, state.maximum);
        return;
    }
}

} // namespace

void CTrv1DGraphLoader::AddPortlets() {
    const auto states = SaveStates(m_stack);
    m_stack.Clear();
    const auto* project = m_document.GetProject();
    if (!project) return;
    const Colour chronogramColour = Config().Get(Cnf<"view1D/chronogram/color">).argb;
    auto portlets =
        BuildPortlets(*project, {m_adaptors, m_settings, m_stack.GetTimeText(), chronogramColour});
    for (auto& portlet : portlets) Restore(m_stack.Add(std::move(portlet)), states);
}

void CTrv1DGraphLoader::UpdateNotices() {
    for (const auto& portlet : m_stack.GetPortlets()) {
        bool waits = false, hasData = false;
        portlet->ForEachSource([&](const CTrv1DGraphDataSource& source) {
            const auto place = m_channels.find(source.GetChannel());
            if (place == m_channels.end()) return;
            const SChannel& channel = place->second;
            waits = waits || !channel.answered || channel.windowQuery;
            hasData = hasData || channel.hasData;
        });
        const EText text = waits ? EText::loading : hasData ? EText::noDataInPeriod : EText::noData;
        portlet->SetNotice(std::string(GetText(text)));
    }
}

void CTrv1DGraphLoader::Changed(bool layout) {
    UpdateNotices();
    if (m_onChanged) m_onChanged(layout);
}

} // namespace Presentation_Tarvel_Graphics
