#include "graph/field_adding.h"

#include "document/edits.h"
#include "foundation/texts.h"
#include "model/graph_rules.h"

#include <algorithm>

namespace Presentation_Tarvel_Graphics {

using namespace Application_Tarvel;
using namespace Metier_Tarvel_DataModel;
using namespace Metier_Tarvel_Graphics;
using Outils_Texte::EText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

namespace {

// The graph made last, if the measure fits into it.
CTrv1DGraphMeasure* FindLast(const Metier_Tarvel::CTrvProject& project, const CTrvFieldDef& field) {
    const auto& graphs = project.graphSettings->graphs;
    if (graphs.empty() || !graphs.back()->IsKindOf(CTrv1DGraphMeasure::Class()) ||
        !field.IsKindOf(CTrvMeasureDef::Class()))
        return nullptr;
    auto& graph = static_cast<CTrv1DGraphMeasure&>(*graphs.back());
    std::uint32_t nature = 0;
    double factor = 1;
    const bool fits = FindGraphNature(project, graph, nature) &&
                      CanJoin(nature, static_cast<const CTrvMeasureDef&>(field).m_nature, factor);
    return fits ? &graph : nullptr;
}

} // namespace

std::size_t AddToNewGraphs(CTrv1DGraphLoader& graphs, const FieldList& fields) {
    graphs.SaveDefaults();
    auto& document = graphs.GetDocument();
    std::size_t count = 0;
    for (const CTrvFieldDef* field : fields) {
        const auto* project = document.GetProject();
        if (!project) break;
        CTrv1DGraphMeasure* graph = count > 0 ? FindLast(*project, *field) : nullptr;
        const bool isAdded = graph ? document.GetEdits().Do(Edits::kAdd1DCurve, *graph,
                                                            static_cast<const CTrvMeasureDef&>(*field))
                                   : Drop(document, nullptr, *field);
        if (isAdded) ++count;
    }
    return count;
}

std::size_t AddToSelectedGraph(CTrv1DGraphLoader& graphs, const FieldList& fields) {
    graphs.SaveDefaults();
    auto& document = graphs.GetDocument();
    FieldList others;
    std::size_t count = 0;
    for (const CTrvFieldDef* field : fields) {
        const CTrv1DGraphPortlet* selected = graphs.GetStack().GetSelected();
        const auto* project = document.GetProject();
        if (project && selected && selected->GetGraph() && CanDrop(*project, selected, *field) &&
            Drop(document, selected, *field))
            ++count;
        else
            others.push_back(field);
    }
    return count + AddToNewGraphs(graphs, others);
}

std::string NameFields(const FieldList& fields) {
    return fields.size() == 1 ? fields[0]->m_name
                              : FormatText(EText::fieldCount, {std::to_string(fields.size())});
}

std::string DescribeDrop(const Metier_Tarvel::CTrvProject& project, const CTrv1DGraphPortlet* portlet,
                         const FieldList& fields) {
    FieldList fitting;
    for (const CTrvFieldDef* field : fields)
        if (CanDrop(project, portlet, *field)) fitting.push_back(field);
    if (fitting.empty())
        return portlet ? FormatText(EText::dropOtherKind, {portlet->GetTitle()})
                       : std::string(GetText(EText::dropNowhere));
    // A default graph takes fields as well, once it is saved; one that shows nothing is not saved.
    const bool isGraph = portlet && (portlet->GetGraph() || !portlet->GetCurves().empty());
    if (!isGraph) return FormatText(EText::dropGraph, {NameFields(fitting)});
    return FormatText(EText::dropCurve, {NameFields(fitting), portlet->GetTitle()});
}

} // namespace Presentation_Tarvel_Graphics
