#include "graph/field_drop.h"

#include "document/edits.h"
#include "graph/measure_portlet.h"
#include "model/graph_rules.h"

#include <optional>

namespace Presentation_Tarvel_Graphics {

using namespace Metier_Tarvel_DataModel;
using namespace Metier_Tarvel_Graphics;
using Outils_Objets::CObject;

namespace {

template <class T>
T* As(CObject* object) {
    return object && object->IsKindOf(T::Class()) ? static_cast<T*>(object) : nullptr;
}

template <class T>
const T* As(const CObject& object) {
    return object.IsKindOf(T::Class()) ? static_cast<const T*>(&object) : nullptr;
}

// The nature of the first curve that the dictionary knows; none for a graph that takes any measure.
std::optional<std::uint32_t> FindNature(const Metier_Tarvel::CTrvProject& project,
                                        const CTrv1DGraphPortlet& portlet) {
    for (const SCurveDescription& curve : portlet.GetCurves()) {
        const auto* layer = project.dataModel->FindLayer(curve.channel.file, curve.channel.channel);
        const auto* measure = layer ? CTrvDataModel::FindMeasure(*layer, curve.field) : nullptr;
        if (measure) return measure->m_nature;
    }
    return {};
}

} // namespace

bool CanDrop(const Metier_Tarvel::CTrvProject& project, const CTrv1DGraphPortlet* portlet,
             const CObject& field) {
    const auto* measure = As<CTrvMeasureDef>(field);
    if (!portlet) return measure || As<CTrvEnumDef>(field);
    if (!measure || !dynamic_cast<const CTrv1DGraphMeasurePortlet*>(portlet)) return false;
    const auto nature = FindNature(project, *portlet);
    double factor = 1;
    return !nature || CanJoin(*nature, measure->m_nature, factor);
}

bool Drop(Application_Tarvel::CTrvDocument& document, const CTrv1DGraphPortlet* portlet,
          const CObject& field) {
    const auto* project = document.GetProject();
    if (!project || !CanDrop(*project, portlet, field)) return false;
    auto edits = document.GetEdits();
    const auto* measure = As<CTrvMeasureDef>(field);
    if (!measure)
        return edits.Do(Application_Tarvel::Edits::kAdd1DGraphEnum, static_cast<const CTrvEnumDef&>(field));
    auto* graph = portlet ? As<CTrv1DGraphMeasure>(portlet->GetGraph()) : nullptr;
    return graph ? edits.Do(Application_Tarvel::Edits::kAdd1DCurve, *graph, *measure)
                 : edits.Do(Application_Tarvel::Edits::kAdd1DGraphMeasure, *measure);
}

} // namespace Presentation_Tarvel_Graphics
