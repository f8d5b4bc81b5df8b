// Makes the portlets of a project: those it has saved, or the default ones. UI thread.
#pragma once

#include "graph/stack.h"
#include "model/project.h"
#include "values/adaptors.h"

namespace Presentation_Tarvel_Graphics {

// What portlets refer to; all of it must outlive them.
struct SPortletEnvironment {
    const Outils_Valeurs::CTrvAdaptors& adaptors;
    Outils_Plot2D::CPlot2DSettings& settings;
    const SSimulationTimeText& timeText;
    Colour chronogramColour;
};

// One portlet for each saved graph, in order. A project without graphs gets the navigation of the result,
// each value beside the one that the recording has of it.
CTrv1DGraphStack::Portlets BuildPortlets(const Metier_Tarvel::CTrvProject& project,
                                         const SPortletEnvironment& environment);

} // namespace Presentation_Tarvel_Graphics
