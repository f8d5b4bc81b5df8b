// What a graph is to show, as plain values: from a saved graph of the project, or from the default ones. UI
// thread.
#pragma once

#include "graph/curve_style.h"
#include "graph/dataset.h"
#include "model/project.h"
#include "values/adaptors.h"

#include <string>
#include <vector>

namespace Presentation_Tarvel_Graphics {

using Outils_Valeurs::CNumericValueAdaptor;

// One serie. `curve` is the saved one, or null for a chronogram and for a default graph.
struct SCurveDescription {
    std::string name; // in the legend, UTF-8
    SChannelKey channel;
    std::uint32_t field = 0;
    double factor = 1.0;
    Colour colour = 0xFF000000;
    const Metier_Tarvel_Graphics::CTrv1DCurve* curve = nullptr;
    ELineStyle style = ELineStyle::solid;
};

struct SGraphDescription {
    Metier_Tarvel_Graphics::CTrv1DGraph* graph = nullptr; // the saved graph; null for a default one
    std::string title;
    // Shows the values of a measure graph; must outlive the portlet. Null for a chronogram.
    const CNumericValueAdaptor* adaptor = nullptr;
    std::vector<SCurveDescription> curves; // a chronogram has one
    std::vector<std::string> states;       // of a chronogram, from 0 on

    bool IsChronogram() const { return !adaptor; }
};

// One description for each saved graph, in order. A project without graphs gets the navigation of the result,
// each value beside the same value of the recording. The descriptions refer to `project` and `adaptors`.
std::vector<SGraphDescription> DescribeGraphs(const Metier_Tarvel::CTrvProject& project,
                                              const Outils_Valeurs::CTrvAdaptors& adaptors,
                                              Colour chronogramColour);

} // namespace Presentation_Tarvel_Graphics
