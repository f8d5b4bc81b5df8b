#include "graph/graph_description.h"

#include "foundation/texts.h"
#include "model/graph_rules.h"
#include "plot/settings.h"
#include "xpf/layout.h"

#include <string_view>

namespace Presentation_Tarvel_Graphics {

using Outils_Texte::EText;

using namespace Metier_Tarvel;
using namespace Metier_Tarvel_DataModel;
using namespace Metier_Tarvel_Graphics;
using Outils_Plot2D::kCurvePalette;

namespace {

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

Colour PaletteColour(std::size_t place) { return kCurvePalette[place % kCurvePalette.size()]; }

// Adds nothing when the file has no such channel or field.
void AddDefaultCurve(SGraphDescription& graph, const CTrvDataModel& dictionary, const CTrvDataFile* file,
                     std::string_view channel, std::string_view field, Colour colour) {
    for (const auto& layer : dictionary.m_layers) {
        if (layer->m_dataFile != file || layer->m_name != channel) continue;
        for (const auto& measure : layer->m_measures)
            if (measure->m_name == field)
                graph.curves.push_back({MakeCurveLabel(*layer, measure->m_name),
                                        {file, layer->m_channelNumber},
                                        measure->m_index,
                                        1.0,
                                        colour,
                                        nullptr});
    }
}

SGraphDescription DescribeDefault(const SDefaultGraph& row, const CTrvProject& project,
                                  const Outils_Valeurs::CTrvAdaptors& adaptors) {
    SGraphDescription graph;
    graph.title = Outils_Texte::GetText(row.title);
    graph.adaptor = &adaptors.GetForNature(row.nature);
    const auto& parameters = *project.simulationParameters;
    // The result comes last and so lies on top: where both agree it is the one that is seen.
    AddDefaultCurve(graph, *project.dataModel, parameters.mainInputFile.get(), kRecordingChannel,
                    row.recordingField, PaletteColour(1));
    AddDefaultCurve(graph, *project.dataModel, parameters.outputFile.get(), Persistance_Xpf::kResultChannel,
                    row.resultField, PaletteColour(0));
    return graph;
}

SGraphDescription DescribeMeasure(CTrv1DGraphMeasure& saved, const CTrvProject& project,
                                  const Outils_Valeurs::CTrvAdaptors& adaptors) {
    std::uint32_t nature = Persistance_Xpf::natureUnknown;
    FindGraphNature(project, saved, nature);
    SGraphDescription graph{&saved, saved.title, &adaptors.GetForNature(nature), {}, {}};
    for (const auto& curve : saved.curves) {
        const SCurveLook look = ReadLook(curve->color);
        graph.curves.push_back({curve->label,
                                {curve->dataFile, curve->channel},
                                curve->field,
                                curve->factor,
                                look.colour,
                                curve.get(),
                                look.style});
    }
    return graph;
}

SGraphDescription DescribeEnum(CTrv1DGraphEnum& saved, const CTrvProject& project, Colour colour) {
    SGraphDescription graph{&saved, saved.title, nullptr, {}, {}};
    graph.curves.push_back({saved.label, {saved.dataFile, saved.channel}, saved.field, 1.0, colour, nullptr});
    const auto* layer = project.dataModel->FindLayer(saved.dataFile, saved.channel);
    if (const auto* field = layer ? CTrvDataModel::FindEnum(*layer, saved.field) : nullptr)
        for (const auto& literal : field->m_literals) graph.states.push_back(literal->m_name);
    return graph;
}

} // namespace

std::vector<SGraphDescription> DescribeGraphs(const CTrvProject& project,
                                              const Outils_Valeurs::CTrvAdaptors& adaptors,
                                              Colour chronogramColour) {
    std::vector<SGraphDescription> graphs;
    for (const auto& graph : project.graphSettings->graphs) {
        if (graph->IsKindOf(CTrv1DGraphEnum::Class()))
            graphs.push_back(DescribeEnum(static_cast<CTrv1DGraphEnum&>(*graph), project, chronogramColour));
        else if (graph->IsKindOf(CTrv1DGraphMeasure::Class()))
            graphs.push_back(DescribeMeasure(static_cast<CTrv1DGraphMeasure&>(*graph), project, adaptors));
    }
    if (project.graphSettings->graphs.empty())
        for (const SDefaultGraph& row : kDefaultGraphs)
            graphs.push_back(DescribeDefault(row, project, adaptors));
    return graphs;
}

} // namespace Presentation_Tarvel_Graphics
