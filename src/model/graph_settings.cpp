#include "model/graph_settings.h"

#include "foundation/curve_palette.h"
#include "foundation/texts.h"
#include "model/loading.h"
#include "model/project.h"

namespace Metier_Tarvel_Graphics {

using Outils_Texte::EText;

using Metier_Tarvel::AppendOwned;
using Metier_Tarvel::EraseOwned;
using Outils_Objets::CSchema;
using Outils_Objets::SerializeUnchanged;

namespace {

// Labels of what the first layouts saved without one.
constexpr EText kTextUnknownEnum = EText::unknownEnumeration;
constexpr EText kTextUnknownCurve = EText::unknownCurve;

constexpr std::uint32_t kDefaultColor = 0xFF000000;

} // namespace

void CTrv1DGraph::Serialize(CArchive& archive) {
    CSchema schema(archive, 2);
    CTrvObject::Serialize(archive);
    schema.Since(2).Reference(settings);
    schema.Field(title);
}

void CTrv1DGraphEnum::Serialize(CArchive& archive) {
    CSchema schema(archive, 2);
    if (archive.IsLoading()) label = Outils_Texte::GetText(kTextUnknownEnum);
    CTrv1DGraph::Serialize(archive);
    schema.Reference(dataFile);
    schema.Field(channel);
    schema.Field(field);
    schema.Since(2).Field(label);
}

void CTrv1DCurve::Serialize(CArchive& archive) {
    CSchema schema(archive, 4);
    if (archive.IsLoading()) {
        label = Outils_Texte::GetText(kTextUnknownCurve);
        color = kDefaultColor;
        factor = 1.0;
    }
    CTrvObject::Serialize(archive);
    schema.Reference(graph);
    schema.Reference(dataFile);
    schema.Field(channel);
    schema.Field(field);
    schema.Since(2).Field(label);
    schema.Since(3).Field(color);
    schema.Since(4).Field(factor);
}

CTrv1DCurve* CTrv1DGraphMeasure::AddCurve(CTrvDataFile* dataFile, std::uint16_t channel, std::uint32_t field,
                                          std::string label) {
    auto* curve = AppendOwned(curves, std::make_unique<CTrv1DCurve>());
    curve->graph = this;
    curve->dataFile = dataFile;
    curve->channel = channel;
    curve->field = field;
    curve->label = std::move(label);
    curve->color = Outils::kCurvePalette[(curves.size() - 1) % Outils::kCurvePalette.size()];
    return curve;
}

bool CTrv1DGraphMeasure::RemoveCurve(const CTrv1DCurve* curve) { return EraseOwned(curves, curve); }

void CTrv1DGraphMeasure::Serialize(CArchive& archive) {
    SerializeUnchanged<CTrv1DGraph>(archive, *this, curves);
}

CTrv1DGraphMeasure* CTrv1DSettings::AddMeasureGraph(std::string title) {
    auto* graph = AppendOwned(graphs, std::make_unique<CTrv1DGraphMeasure>());
    graph->settings = this;
    graph->title = std::move(title);
    return graph;
}

CTrv1DGraphEnum* CTrv1DSettings::AddEnumGraph(std::string title, CTrvDataFile* dataFile,
                                              std::uint16_t channel, std::uint32_t field, std::string label) {
    auto* graph = AppendOwned(graphs, std::make_unique<CTrv1DGraphEnum>());
    graph->settings = this;
    graph->title = std::move(title);
    graph->dataFile = dataFile;
    graph->channel = channel;
    graph->field = field;
    graph->label = std::move(label);
    return graph;
}

bool CTrv1DSettings::RemoveGraph(const CTrv1DGraph* graph) { return EraseOwned(graphs, graph); }

void CTrv1DSettings::ForgetDataFile(const CTrvDataFile* dataFile) {
    std::erase_if(graphs, [dataFile](const std::unique_ptr<CTrv1DGraph>& graph) {
        if (graph->IsKindOf(CTrv1DGraphEnum::Class()))
            return static_cast<CTrv1DGraphEnum&>(*graph).dataFile == dataFile;
        if (!graph->IsKindOf(CTrv1DGraphMeasure::Class())) return false;
        auto& curves = static_cast<CTrv1DGraphMeasure&>(*graph).curves;
        const auto forgotten =
            std::erase_if(curves, [dataFile](const auto& curve) { return curve->dataFile == dataFile; });
        return forgotten > 0 && curves.empty();
    });
}

void CTrv1DSettings::Attach(CTrvProject& owner) {
    project = &owner;
    const auto checkFile = [&owner](const CTrvDataFile* dataFile) {
        if (dataFile && dataFile->owner != owner.simulationParameters.get())
            Outils_Objets::AfxThrowArchiveException(Outils_Objets::CArchiveException::badIndex);
    };
    for (const auto& graph : graphs) {
        graph->settings = this;
        if (graph->IsKindOf(CTrv1DGraphEnum::Class()))
            checkFile(static_cast<CTrv1DGraphEnum&>(*graph).dataFile);
        if (!graph->IsKindOf(CTrv1DGraphMeasure::Class())) continue;
        auto& measureGraph = static_cast<CTrv1DGraphMeasure&>(*graph);
        for (const auto& curve : measureGraph.curves) {
            curve->graph = &measureGraph;
            checkFile(curve->dataFile);
        }
    }
}

void CTrv1DSettings::Serialize(CArchive& archive) {
    CSchema schema(archive, 2);
    CTrvObject::Serialize(archive);
    schema.Since(2).Reference(project);
    schema.OwnedList(graphs);
}

} // namespace Metier_Tarvel_Graphics
