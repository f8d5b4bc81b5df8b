#include "views/drop_targets.h"

#include "foundation/texts.h"
#include "graph/field_adding.h"
#include "graph/stack_picture.h"
#include "plot/text.h"

#include <algorithm>

namespace Application_Tarvel {

using namespace Presentation_Tarvel_Graphics;
using Outils_Plot2D::ToQString;
using Outils_Texte::EText;
using Outils_Texte::FormatText;

const CTrv1DGraphPortlet* CGraphsDropTarget::FindPortlet(QPoint point) const {
    return PortletAt(m_view.GetStack(), m_view.ToStack(point));
}

bool CGraphsDropTarget::CanDrop(QPoint point, const Fields& fields) const {
    return std::ranges::any_of(fields, [&](const auto* field) { return m_view.CanDrop(point, *field); });
}

bool CGraphsDropTarget::Drop(QPoint point, const Fields& fields) {
    m_view.setFocus();
    if (!FindPortlet(point)) return AddToNewGraphs(m_view.GetLoader(), fields) > 0;
    bool isAny = false;
    for (const auto* field : fields) isAny = m_view.Drop(point, *field) || isAny;
    return isAny;
}

QString CGraphsDropTarget::GetHint(QPoint point, const Fields& fields) const {
    const auto* project = m_view.GetLoader().GetDocument().GetProject();
    return project ? ToQString(DescribeDrop(*project, FindPortlet(point), fields)) : QString();
}

Fields CValuesDropTarget::FindNew(const Fields& fields) const {
    Fields found;
    std::ranges::copy_if(fields, std::back_inserter(found),
                         [&](const auto* field) { return m_panel.GetValues().CanAdd(*field); });
    return found;
}

bool CValuesDropTarget::CanDrop(QPoint, const Fields& fields) const { return !FindNew(fields).empty(); }

bool CValuesDropTarget::Drop(QPoint, const Fields& fields) {
    bool isAny = false;
    for (const auto* field : FindNew(fields)) isAny = m_panel.GetValues().Add(*field) || isAny;
    return isAny;
}

QString CValuesDropTarget::GetHint(QPoint, const Fields& fields) const {
    const Fields added = FindNew(fields);
    return ToQString(added.empty() ? FormatText(EText::dropPresent, {NameFields(fields)})
                                   : FormatText(EText::dropValues, {NameFields(added)}));
}

} // namespace Application_Tarvel
