// Reads a template file against the channels of a source.
#pragma once

#include "export/packet_pass.h"
#include "export/template_model.h"

#include <filesystem>
#include <optional>

namespace Exportation {

// Empty after a report of the first fault, with its line and what is possible there. The template refers to
// the channels of `pass`, which must outlive it.
std::optional<SExportTemplate> ReadTemplate(const std::filesystem::path& path, const CPacketPass& pass,
                                            IRunMonitor& monitor);

} // namespace Exportation
