// How a project comes into being from a recording, without dialogs.
#pragma once

#include "foundation/date_time.h"
#include "model/project.h"

#include <filesystem>
#include <memory>
#include <string>

namespace Application_Tarvel {

struct SNewProject {
    std::filesystem::path recording;     // the main input file, a .tarin
    std::filesystem::path project;       // the project file; the result file takes its name
    bool ellipsoidalGpsAltitude = false; // the user's default altitude reference of GPS
};

// A project over the recording: equipment, algorithm, heave choice and period as the recording tells them.
// Null on failure, with the message to show in `message`.
std::unique_ptr<Metier_Tarvel::CTrvProject> CreateProject(const SNewProject& wanted, std::string& message);

} // namespace Application_Tarvel
