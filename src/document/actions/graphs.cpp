#include "document/actions/procedures.h"
#include "document/document.h"
#include "model/graph_rules.h"

namespace Application_Tarvel {

namespace Procedures {

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

bool RemoveCurve(const CEdit& edit, const CTrv1DCurve& removed) {
    CTrv1DGraphMeasure* graph = removed.graph;
    const CObject* curve = &removed;
    if (!graph || !graph->RemoveCurve(&removed)) return edit.Refuse();
    edit.Changed(curve);
    if (!graph->curves.empty()) return true;
    const CObject* emptied = graph;
    if (edit.GetProject().graphSettings->RemoveGraph(graph))
        edit.GetDocument().ProjectChanged(hintGraphRemoved, emptied);
    return true;
}

} // namespace Procedures
} // namespace Application_Tarvel
