// How a project comes into being from a recording, without dialogs.
#pragma once

#include "foundation/date_time.h"
#include "foundation/text_id.h"
#include "foundation/thread.h"
#include "model/project.h"

#include <filesystem>
#include <memory>
#include <string>

namespace Application_Tarvel {

struct SNewProject {
    std::filesystem::path recording;       // the main input file, a .tarin
    std::filesystem::path project;         // the project file; the result file takes its name
    std::filesystem::path configuration{}; // configuration file of the INS, empty for none
    bool ellipsoidalGpsAltitude = false;   // the user's default altitude reference of GPS
};

// A project over the recording: equipment, algorithm, heave choice and period as the recording gives them;
// mounting, reference points and sensors as the configuration file does. Null on failure, with the message to
// show in `message`.
std::unique_ptr<Metier_Tarvel::CTrvProject> CreateProject(const SNewProject& wanted, std::string& message);
// The same for a recording whose format was looked at before: one that is none fails for want of inertial
// data. A recording that is not read when the event is set counts as not readable. `failure` is the number of
// the message, in which %1 is the recording. Any thread.
std::unique_ptr<Metier_Tarvel::CTrvProject> BuildProject(const SNewProject& wanted,
                                                         Outils_Texte::EText& failure,
                                                         const Outils::CEvent* interrupt = nullptr);

} // namespace Application_Tarvel
