// What can be exported: the files of a project, or a packet file by itself, and what a template says of
// itself.
#pragma once

#include "foundation/date_time.h"

#include <filesystem>
#include <string>
#include <vector>

namespace Metier_Tarvel {
class CTrvSimulationParameters;
}

namespace Dialogue_Tarvel {

// A file that can be exported.
struct SExportSource {
    std::filesystem::path path;
    std::string word;  // "input", "output", "external1"
    std::string shown; // in the list of sources
    bool isResult = false;
    std::vector<std::string> channels;
    Outils_Temps::CDateTimeSpan timeOffset; // from its own clock to the time of the simulation
};

// What is exported from.
struct SExportProject {
    std::vector<SExportSource> sources; // at least one
    // Gives periods in the notation of the project; null for a file without one. Must outlive the dialog.
    const Metier_Tarvel::CTrvSimulationParameters* parameters = nullptr;
};
// Main input file, result, external files in the order of the project.
SExportProject GetExportProject(const Metier_Tarvel::CTrvSimulationParameters& parameters);

// What a template says of itself; empty texts for what it lacks, or when it cannot be read.
struct STemplateMetadata {
    std::string extension; // without the dot
    std::string channel;
};
STemplateMetadata ReadTemplateMetadata(const std::filesystem::path& exportTemplate);

} // namespace Dialogue_Tarvel
