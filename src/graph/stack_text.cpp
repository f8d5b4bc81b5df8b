#include "graph/stack_text.h"

#include "foundation/texts.h"
#include "graph/stack_picture.h"

namespace Presentation_Tarvel_Graphics {

using Outils_Texte::EText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

namespace {

// "a, b, c"
void Append(std::string& list, const std::string& text) {
    if (!list.empty()) list += ", ";
    list += text;
}

// Some curve that is seen is not all read yet.
bool IsProvisional(const CTrv1DGraphPortlet& portlet) {
    bool found = false;
    portlet.ForEachVisible([&found](const CPlot2DSerie&, const CTrv1DGraphDataSource& source) {
        found = found || source.GetPreview();
    });
    return found;
}

} // namespace

std::string DescribeStack(const CTrv1DGraphStack& stack, const CViewState& viewState) {
    std::string text;
    const auto add = [&text](const std::string& sentence) {
        if (!text.empty()) text += ' ';
        text += sentence;
    };
    for (const CTrv1DGraphPortlet* portlet : stack.GetShown()) {
        std::string curves;
        for (const SCurveDescription& curve : portlet->GetCurves()) Append(curves, curve.name);
        add(FormatText(EText::graphDescription, {portlet->GetTitle(), curves}));
        if (IsProvisional(*portlet)) add(std::string(GetText(EText::graphProvisional)));
    }
    if (!stack.HasPeriod()) return text;
    const auto& time = stack.GetTimeText();
    add(FormatText(EText::periodDescription,
                   {time.Format(stack.GetPeriod().start), time.Format(stack.GetPeriod().end),
                    stack.GetTimeText().GetScaleName()}));
    const auto cursor = viewState.GetCursor(ECursor::first);
    if (!cursor) return text;
    std::string values;
    for (const CTrv1DGraphPortlet* portlet : stack.GetShown())
        for (const SValueAt& row : GetValuesAt(*portlet, *cursor))
            if (!row.text.empty()) Append(values, row.serie->GetName() + ' ' + row.text);
    add(FormatText(EText::cursorDescription,
                   {time.Format(*cursor), values.empty() ? std::string(GetText(EText::noData)) : values}));
    return text;
}

std::string WriteValues(const CTrv1DGraphStack& stack, const CViewState& viewState) {
    std::string text;
    const auto cursor = viewState.GetCursor(ECursor::first);
    if (cursor) text = stack.GetTimeText().Format(*cursor) + '\t' + stack.GetTimeText().GetScaleName() + '\n';
    for (const CTrv1DGraphPortlet* portlet : stack.GetShown()) {
        if (!cursor) {
            for (const SCurveDescription& curve : portlet->GetCurves())
                text += portlet->GetTitle() + '\t' + curve.name + '\n';
            continue;
        }
        for (const SValueAt& row : GetValuesAt(*portlet, *cursor))
            text += portlet->GetTitle() + '\t' + row.serie->GetName() + '\t' + row.text + '\n';
    }
    return text;
}

} // namespace Presentation_Tarvel_Graphics
