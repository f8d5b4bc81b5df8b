// What the command line asks for and which project opens first.
#pragma once

#include "config/enumerations.h"

#include <filesystem>
#include <functional>
#include <span>
#include <string>

namespace Application_Tarvel {

class CTrvProjectMainFrame;
using Outils_Configuration::EStartMode;

enum class ERequest { run, snapshot, help, version, wrongUsage };

struct SCommandLine {
    ERequest request = ERequest::run;
    std::filesystem::path project;  // empty when none was named
    std::filesystem::path snapshot; // the picture to write
    std::string error;              // of a wrong line; also when help is asked for
};

// `words` without the name of the program, UTF-8. What follows "--" is no option.
SCommandLine ParseCommandLine(std::span<const char* const> words);

struct SStart {
    std::filesystem::path file; // to open; empty for none
    bool newProject = false;    // to ask for a new project instead
};

// The file named wins over the start mode; the last project opens only if its file still exists.
SStart ChooseStart(const std::filesystem::path& named, EStartMode mode,
                   const std::filesystem::path& lastProject);

// Shows the frame, empty, and then opens what was chosen. After a failed open the document is empty and no
// new project is asked for. Calls `opened` before it offers unsaved changes of the recent projects and asks
// for a new project.
void Start(
    CTrvProjectMainFrame& frame, const SStart& start, const std::function<void()>& opened = [] {});

} // namespace Application_Tarvel
