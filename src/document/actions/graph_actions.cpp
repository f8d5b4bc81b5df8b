#include "document/actions/graph_actions.h"

#include "document/document.h"
#include "model/graph_rules.h"

namespace Application_Tarvel {

using namespace Metier_Tarvel_DataModel;
using namespace Metier_Tarvel_Graphics;
using namespace Metier_Tarvel_InstantValues;

namespace Creation {

CTrv1DGraph* AddMeasureGraph(CTrvProject& project, const CTrvMeasureDef& measure) {
    const CTrvDataLayer* layer = measure.m_layer;
    if (!layer || !layer->m_dataFile) return nullptr;
    auto* graph = project.graphSettings->AddMeasureGraph(measure.m_name);
    graph->AddCurve(layer->m_dataFile, layer->m_channelNumber, measure.m_index,
                    MakeCurveLabel(*layer, measure.m_name));
    return graph;
}

CTrv1DGraph* AddEnumGraph(CTrvProject& project, const CTrvEnumDef& enumeration) {
    const CTrvDataLayer* layer = enumeration.m_layer;
    if (!layer || !layer->m_dataFile) return nullptr;
    return project.graphSettings->AddEnumGraph(enumeration.m_name, layer->m_dataFile, layer->m_channelNumber,
                                               enumeration.m_index,
                                               MakeCurveLabel(*layer, enumeration.m_name));
}

CTrv1DCurve* AddCurve(CTrvProject& project, CTrv1DGraphMeasure& graph, const CTrvMeasureDef& measure) {
    const CTrvDataLayer* layer = measure.m_layer;
    if (!layer || !layer->m_dataFile) return nullptr;
    double factor = 1.0;
    std::uint32_t nature = 0;
    if (FindGraphNature(project, graph, nature) && !CanJoin(nature, measure.m_nature, factor)) return nullptr;
    auto* curve = graph.AddCurve(layer->m_dataFile, layer->m_channelNumber, measure.m_index,
                                 MakeCurveLabel(*layer, measure.m_name));
    curve->factor = factor;
    return curve;
}

CTrvInstantValuesMeasure* AddInstantMeasure(CTrvProject& project, const CTrvMeasureDef& measure) {
    const CTrvDataLayer* layer = measure.m_layer;
    if (!layer || !layer->m_dataFile) return nullptr;
    return project.instantValuesSettings->AddMeasure(layer->m_dataFile, layer->m_channelNumber,
                                                     measure.m_index, MakeCurveLabel(*layer, measure.m_name));
}

CTrvInstantValuesEnum* AddInstantEnum(CTrvProject& project, const CTrvEnumDef& enumeration) {
    const CTrvDataLayer* layer = enumeration.m_layer;
    if (!layer || !layer->m_dataFile) return nullptr;
    return project.instantValuesSettings->AddEnum(layer->m_dataFile, layer->m_channelNumber,
                                                  enumeration.m_index,
                                                  MakeCurveLabel(*layer, enumeration.m_name));
}

} // namespace Creation

bool CTrvActRemove1DCurve::Perform(CTrvProject& project) {
    CTrv1DGraphMeasure* graph = m_curve.graph;
    const CObject* curve = &m_curve;
    if (!graph || !graph->RemoveCurve(&m_curve)) return Refuse();
    Changed(curve);
    if (!graph->curves.empty()) return true;
    const CObject* emptied = graph;
    if (project.graphSettings->RemoveGraph(graph)) m_document.ProjectChanged(hintGraphRemoved, emptied);
    return true;
}

} // namespace Application_Tarvel
