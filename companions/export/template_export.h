// udtExporter.exe: the lines that a user's template describes.
#pragma once

#include "export/export_run.h"

namespace Exportation {

extern const Compagnon::SProgram kTemplateExporter;

} // namespace Exportation
