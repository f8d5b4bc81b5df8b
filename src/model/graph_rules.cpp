#include "model/graph_rules.h"

#include "foundation/paths.h"
#include "xpf/layout.h"

namespace Metier_Tarvel_Graphics {

using Metier_Tarvel_DataModel::CTrvDataLayer;
using Metier_Tarvel_DataModel::CTrvDataModel;
using Persistance_Xpf::natureAltitude;
using Persistance_Xpf::natureImmersion;

bool FindGraphNature(const CTrvProject& project, const CTrv1DGraphMeasure& graph, std::uint32_t& nature) {
    if (!project.dataModel) return false;
    for (const auto& curve : graph.curves) {
        const auto* layer = project.dataModel->FindLayer(curve->dataFile, curve->channel);
        const auto* measure = layer ? CTrvDataModel::FindMeasure(*layer, curve->field) : nullptr;
        if (!measure) continue;
        nature = measure->m_nature;
        return true;
    }
    return false;
}

bool CanJoin(std::uint32_t graphNature, std::uint32_t nature, double& factor) {
    const bool mirrored = (graphNature == natureAltitude && nature == natureImmersion) ||
                          (graphNature == natureImmersion && nature == natureAltitude);
    if (graphNature != nature && !mirrored) return false;
    factor = mirrored ? -1.0 : 1.0;
    return true;
}

std::string MakeCurveLabel(const CTrvDataLayer& layer, const std::string& field) {
    std::string label = layer.m_name + " - " + field;
    const auto* file = layer.m_dataFile;
    if (!file || !file->owner) return label;
    const auto& parameters = *file->owner;
    if (file != parameters.mainInputFile.get() && file != parameters.outputFile.get())
        label += " (" + Outils_Fichiers::ToText(file->path.filename()) + ")";
    return label;
}

} // namespace Metier_Tarvel_Graphics
