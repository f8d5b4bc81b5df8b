#include "graph/forms.h"

#include "document/edits.h"
#include "foundation/numbers.h"
#include "foundation/texts.h"

#include <algorithm>
#include <cmath>

namespace Presentation_Tarvel_Graphics {

using namespace Application_Tarvel;
using Metier_Tarvel_Graphics::CTrv1DCurve;
using Metier_Tarvel_Graphics::CTrv1DGraphMeasure;
using Outils_Texte::EText;
using Outils_Texte::FormatText;

namespace {

constexpr std::pair<EText, Colour> kColours[] = {
    {EText::colorBlack, 0xFF000000},     {EText::colorOrange, 0xFFE69F00}, {EText::colorSky, 0xFF56B4E9},
    {EText::colorGreen, 0xFF009E73},     {EText::colorYellow, 0xFFF0E442}, {EText::colorBlue, 0xFF0072B2},
    {EText::colorVermilion, 0xFFD55E00}, {EText::colorPurple, 0xFFCC79A7},
};
// By the style.
constexpr EText kStyles[] = {EText::lineSolid, EText::lineDashes, EText::lineDots, EText::lineDashDots,
                             EText::lineLongDashes};
static_assert(std::size(kStyles) == static_cast<std::size_t>(ELineStyle::count));

// The lines of the form of a curve.
enum ECurveLine : std::size_t { lineLabel, lineColour, lineStyle, lineFactor };

std::vector<SFormLine> MakeCurveLines(const CTrv1DCurve& curve) {
    const SCurveLook look = ReadLook(curve.color);
    SFormLine colour{EText::fieldColor}, style{EText::fieldLine, EText::helpCurveLine};
    colour.choices = {{EText::colorNow, {look.colour, ELineStyle::solid}}};
    for (const auto& [name, value] : kColours) colour.choices.push_back({name, {value, ELineStyle::solid}});
    for (std::size_t i = 0; i < std::size(kStyles); ++i)
        style.choices.push_back({kStyles[i], {look.colour, static_cast<ELineStyle>(i)}});
    style.choice = static_cast<std::size_t>(look.style);
    return {{EText::fieldLabel, EText::helpCurveName, curve.label},
            std::move(colour),
            std::move(style),
            {EText::fieldFactor, EText::helpCurveFactor, Outils_Texte::FormatShortest(curve.factor)}};
}

std::string Trim(const std::string& text) {
    const auto first = text.find_first_not_of(" \t"), last = text.find_last_not_of(" \t");
    return first == std::string::npos ? std::string() : text.substr(first, last - first + 1);
}

SFormRefusal Refuse(EText text, std::initializer_list<std::string_view> arguments, std::size_t line) {
    return {FormatText(text, arguments), line};
}

} // namespace

CCurveForm::CCurveForm(CTrvDocument& document, CTrv1DCurve& curve)
    : CForm(EText::curveProperties, MakeCurveLines(curve)), m_document(document), m_curve(curve) {}

// Only compares.
bool CCurveForm::IsStillThere() const {
    const auto* project = m_document.GetProject();
    return project && std::ranges::any_of(project->graphSettings->graphs, [&](const auto& graph) {
               const auto* measures = dynamic_cast<const CTrv1DGraphMeasure*>(graph.get());
               return measures && std::ranges::any_of(measures->curves,
                                                      [&](const auto& own) { return own.get() == &m_curve; });
           });
}

std::optional<SFormRefusal> CCurveForm::OnOK() {
    const std::string label = Trim(GetText(lineLabel));
    if (label.empty()) return Refuse(EText::labelMissing, {}, lineLabel);
    std::string typed = Trim(GetText(lineFactor));
    std::ranges::replace(typed, ',', '.');
    const auto factor = Outils_Texte::ParseDouble(typed);
    if (!factor || !std::isfinite(*factor) || *factor == 0)
        return Refuse(EText::factorRefused, {GetText(lineFactor)}, lineFactor);
    if (!IsStillThere()) return {};
    const Colour colour = WriteLook({GetLook(lineColour).colour, GetLook(lineStyle).style});
    if (label == m_curve.label && colour == m_curve.color && *factor == m_curve.factor) return {};
    m_document.GetEdits().Do(Edits::kChange1DCurve, m_curve, {label, colour, *factor});
    return {};
}

CRangeForm::CRangeForm(CTrv1DGraphLoader& loader, const CTrv1DGraphMeasurePortlet& graph)
    : CForm(EText::axisRange,
            {{EText::fieldMinimum, EText::helpAxisRange, graph.FormatValue(graph.GetMinimum())},
             {EText::fieldMaximum, EText::helpAxisRange, graph.FormatValue(graph.GetMaximum())}}),
      m_loader(loader),
      m_key(graph.GetKey()) {}

std::optional<SFormRefusal> CRangeForm::OnOK() {
    const auto& portlets = m_loader.GetStack().GetPortlets();
    const auto place =
        std::ranges::find(portlets, m_key, [](const auto& portlet) { return portlet->GetKey(); });
    const auto* graph =
        place == portlets.end() ? nullptr : dynamic_cast<const CTrv1DGraphMeasurePortlet*>(place->get());
    if (!graph) return {};
    const std::string low = Trim(GetText(0)), high = Trim(GetText(1));
    if (low.empty() && high.empty()) {
        m_loader.GetViewState().SetRange(m_key, std::nullopt);
        return {};
    }
    const auto minimum = graph->ReadValue(low), maximum = graph->ReadValue(high);
    if (!minimum) return Refuse(EText::numberRefused, {low}, 0);
    if (!maximum) return Refuse(EText::numberRefused, {high}, 1);
    const SRange range = {*minimum, *maximum};
    if (!IsUsable(range)) return Refuse(EText::rangeRefused, {low, high}, 1);
    m_loader.GetViewState().SetRange(m_key, range);
    return {};
}

namespace {

CDateTimeSpan FindPresent(const CTrv1DGraphLoader& loader) {
    const auto cursor = loader.GetViewState().GetCursor(ECursor::first);
    return cursor ? *cursor : loader.GetStack().GetPeriod().start;
}

} // namespace

CDateForm::CDateForm(CTrv1DGraphLoader& loader)
    : CForm(EText::goToDate, {{EText::fieldDate, EText::goToDateTip,
                               loader.GetStack().GetTimeText().Format(FindPresent(loader))}}),
      m_loader(loader) {}

std::optional<SFormRefusal> CDateForm::OnOK() {
    const auto& notation = m_loader.GetStack().GetTimeText();
    const auto time = ReadTime(notation, GetText(0));
    if (time) {
        m_loader.GoTo(*time);
        return {};
    }
    const CDateTimeSpan example = m_loader.GetStack().GetPeriod().start;
    std::string elapsed;
    notation.span.ValueToText(example, elapsed);
    return Refuse(EText::dateRefused, {GetText(0), notation.Format(example), elapsed}, 0);
}

std::optional<CDateTimeSpan> ReadTime(const SSimulationTimeText& notation, const std::string& typed) {
    const std::string text = Trim(typed);
    CDateTimeSpan span;
    CDateTime date;
    // A span is never read as a date: their separators differ.
    if (notation.utcReference && notation.dateTime.TextToValue(text, date)) {
        const CDateTimeSpan time = date - *notation.utcReference;
        if (time.IsValid()) return time;
    }
    if (notation.span.TextToValue(text, span) && span.IsValid()) return span;
    return {};
}

} // namespace Presentation_Tarvel_Graphics
