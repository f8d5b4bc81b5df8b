#include "graph/field_drop.h"

#include "document/edits.h"
#include "model/graph_rules.h"

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

bool Takes(const Metier_Tarvel::CTrvProject& project, CTrv1DGraph& graph, const CObject& field) {
    const auto* measure = As<CTrvMeasureDef>(field);
    const auto* measures = As<CTrv1DGraphMeasure>(&graph);
    if (!measure || !measures) return false;
    std::uint32_t nature = 0;
    double factor = 1;
    return !FindGraphNature(project, *measures, nature) || CanJoin(nature, measure->m_nature, factor);
}

} // namespace

bool CanDrop(const Metier_Tarvel::CTrvProject& project, const CTrv1DGraphPortlet* portlet,
             const CObject& field) {
    if (portlet && portlet->GetGraph()) return Takes(project, *portlet->GetGraph(), field);
    return As<CTrvMeasureDef>(field) || As<CTrvEnumDef>(field);
}

bool Drop(Application_Tarvel::CTrvDocument& document, const CTrv1DGraphPortlet* portlet,
          const CObject& field) {
    const auto* project = document.GetProject();
    if (!project || !CanDrop(*project, portlet, field)) return false;
    auto edits = document.GetEdits();
    const auto* measure = As<CTrvMeasureDef>(field);
    if (!measure) return edits.Do(Application_Tarvel::Edits::kAdd1DGraphEnum, static_cast<const CTrvEnumDef&>(field));
    auto* graph = portlet ? As<CTrv1DGraphMeasure>(portlet->GetGraph()) : nullptr;
    return graph ? edits.Do(Application_Tarvel::Edits::kAdd1DCurve, *graph, *measure) : edits.Do(Application_Tarvel::Edits::kAdd1DGraphMeasure, *measure);
}

} // namespace Presentation_Tarvel_Graphics
