// Fields of the dictionary that the user brings to the graphs. UI thread.
#pragma once

#include "document/document.h"
#include "graph/portlet.h"

namespace Presentation_Tarvel_Graphics {

// A measure joins the graph of `portlet` if that takes its kind; without a portlet (null) a measure or an
// enumeration gets a graph of its own. False when the field fits nowhere.
bool CanDrop(const Metier_Tarvel::CTrvProject& project, const CTrv1DGraphPortlet* portlet,
             const Outils_Objets::CObject& field);
// Makes the edit; false when it cannot be done. REQUIRES: the default graphs are saved, see
// CTrv1DGraphLoader::SaveDefaults.
bool Drop(Application_Tarvel::CTrvDocument& document, const CTrv1DGraphPortlet* portlet,
          const Outils_Objets::CObject& field);

} // namespace Presentation_Tarvel_Graphics
