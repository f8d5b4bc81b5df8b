#include "views/view_1d_tip.h"

#include "foundation/paths.h"
#include "foundation/texts.h"
#include "graph/hit_test.h"
#include "plot/text.h"
#include "views/view_1d.h"

#include <QHelpEvent>
#include <QToolTip>

namespace Application_Tarvel {

using namespace Presentation_Tarvel_Graphics;
using Metier_Tarvel_DataModel::CTrvDataModel;
using Outils_Plot2D::ToQString;
using Outils_Texte::EText;
using Outils_Texte::FormatText;

namespace {

// As the files call them, whatever the labels are.
std::string DescribeCurve(const Metier_Tarvel::CTrvProject& project, const SCurveDescription& curve) {
    const auto* layer = project.dataModel->FindLayer(curve.channel.file, curve.channel.channel);
    std::string field = std::to_string(curve.field);
    if (const auto* measure = layer ? CTrvDataModel::FindMeasure(*layer, curve.field) : nullptr)
        field = measure->m_name;
    else if (const auto* state = layer ? CTrvDataModel::FindEnum(*layer, curve.field) : nullptr)
        field = state->m_name;
    return FormatText(EText::curveTip, {curve.name, layer ? layer->m_name : std::string(), field,
                                        Outils_Fichiers::ToText(curve.channel.file->path)});
}

} // namespace

CTrvView1DTip::CTrvView1DTip(CTrvView1D& view)
    : m_view(view),
      m_queries(std::make_unique<CAsyncQueryManager>(view.GetLoader().GetDocument().GetMessageTarget())) {}

CTrvView1DTip::~CTrvView1DTip() = default;

void CTrvView1DTip::Show(const QHelpEvent& event) {
    if (m_query) m_queries->Cancel(m_query);
    m_query.reset();
    auto& document = m_view.GetLoader().GetDocument();
    const SGraphHit hit = m_view.Hit(event.pos());
    const auto* project = document.GetProject();
    if (const auto strip = m_view.HitStrip(event.pos()))
        return QToolTip::showText(event.globalPos(), ToQString(strip->text), &m_view);
    if (!hit.portlet || !project) return QToolTip::hideText();
    const Outils_Plot2D::CPlot2DSerie* serie =
        hit.serie ? hit.serie : hit.portlet->GetPlot().GetSelectedSerie();
    const SCurveDescription* curve = hit.portlet->FindShown(serie);
    const bool inPlot = hit.serie || hit.part == EGraphPart::plot;
    if (!inPlot || !curve || !curve->channel.file)
        return QToolTip::showText(event.globalPos(), ToQString(hit.portlet->GetTitle()), &m_view);
    const QString text = ToQString(DescribeCurve(*project, *curve));
    QToolTip::showText(event.globalPos(), text, &m_view);
    const auto cursor = m_view.GetViewState().GetCursor(ECursor::first);
    if (!cursor) return;
    auto address = document.GetFiles()->GetAddress(*curve->channel.file, curve->channel.channel);
    address.cache = nullptr; // by an exact hit in it the search would answer with an end of the file
    const auto origin = Metier_Tarvel::ToSpan(curve->channel.file->timeOffset);
    // The manager drops answers that come after its end. The query outlives its own answer.
    const auto asked = std::make_shared<const CTrvViewValueDataQuery*>(nullptr);
    const auto query = std::make_shared<CTrvViewValueDataQuery>(
        std::move(address), *cursor - origin,
        [this, at = event.globalPos(), text, origin, asked](bool, const auto& packet) {
            if (packet) OnPlace(at, text, (*asked)->GetPlace(), (*asked)->GetPlace().date + origin);
        });
    *asked = query.get();
    m_query = query;
    m_queries->Submit(m_query);
}

void CTrvView1DTip::OnPlace(QPoint at, const QString& text, const SPacketPlace& place, CDateTimeSpan date) {
    if (!QToolTip::isVisible() || QToolTip::text() != text) return;
    QToolTip::showText(
        at,
        ToQString(FormatText(EText::sampleTip,
                             {text.toStdString(), m_view.GetStack().GetTimeText().Format(date),
                              std::to_string(place.number), std::to_string(place.position.Get())})),
        &m_view);
}

} // namespace Application_Tarvel
