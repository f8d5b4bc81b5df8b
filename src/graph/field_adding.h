// Several fields of the dictionary brought to the graphs at once, and what that would do in words. UI thread.
#pragma once

#include "graph/field_drop.h"
#include "graph/loader.h"

#include <string>
#include <vector>

namespace Presentation_Tarvel_Graphics {

using FieldList = std::vector<const Metier_Tarvel_DataModel::CTrvFieldDef*>;

// Each returns how many fields were added. The default graphs become part of the project before.

// Measures whose values fit together share a new graph; an enumeration has one of its own.
std::size_t AddToNewGraphs(CTrv1DGraphLoader& graphs, const FieldList& fields);
// To the selected graph of the stack what fits there, the others to new graphs.
std::size_t AddToSelectedGraph(CTrv1DGraphLoader& graphs, const FieldList& fields);

// "Heading", or "3 fields".
std::string NameFields(const FieldList& fields);
// What a drop on this portlet, or beside all for null, would do, or why it cannot be done.
std::string DescribeDrop(const Metier_Tarvel::CTrvProject& project, const CTrv1DGraphPortlet* portlet,
                         const FieldList& fields);

} // namespace Presentation_Tarvel_Graphics
