#include "graph/stack_builder.h"

#include "foundation/texts.h"
#include "model/graph_rules.h"
#include "xpf/layout.h"

#include <algorithm>
#include <string_view>

namespace Presentation_Tarvel_Graphics {

using Outils_Texte::EText;

using namespace Metier_Tarvel;
using namespace Metier_Tarvel_DataModel;
using namespace Metier_Tarvel_Graphics;
using Outils_Plot2D::kCurvePalette;

namespace {

constexpr std::string_view kResultChannel = "MORVEX_STD";
constexpr std::string_view kRecordingChannel = "NELIX_NAV";

// A graph of a project that has saved none: the same quantity of the result and of the recording.
struct SDefaultGraph {
    EText title;
    std::string_view resultField;
    std::string_view recordingField;
    std::uint32_t nature;
};
constexpr SDefaultGraph kDefaultGraphs[] = {
    {EText::natureLatitude, "Latitude0", "Latitude", Persistance_Xpf::natureLatitude},
    {EText::natureLongitude, "Longitude0", "Longitude", Persistance_Xpf::natureLongitude},
    {EText::natureAltitude, "Altitude0", "Altitude", Persistance_Xpf::natureAltitude},
    {EText::heading, "Heading", "Heading", Persistance_Xpf::natureAttitude},
    {EText::roll, "Roll", "Roll", Persistance_Xpf::natureAttitude},
    {EText::pitch, "Pitch", "Pitch", Persistance_Xpf::natureAttitude},
};

// A saved curve that was never given a colour. It takes that of its place among the curves of its graph,
// which stays the same however often the graphs are built anew.
constexpr Colour kNoColour = 0xFF000000;

Colour PaletteColour(std::size_t place) { return kCurvePalette[place % kCurvePalette.size()]; }

class CBuilder {
  public:
    CBuilder(const CTrvProject& project, const SPortletEnvironment& environment)
        : m_project(project), m_environment(environment) {}

    std::unique_ptr<CTrv1DGraphPortlet> Build(CTrv1DGraph& graph) const {
        if (graph.IsKindOf(CTrv1DGraphEnum::Class())) return BuildEnum(static_cast<CTrv1DGraphEnum&>(graph));
        if (graph.IsKindOf(CTrv1DGraphMeasure::Class()))
            return BuildMeasure(static_cast<CTrv1DGraphMeasure&>(graph));
        return nullptr;
    }

    std::unique_ptr<CTrv1DGraphPortlet> BuildDefault(const SDefaultGraph& graph) const {
        auto portlet = MakeMeasure(nullptr, std::string(Outils_Texte::GetText(graph.title)), graph.nature);
        const auto& parameters = *m_project.simulationParameters;
        // The result comes last and so lies on top: where both agree it is the one that is seen.
        AddDefaultCurve(*portlet, parameters.mainInputFile.get(), kRecordingChannel, graph.recordingField,
                        PaletteColour(1));
        AddDefaultCurve(*portlet, parameters.outputFile.get(), kResultChannel, graph.resultField,
                        PaletteColour(0));
        return portlet;
    }

  private:
    std::unique_ptr<CTrv1DGraphMeasurePortlet> MakeMeasure(CTrv1DGraph* graph, std::string title,
                                                           std::uint32_t nature) const {
        return std::make_unique<CTrv1DGraphMeasurePortlet>(m_environment.settings, m_environment.timeText,
                                                           graph, std::move(title),
                                                           m_environment.adaptors.GetForNature(nature));
    }

    std::unique_ptr<CTrv1DGraphPortlet> BuildMeasure(CTrv1DGraphMeasure& graph) const {
        std::uint32_t nature = Persistance_Xpf::natureUnknown;
        FindGraphNature(m_project, graph, nature);
        auto portlet = MakeMeasure(&graph, graph.title, nature);
        for (std::size_t i = 0; i < graph.curves.size(); ++i) {
            const CTrv1DCurve& curve = *graph.curves[i];
            portlet->AddCurve({curve.label,
                               {curve.dataFile, curve.channel},
                               curve.field,
                               curve.factor,
                               curve.color == kNoColour ? PaletteColour(i) : curve.color,
                               &curve});
        }
        return portlet;
    }

    std::unique_ptr<CTrv1DGraphPortlet> BuildEnum(CTrv1DGraphEnum& graph) const {
        std::vector<std::string> literals;
        const auto* layer = m_project.dataModel->FindLayer(graph.dataFile, graph.channel);
        if (const auto* field = layer ? CTrvDataModel::FindEnum(*layer, graph.field) : nullptr)
            for (const auto& literal : field->m_literals) literals.push_back(literal->m_name);
        const SCurveDescription description{graph.label, {graph.dataFile, graph.channel}, graph.field,
                                            1.0,         m_environment.chronogramColour,  nullptr};
        return std::make_unique<CTrv1DGraphEnumPortlet>(m_environment.settings, m_environment.timeText,
                                                        &graph, graph.title, description, literals);
    }

    // Nothing, when the file has no such channel or field.
    void AddDefaultCurve(CTrv1DGraphMeasurePortlet& portlet, const CTrvDataFile* file,
                         std::string_view channel, std::string_view field, Colour colour) const {
        for (const auto& layer : m_project.dataModel->m_layers) {
            if (layer->m_dataFile != file || layer->m_name != channel) continue;
            for (const auto& measure : layer->m_measures)
                if (measure->m_name == field)
                    portlet.AddCurve({MakeCurveLabel(*layer, measure->m_name),
                                      {file, layer->m_channelNumber},
                                      measure->m_index,
                                      1.0,
                                      colour,
                                      nullptr});
        }
    }

    const CTrvProject& m_project;
    const SPortletEnvironment& m_environment;
};

} // namespace

CTrv1DGraphStack::Portlets BuildPortlets(const CTrvProject& project, const SPortletEnvironment& environment) {
    CTrv1DGraphStack::Portlets portlets;
    const CBuilder builder(project, environment);
    for (const auto& graph : project.graphSettings->graphs)
        if (auto portlet = builder.Build(*graph)) portlets.push_back(std::move(portlet));
    if (!project.graphSettings->graphs.empty()) return portlets;
    for (const SDefaultGraph& graph : kDefaultGraphs) portlets.push_back(builder.BuildDefault(graph));
    return portlets;
}

} // namespace Presentation_Tarvel_Graphics
