// What the user changes in the project from the graphs: fields dropped on them, curves taken away.
#include "document/edits.h"
#include "model/graph_rules.h"
#include "views/view_1d.h"

namespace Application_Tarvel {

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

bool CTrvView1D::CanDrop(QPointF position, const CObject& field) const {
    const auto* project = m_loader.GetDocument().GetProject();
    if (!project) return false;
    const CTrv1DGraphPortlet* portlet = GetStack().PortletAt(ToStack(position));
    if (portlet && portlet->GetGraph()) return Takes(*project, *portlet->GetGraph(), field);
    return As<CTrvMeasureDef>(field) || As<CTrvEnumDef>(field);
}

bool CTrvView1D::Drop(QPointF position, const CObject& field) {
    if (!CanDrop(position, field)) return false;
    setFocus();
    auto edits = m_loader.GetDocument().GetEdits();
    const auto* measure = As<CTrvMeasureDef>(field);
    if (!measure) return edits.Do(Edits::kAdd1DGraphEnum, static_cast<const CTrvEnumDef&>(field));
    const CTrv1DGraphPortlet* portlet = GetStack().PortletAt(ToStack(position));
    auto* graph = portlet ? As<CTrv1DGraphMeasure>(portlet->GetGraph()) : nullptr;
    return graph ? edits.Do(Edits::kAdd1DCurve, *graph, *measure)
                 : edits.Do(Edits::kAdd1DGraphMeasure, *measure);
}

void CTrvView1D::DeleteSelectedCurve() {
    CTrv1DGraphPortlet* portlet = GetStack().GetSelected();
    const auto* serie = portlet ? portlet->GetPlot().GetSelectedSerie() : nullptr;
    if (!serie || !portlet->GetGraph()) return;
    // The document tells the loader, which makes the portlets anew: nothing of them is touched behind the
    // edit.
    const auto* curve = portlet->GetCurve(serie);
    auto edits = m_loader.GetDocument().GetEdits();
    if (curve)
        edits.Do(Edits::kRemove1DCurve, *curve);
    else
        edits.Do(Edits::kRemove1DGraph, *portlet->GetGraph());
}

} // namespace Application_Tarvel
