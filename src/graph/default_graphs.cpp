#include "graph/default_graphs.h"

#include "graph/graph_description.h"

#include <algorithm>

namespace Presentation_Tarvel_Graphics {

using namespace Metier_Tarvel;
using namespace Metier_Tarvel_Graphics;

const CTrv1DGraph* SaveDefaultGraphs(CTrvProject& project, const Outils_Valeurs::CTrvAdaptors& adaptors) {
    if (!project.graphSettings->graphs.empty()) return nullptr;
    const auto files = project.simulationParameters->GetDataFiles();
    const CTrv1DGraph* last = nullptr;
    // The colour of chronograms: there is none among them.
    for (const SGraphDescription& graph : DescribeGraphs(project, adaptors, 0)) {
        if (graph.curves.empty()) continue;
        CTrv1DGraphMeasure* saved = project.graphSettings->AddMeasureGraph(graph.title);
        for (const SCurveDescription& curve : graph.curves) {
            const auto file = std::ranges::find(files, curve.channel.file);
            if (file == files.end()) continue;
            saved->AddCurve(*file, curve.channel.channel, curve.field, curve.name)->color = curve.colour;
        }
        last = saved;
    }
    return last;
}

} // namespace Presentation_Tarvel_Graphics
